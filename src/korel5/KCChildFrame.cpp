#include "KCChildFrame.h"

#include "KCDataView.h"
#include "KCMainFrame.h"
#include "doc/KCDataDoc.h"

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

void KCChildFrame::moveEvent(QMoveEvent *event)
{
    QMdiSubWindow::moveEvent(event);
    notePlacement();
}

void KCChildFrame::resizeEvent(QResizeEvent *event)
{
    QMdiSubWindow::resizeEvent(event);
    notePlacement();
}

void KCChildFrame::changeEvent(QEvent *event)
{
    QMdiSubWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        notePlacement();
}

void KCChildFrame::notePlacement()
{
    KCDataDoc *doc = m_view ? m_view->document() : nullptr;
    // Only the document's main window speaks for it.
    if (!doc || doc->viewItems().empty() || doc->viewItems().front().view != m_view)
        return;
    TAG_WINDOW_PLACEMENT p = doc->windowPlacement().value_or(TAG_WINDOW_PLACEMENT{});
    const Qt::WindowStates state = windowState();
    p.showState = state & Qt::WindowMinimized   ? PLACEMENT_MINIMIZED
                  : state & Qt::WindowMaximized ? PLACEMENT_MAXIMIZED
                                                : PLACEMENT_NORMAL;
    // A maximised or minimised window's geometry is not the one it returns to.
    if (p.showState == PLACEMENT_NORMAL || p.width <= 0 || p.height <= 0) {
        p.x = x();
        p.y = y();
        p.width = width();
        p.height = height();
    }
    doc->setWindowPlacement(p);
}

void KCChildFrame::applyPlacement(TAG_WINDOW_PLACEMENT placement)
{
    // `placement` is a copy: the steps below note the window's passing states in the document.
    QRect rect(placement.x, placement.y, placement.width, placement.height);
    if (parentWidget() && !parentWidget()->rect().intersects(rect))
        rect.moveTopLeft(QPoint(0, 0));
    showNormal();
    setGeometry(rect);
    if (placement.showState == PLACEMENT_MAXIMIZED)
        showMaximized();
    else if (placement.showState == PLACEMENT_MINIMIZED)
        showMinimized();
}
