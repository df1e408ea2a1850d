#pragma once

#include "KCFileFormat.h"

class KCLoadTarget;
class KCTextScanner;

// Intel HEX: reads record types 00 to 05 (8-, 16- and 32-bit variants alike); writes
// 32-bit linear style, never letting a data record cross a 64 KiB boundary.
class KCHexFileIntel : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;
    bool canSave() const override { return true; }
    bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
              const KCSaveOptions &options) override;

    // First significant character ':' followed by a hex digit.
    static bool detect(const uint8_t *data, size_t size);

private:
    bool parse(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result, const KCLoadOptions &options);
};
