#pragma once

#include "KCFileFormat.h"

class KCLoadTarget;
class KCTextScanner;

// A text format of checksummed hex records (Intel, Motorola): loading is the same frame
// around each format's own record parser.
class KCHexRecordFormat : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;

protected:
    virtual bool parse(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result,
                       const KCLoadOptions &options) = 0;
};
