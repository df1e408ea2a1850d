#include "view/KCMouseController.h"

#include "view/KCDataViewListener.h"
#include "view/KCDataViewModel.h"

namespace {

// Ctrl with the wheel moves two pages per notch, on purpose.
constexpr int WheelCtrlPages = 2;

} // namespace

void KCMouseController::press(int x, int y)
{
    KCDataViewLayout *l = m_view.GetBufferLayoutView();
    if (!l)
        return;
    m_view.resetScrollSteps();
    m_view.dropMark();
    const TAG_VIEW_POSITION p = m_view.hitTest(x, y);
    if (!p.isValid())
        return;
    l->cursor().setMark(p, p, MARKSTATE_NONE);
    l->cursor().setTracking(true);
    m_view.moveCaret(p);
}

void KCMouseController::move(int x, int y)
{
    KCDataViewLayout *l = m_view.GetBufferLayoutView();
    if (!l || !l->cursor().isTracking())
        return;
    KCDataViewCursor &cursor = l->cursor();
    const TAG_VIEW_POSITION p = m_view.hitTest(x, y);
    const TAG_VIEW_POSITION &end = cursor.markEnd();
    if (!p.isValid() || (p.block == end.block && p.line == end.line && p.cell == end.cell))
        return;
    cursor.setMarkEnd(p);
    cursor.setMarkState(MARKSTATE_MARKED);
    m_view.notify(KCDataViewListener::ChangedRows | KCDataViewListener::ChangedCaret);
}

void KCMouseController::release()
{
    if (KCDataViewLayout *l = m_view.GetBufferLayoutView())
        l->cursor().setTracking(false);
}

void KCMouseController::wheel(int notches, unsigned modifiers)
{
    // Away from the user scrolls up.
    if (modifiers & KCDataViewModel::ControlModifier)
        m_view.scrollPages(-static_cast<int64_t>(notches) * WheelCtrlPages);
    else
        m_view.scrollLines(-static_cast<int64_t>(notches));
}
