#pragma once

#include "KCFileFormat.h"

// Raw binary: no structure. File byte fileOffset + k lands on buffer offset bufferOffset + k.
class KCBinFile : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;
    bool canSave() const override { return true; }
    bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
              const KCSaveOptions &options) override;

private:
    bool readDirect(const KCInputFile &file, uint8_t *to, uint64_t offset, uint64_t count);
    static bool readRange(int fd, uint8_t *to, uint64_t offset, uint64_t count, int &error);
};
