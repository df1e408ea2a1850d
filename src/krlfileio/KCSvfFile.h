#pragma once

#include "KCCheckedTextImage.h"

// Serial vector files. The buffer receives the file's bytes unchanged (file byte k at file
// address k); the load also checks the syntax, without executing anything, and reports each
// problem with its line. Syntax errors fail the load, doubtful but legal input only warns.
// Read only.
class KCSvfFile : public KCCheckedTextImage
{
public:
    static constexpr size_t kMaxLineLength = 256;
    // A damaged file would otherwise bury the message window.
    static constexpr unsigned kMaxMessages = 20;

    using KCCheckedTextImage::KCCheckedTextImage;

    static bool detect(const uint8_t *data, size_t size);

protected:
    bool check(const KCInputFile &file, const KCLoadOptions &options) override;
};
