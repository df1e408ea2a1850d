#pragma once

#include "KCHexRecordFormat.h"

// Motorola S-records: reads S0 to S9 (S4 is reserved); writes an S0 header, one data type
// (S1, S2 or S3) chosen by the highest address, an S5/S6 count and the matching terminator.
class KCHexFileMotorola : public KCHexRecordFormat
{
public:
    using KCHexRecordFormat::KCHexRecordFormat;

    bool canSave() const override { return true; }
    bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
              const KCSaveOptions &options) override;

    // First significant characters 'S' and a digit.
    static bool detect(const uint8_t *data, size_t size);

private:
    bool parse(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result,
               const KCLoadOptions &options) override;
};
