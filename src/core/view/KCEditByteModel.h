#pragma once

#include "view/KCEditFieldModel.h"

// The hex-byte field: two columns per byte, index p / 2 and digit p mod 2 + 1, both rounded
// towards minus infinity, so column -1 is the low digit of the byte before the base offset.
class KCEditByteModel : public KCEditFieldModel
{
public:
    using KCEditFieldModel::KCEditFieldModel;

    int columnsPerByte() const override { return 2; }
    int64_t indexOfColumn(int p) const override;
    int digitOfColumn(int p) const override;
    int columnOfIndex(int64_t index) const override;
    bool OnChar(unsigned ch) override { return typeHexDigit(ch); }
};
