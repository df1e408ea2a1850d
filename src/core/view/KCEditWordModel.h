#pragma once

#include "view/KCEditFieldModel.h"

// The 16-bit word field: bytes in pairs counted from the base offset rounded down to an even
// index, two columns per byte; with byte swap each pair shows its second byte first.
class KCEditWordModel : public KCEditFieldModel
{
public:
    using KCEditFieldModel::KCEditFieldModel;

    void setByteSwap(bool on) { m_swap = on; }
    bool byteSwap() const { return m_swap; }

    int columnsPerByte() const override { return 2; }
    int64_t indexOfColumn(int p) const override;
    int digitOfColumn(int p) const override;
    int columnOfIndex(int64_t index) const override;
    // With byte swap only the pairs that exist take the caret (no place to append); the
    // unpaired last byte of an odd count takes it only at its first column.
    bool isValidColumn(int p) const override;
    // Back to the first digit of the pair's first-shown byte: even index, odd with byte swap.
    void moveToUnitStart() override;
    bool OnChar(unsigned ch) override { return typeHexDigit(ch); }

    // The pair's first index.
    int64_t evenBase() const { return state().baseOffset() & ~int64_t(1); }

private:
    bool m_swap = false;
};
