#pragma once

#include "view/KCEditFieldModel.h"

// The character field: one column per byte, index = base offset + p.
class KCEditCharModel : public KCEditFieldModel
{
public:
    using KCEditFieldModel::KCEditFieldModel;

    int columnsPerByte() const override { return 1; }
    int64_t indexOfColumn(int p) const override { return state().baseOffset() + p; }
    int digitOfColumn(int) const override { return FirstDigit; }
    int columnOfIndex(int64_t index) const override { return static_cast<int>(index - state().baseOffset()); }
    // A character from the space up: ignored before the array or past its end, appended at
    // the end, else inserted or written over as the insert switch says.
    bool OnChar(unsigned ch) override;
};
