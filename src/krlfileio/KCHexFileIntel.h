#pragma once

#include "KCHexRecordFormat.h"

// Intel HEX: reads record types 00 to 05 (8-, 16- and 32-bit variants alike); writes
// 32-bit linear style, never letting a data record cross a 64 KiB boundary.
class KCHexFileIntel : public KCHexRecordFormat
{
public:
    using KCHexRecordFormat::KCHexRecordFormat;

    bool canSave() const override { return true; }
    bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
              const KCSaveOptions &options) override;

    // First significant character ':' followed by a hex digit.
    static bool detect(const uint8_t *data, size_t size);

private:
    bool parse(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result,
               const KCLoadOptions &options) override;
};
