#include "view/KCValueEditController.h"

#include "doc/KCDataDoc.h"
#include "view/KCDataViewListener.h"
#include "host/KCNumberText.h"

namespace {

constexpr unsigned FirstPrintable = 32;
constexpr unsigned LastByteCode = 0xFF;
constexpr int HighNibbleShift = 4;
constexpr unsigned char LowNibble = 0x0F;
constexpr unsigned char HighNibble = 0xF0;

} // namespace

bool KCValueEditController::handleKey(KCDataViewModel::Key key, unsigned)
{
    if (key != KCDataViewModel::KeyInsert)
        return false;
    m_view.setInsertMode(!m_view.isInsertMode());
    m_view.notify(KCDataViewListener::ChangedCaret);
    return true;
}

bool KCValueEditController::handleChar(unsigned ch)
{
    KCDataViewLayout *l = m_view.GetBufferLayoutView();
    KCDataDoc *doc = m_view.document();
    if (!l || l->cursor().isTracking() || !doc)
        return false;
    // Nothing is typed into the buffer while the programmer works on it.
    if (m_view.host() && !m_view.host()->ActionUi_NULL())
        return false;
    const TAG_VIEW_POSITION c = l->cursor().caret();
    const TAG_X_LAYOUT *cell = l->cellAt(c);
    if (!cell || !(cell->flags & XLF_EDITABLE) || !l->isUsable(c.block, c.lineInBlock, c.cell, m_view.bufferLimit()))
        return false;
    const uint32_t addr = static_cast<uint32_t>(c.address);
    const unsigned char old = doc->GetData(addr);
    unsigned char value;
    switch (cell->kind) {
    case XL_HEXBYTE: {
        const int digit = KCNumberText::hexDigitValue(ch);
        if (digit < 0)
            return false;
        value = c.column == cell->x ? static_cast<unsigned char>((old & LowNibble) | (digit << HighNibbleShift))
                                    : static_cast<unsigned char>((old & HighNibble) | digit);
        break;
    }
    case XL_CHAR:
        if (ch < FirstPrintable || ch > LastByteCode)
            return false;
        value = static_cast<unsigned char>(ch);
        break;
    case XL_BIT:
        if (ch != '0' && ch != '1')
            return false;
        value = static_cast<unsigned char>(ch - '0');
        break;
    default:
        return false;
    }
    doc->SetData(value, addr);
    m_view.m_hits.reset(); // the bytes found are no longer what was searched
    doc->UpdateAllViews(&m_view, DOCHINT_DATA);
    m_view.notify(KCDataViewListener::ChangedRows);
    m_view.OnKeyDown(KCDataViewModel::KeyRight);
    return true;
}
