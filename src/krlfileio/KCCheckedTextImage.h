#pragma once

#include "KCFileFormat.h"

// A text file the buffer receives unchanged (file byte k at file address k) and that the
// load then checks, only reporting: SVF and STAPL.
class KCCheckedTextImage : public KCFileFormat
{
public:
    using KCFileFormat::KCFileFormat;

    KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) final;

protected:
    // True when the file passes; problems go to the sink with their lines.
    virtual bool check(const KCInputFile &file, const KCLoadOptions &options) = 0;
    // Where a detector looks: past a byte order mark and blanks; `size` when nothing is left.
    static size_t firstSignificant(const uint8_t *data, size_t size);
};
