#include "view/KCEditFieldModel.h"

#include "view/KCClipboardPort.h"
#include "host/KCNumberText.h"

#include <algorithm>

namespace {

constexpr int HighNibbleShift = 4;
constexpr unsigned LowNibbleMask = 0x0F;
constexpr unsigned HighNibbleMask = 0xF0;

} // namespace

KCEditFieldModel::KCEditFieldModel(KCEditPatternState &state) : m_state(state)
{
    m_state.link(this);
}

KCEditFieldModel::~KCEditFieldModel()
{
    m_state.unlink(this);
}

bool KCEditFieldModel::isValidColumn(int p) const
{
    const int64_t i = indexOfColumn(p);
    return i >= 0 && (i < m_state.size() || (i == m_state.size() && digitOfColumn(p) == FirstDigit));
}

void KCEditFieldModel::changed()
{
    m_state.repaintAll();
}

bool KCEditFieldModel::stepCaret(int direction)
{
    // Invalid columns (the missing half of a word pair) are stepped over, up to two bytes.
    const int reach = 2 * columnsPerByte();
    for (int d = 1; d <= reach; ++d) {
        const int p = m_caret + direction * d;
        if (isValidColumn(p)) {
            m_caret = p;
            return true;
        }
    }
    return false;
}

void KCEditFieldModel::markToCaret(int64_t anchor)
{
    m_state.setMark(anchor, caretIndex() - anchor);
}

bool KCEditFieldModel::OnKeyDown(Key key, bool shift)
{
    const int64_t before = caretIndex();
    switch (key) {
    case KeyLeft:
    case KeyRight:
        if (shift) {
            // The mark runs from its anchor to the caret's index, backwards with a negative length.
            if (m_state.markStart() < 0 || m_state.markLength() == 0)
                m_anchor = before;
            else if (m_anchor < 0)
                m_anchor = m_state.markStart();
            m_caret = columnOfIndex(before + (key == KeyRight ? 1 : -1));
            if (!isValidColumn(m_caret))
                m_caret = columnOfIndex(before);
            markToCaret(m_anchor);
        } else {
            stepCaret(key == KeyRight ? 1 : -1);
            m_state.clearMark();
        }
        changed();
        return true;
    case KeyHome:
    case KeyEnd:
        m_caret = columnOfIndex(key == KeyHome ? 0 : m_state.size());
        if (!isValidColumn(m_caret))
            m_caret = columnOfIndex(std::max<int64_t>(0, m_state.size() - 1));
        m_state.clearMark();
        changed();
        return true;
    case KeyBackspace:
    case KeyDelete: {
        if (removeMarked())
            return true;
        const int64_t i = key == KeyBackspace ? before - 1 : before;
        if (i < 0 || i >= m_state.size())
            return false;
        m_state.takeUndoCopy();
        m_state.editBytes().erase(m_state.editBytes().begin() + i);
        m_caret = columnOfIndex(i);
        if (!isValidColumn(m_caret))
            m_caret = columnOfIndex(std::max<int64_t>(0, i - 1));
        changed();
        return true;
    }
    case KeyInsert:
        m_state.setInsertMode(!m_state.isInsertMode());
        changed();
        return true;
    }
    return false;
}

void KCEditFieldModel::moveToUnitStart()
{
    while (digitOfColumn(m_caret) != FirstDigit)
        --m_caret;
}

bool KCEditFieldModel::clickAt(int p)
{
    m_state.clearMark();
    if (!isValidColumn(p)) {
        m_anchor = -1;
        changed();
        return false;
    }
    m_caret = p;
    moveToUnitStart();
    m_anchor = caretIndex();
    changed();
    return true;
}

void KCEditFieldModel::dragTo(int p)
{
    if (m_anchor < 0 || !isValidColumn(p))
        return;
    m_caret = p;
    moveToUnitStart();
    int64_t end = caretIndex();
    // Dragging forward takes the byte under the pointer too.
    if (end >= m_anchor)
        ++end;
    m_state.setMark(m_anchor, end - m_anchor);
    changed();
}

