#pragma once

#include "view/TAG_VIEW_POSITION.h"

#include <cstdint>

// Mark states of a cursor.
enum MARK_STATE : int { MARKSTATE_MARKED = 1, MARKSTATE_NONE = 3 };

// Where the user is in one layout: the caret, the mark (anchor, end and state) and whether the
// left mouse button is held after a press on a cell. Each layout keeps its own, so switching
// layouts brings back the caret and mark the other layout had.
class KCDataViewCursor
{
public:
    const TAG_VIEW_POSITION &caret() const { return m_caret; }
    void setCaret(const TAG_VIEW_POSITION &pos) { m_caret = pos; }

    const TAG_VIEW_POSITION &markAnchor() const { return m_markAnchor; }
    const TAG_VIEW_POSITION &markEnd() const { return m_markEnd; }
    int markState() const { return m_markState; }
    bool isMarked() const { return m_markState == MARKSTATE_MARKED; }
    void setMark(const TAG_VIEW_POSITION &anchor, const TAG_VIEW_POSITION &end, int state);
    void setMarkEnd(const TAG_VIEW_POSITION &end) { m_markEnd = end; }
    void setMarkState(int state) { m_markState = state; }
    // The marked buffer range, both ends inclusive; false when nothing is marked.
    bool markRange(int64_t &low, int64_t &high) const;

    bool isTracking() const { return m_tracking; }
    void setTracking(bool tracking) { m_tracking = tracking; }

private:
    TAG_VIEW_POSITION m_caret;
    TAG_VIEW_POSITION m_markAnchor;
    TAG_VIEW_POSITION m_markEnd;
    int m_markState = MARKSTATE_NONE;
    bool m_tracking = false;
};
