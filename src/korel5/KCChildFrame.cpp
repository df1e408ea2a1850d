#include "KCChildFrame.h"

#include "KCDataView.h"
#include "KCMainFrame.h"

#include <QCloseEvent>

KCChildFrame::KCChildFrame(KCMainFrame *frame, KCDataView *view) : m_frame(frame), m_view(view)
{
    setWidget(view);
    setAttribute(Qt::WA_DeleteOnClose);
}

void KCChildFrame::closeEvent(QCloseEvent *event)
{
    if (!m_frame->canCloseWindow(this)) {
        event->ignore();
        return;
    }
    QMdiSubWindow::closeEvent(event);
}