uint64_t KCEditFieldModel::copy(KCClipboardPort &clipboard) const
{
    int64_t low, high;
    if (!m_state.markRange(low, high))
        return 0;
    const uint64_t n = static_cast<uint64_t>(high - low + 1);
    return clipboard.put(m_state.bytes().data() + low, n, 0) ? n : 0;
}

uint64_t KCEditFieldModel::cut(KCClipboardPort &clipboard)
{
    const uint64_t n = copy(clipboard);
    if (n)
        removeMarked();
    return n;
}

bool KCEditFieldModel::removeMarked()
{
    int64_t low, high;
    if (!m_state.markRange(low, high))
        return false;
    m_state.takeUndoCopy();
    auto &b = m_state.editBytes();
    b.erase(b.begin() + low, b.begin() + high + 1);
    m_caret = columnOfIndex(low);
    if (!isValidColumn(m_caret))
        m_caret = columnOfIndex(std::max<int64_t>(0, low - 1));
    m_state.clearMark();
    changed();
    return true;
}

uint64_t KCEditFieldModel::paste(KCClipboardPort &clipboard)
{
    std::vector<uint8_t> in;
    const uint64_t n = clipboard.get(in);
    const int64_t i = caretIndex();
    if (n == 0 || i < 0 || i > m_state.size())
        return 0;
    m_state.takeUndoCopy();
    auto &b = m_state.editBytes();
    if (m_state.isInsertMode()) {
        b.insert(b.begin() + i, in.begin(), in.end());
    } else {
        if (static_cast<uint64_t>(i) + n > b.size())
            b.resize(static_cast<size_t>(i) + n);
        std::copy(in.begin(), in.end(), b.begin() + i);
    }
    m_state.setMark(i, static_cast<int64_t>(n));
    m_caret = columnOfIndex(i + static_cast<int64_t>(n));
    changed();
    return n;
}

bool KCEditFieldModel::undo()
{
    if (!m_state.undo())
        return false;
    if (!isValidColumn(m_caret))
        m_caret = columnOfIndex(m_state.size());
    return true;
}

bool KCEditFieldModel::typeHexDigit(unsigned ch)
{
    const int d = KCNumberText::hexDigitValue(ch);
    const int64_t i = caretIndex();
    if (d < 0 || !isValidColumn(m_caret))
        return false;
    m_state.takeUndoCopy();
    auto &b = m_state.editBytes();
    const bool first = caretDigit() == FirstDigit;
    const uint8_t high = static_cast<uint8_t>(d << HighNibbleShift);
    if (i == m_state.size())
        b.push_back(high);
    else if (first && m_state.isInsertMode())
        b.insert(b.begin() + i, high);
    else if (first)
        b[i] = static_cast<uint8_t>((b[i] & LowNibbleMask) | high);
    else
        b[i] = static_cast<uint8_t>((b[i] & HighNibbleMask) | static_cast<unsigned>(d));
    m_state.clearMark();
    stepCaret(1);
    changed();
    return true;
}

void KCEditFieldModel::ensureCaretVisible(int columns)
{
    const int cpb = columnsPerByte();
    // Scroll by whole pairs so the word field's pairs keep their places.
    const int step = 2;
    while (m_caret < 0 && m_state.baseOffset() > 0) {
        const int64_t index = caretIndex();
        const int digit = caretDigit();
        m_state.setBaseOffset(m_state.baseOffset() - step);
        m_caret = columnOfIndex(index) + (digit - 1);
    }
    while (columns > cpb && m_caret >= columns) {
        const int64_t index = caretIndex();
        const int digit = caretDigit();
        m_state.setBaseOffset(m_state.baseOffset() + step);
        m_caret = columnOfIndex(index) + (digit - 1);
    }
}
