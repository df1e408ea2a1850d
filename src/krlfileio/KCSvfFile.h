#pragma once

#include "KCFileFormat.h"

// Serial vector files. The buffer receives the file's bytes unchanged (file byte k at file
// address k); the load also checks the syntax, without executing anything, and reports each
// problem with its line. Syntax errors fail the load, doubtful but legal input only warns.
// Read only.
class KCSvfFile : public KCFileFormat
{
public:
    static constexpr size_t kMaxLineLength = 256;
    // A damaged file would otherwise bury the message window.
    static constexpr unsigned kMaxMessages = 20;

    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;

    static bool detect(const uint8_t *data, size_t size);
};
