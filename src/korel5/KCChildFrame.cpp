#include "KCChildFrame.h"

#include "KCDataView.h"
#include "KCMainFrame.h"

#include <QCloseEvent>
#include <QStyle>

KCChildFrame::KCChildFrame(KCMainFrame *frame, KCDataView *view) : m_frame(frame), m_view(view)
{
    setWidget(view);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowIcon(style()->standardIcon(QStyle::SP_FileIcon));
}

void KCChildFrame::closeEvent(QCloseEvent *event)
{
    if (!m_frame->canCloseWindow(this)) {
        event->ignore();
        return;
    }
    QMdiSubWindow::closeEvent(event);
}
