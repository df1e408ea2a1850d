#include "view/KCEditCharModel.h"

namespace {

constexpr unsigned FirstPrintable = 0x20;
constexpr unsigned LastByteCode = 0xFF;

} // namespace

bool KCEditCharModel::OnChar(unsigned ch)
{
    if (ch < FirstPrintable || ch > LastByteCode)
        return false;
    const int64_t i = caretIndex();
    if (i < 0 || i > state().size())
        return false;
    state().takeUndoCopy();
    auto &b = state().editBytes();
    const uint8_t value = static_cast<uint8_t>(ch);
    if (i == state().size())
        b.push_back(value);
    else if (state().isInsertMode() && caretDigit() != SecondDigit)
        b.insert(b.begin() + i, value);
    else
        b[i] = value;
    state().clearMark();
    setCaretColumn(caretColumn() + 1);
    changed();
    return true;
}
