#pragma once

#include "KCFileFormat.h"

class KCLoadTarget;
class KCTextScanner;

// The two "TI hex" formats, told apart by their first significant character: TI-TXT
// (`@address` lines, hex byte lines, `q`) and TI-Tagged (a stream of tagged fields with a
// 16-bit ASCII-sum checksum). Read only.
class KCHexFileTI : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) override;

    // '@' + hex digit (TI-TXT), a tag character + 4 hex digits, or ':' alone (TI-Tagged).
    static bool detect(const uint8_t *data, size_t size);

private:
    bool parseText(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result);
    bool parseTagged(KCTextScanner &scanner, KCLoadTarget &target, KCLoadResult &result,
                     const KCLoadOptions &options);
};
