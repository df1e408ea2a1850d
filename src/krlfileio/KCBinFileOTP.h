#pragma once

#include "KCFileFormat.h"

// Writer files for OTP devices. Their layout is not documented, so the image is taken as
// raw bytes after KCLoadOptions::headerBytes header bytes (image byte k has file address k),
// and the load says so. Read only.
class KCBinFileOTP : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;
};
