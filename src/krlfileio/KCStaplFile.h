#pragma once

#include "KCCheckedTextImage.h"

// STAPL text files. The buffer receives the file's bytes unchanged (file byte k at file
// address k); the load checks the CRC statement and lists the NOTE fields and ACTION names.
// A CRC mismatch, unbalanced quotes and bytes that are not text fail the load; a missing
// CRC statement and text after it only warn. Read only.
class KCStaplFile : public KCCheckedTextImage
{
public:
    using KCCheckedTextImage::KCCheckedTextImage;

    static bool detect(const uint8_t *data, size_t size);

protected:
    bool check(const KCInputFile &file, const KCLoadOptions &options) override;
};
