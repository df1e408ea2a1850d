#include "view/KCEditPatternState.h"

#include "view/KCEditFieldModel.h"

#include <utility>

KCEditPatternState &KCEditPatternState::shared()
{
    static KCEditPatternState state;
    return state;
}

void KCEditPatternState::setBytes(const std::vector<uint8_t> &bytes)
{
    takeUndoCopy();
    m_bytes = bytes;
    clearMark();
    repaintAll();
}

void KCEditPatternState::takeUndoCopy()
{
    m_undo = m_bytes;
    m_hasUndo = true;
}

void KCEditPatternState::setMark(int64_t start, int64_t length)
{
    m_markStart = start;
    m_markLength = length;
}

bool KCEditPatternState::markRange(int64_t &low, int64_t &high) const
{
    if (m_markStart < 0 || m_markLength == 0)
        return false;
    if (m_markLength > 0) {
        low = m_markStart;
        high = m_markStart + m_markLength - 1;
    } else {
        low = m_markStart + m_markLength;
        high = m_markStart - 1;
    }
    if (low < 0)
        low = 0;
    if (high > size() - 1)
        high = size() - 1;
    return low <= high;
}

bool KCEditPatternState::isMarked(int64_t index) const
{
    int64_t low, high;
    return markRange(low, high) && index >= low && index <= high;
}

bool KCEditPatternState::undo()
{
    if (!m_hasUndo)
        return false;
    std::swap(m_bytes, m_undo);
    clearMark();
    repaintAll();
    return true;
}

void KCEditPatternState::clearUndo()
{
    m_undo.clear();
    m_hasUndo = false;
}

void KCEditPatternState::link(KCEditFieldModel *field)
{
    field->m_next = m_first;
    m_first = field;
}

void KCEditPatternState::unlink(KCEditFieldModel *field)
{
    for (KCEditFieldModel **at = &m_first; *at; at = &(*at)->m_next) {
        if (*at == field) {
            *at = field->m_next;
            field->m_next = nullptr;
            return;
        }
    }
}

void KCEditPatternState::repaintAll()
{
    for (KCEditFieldModel *f = m_first; f; f = f->m_next)
        f->invalidate();
}
