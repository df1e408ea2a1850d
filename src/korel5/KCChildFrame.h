#pragma once

#include "doc/TAG_WINDOW_PLACEMENT.h"

#include <QMdiSubWindow>

class KCDataView;
class KCMainFrame;

// The document window around one data view in the multiple-document area. Closing the
// document's last window closes the document, after asking to save it. The document's main
// window keeps the document's window placement current, so that a project written at any
// time holds where the window stands.
class KCChildFrame : public QMdiSubWindow
{
    Q_OBJECT
public:
    KCChildFrame(KCMainFrame *frame, KCDataView *view);

    KCDataView *view() const { return m_view; }
    // Puts the window where a project had it; a place outside the area moves to its corner.
    void applyPlacement(TAG_WINDOW_PLACEMENT placement);

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void notePlacement();

    KCMainFrame *m_frame;
    KCDataView *m_view;
};
