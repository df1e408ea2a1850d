#pragma once

#include "KCFileFormat.h"

// STAPL text files. The buffer receives the file's bytes unchanged (file byte k at file
// address k); the load checks the CRC statement and lists the NOTE fields and ACTION names.
// A CRC mismatch, unbalanced quotes and bytes that are not text fail the load; a missing
// CRC statement and text after it only warn. Read only.
class KCStaplFile : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;

    static bool detect(const uint8_t *data, size_t size);
};
