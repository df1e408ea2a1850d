#pragma once

#include "KCFileFormat.h"

// JEDEC fuse maps: buffer offset n holds fuse n as 0 or 1 (the file address of a fuse is
// its number). The reader checks the fuse checksum and the transmission checksum and
// fills the JEDEC fields of KCLoadResult; KCLoadOptions::rangeLength is the device's fuse
// count, and a file declaring more fuses is rejected. The writer frames the map in
// STX ... ETX; KCSaveOptions::header is the device name put into the header text.
class KCJedecFile : public KCFileFormat
{
public:
    static constexpr uint8_t kStx = 0x02;
    static constexpr uint8_t kEtx = 0x03;
    static constexpr const char *kVersionStamp = "2.06.23";
    // No programmable logic device comes near this; a larger QF is a damaged file, and
    // refusing it keeps a tiny file from demanding gigabytes.
    static constexpr uint64_t kMaxFuseCount = uint64_t(1) << 26;
    static constexpr unsigned kFusesPerRow = 64;

    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;

    bool canSave() const override { return true; }
    bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
              const KCSaveOptions &options) override;

    static bool detect(const uint8_t *data, size_t size);
};
