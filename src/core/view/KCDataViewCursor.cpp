#include "view/KCDataViewCursor.h"

#include <algorithm>

void KCDataViewCursor::setMark(const TAG_VIEW_POSITION &anchor, const TAG_VIEW_POSITION &end, int state)
{
    m_markAnchor = anchor;
    m_markEnd = end;
    m_markState = state;
}

bool KCDataViewCursor::markRange(int64_t &low, int64_t &high) const
{
    if (!isMarked() || !m_markAnchor.isValid() || !m_markEnd.isValid())
        return false;
    low = std::min(m_markAnchor.address, m_markEnd.address);
    high = std::max(m_markAnchor.address, m_markEnd.address);
    return true;
}
