#pragma once

#include <QMdiSubWindow>

class KCDataView;
class KCMainFrame;

// The document window around one data view in the multiple-document area. Closing the
// document's last window closes the document, after asking to save it.
class KCChildFrame : public QMdiSubWindow
{
    Q_OBJECT
public:
    KCChildFrame(KCMainFrame *frame, KCDataView *view);

    KCDataView *view() const { return m_view; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    KCMainFrame *m_frame;
    KCDataView *m_view;
};
