#pragma once

#include "view/KCSearchModel.h"

#include <QDialog>
#include <QTimer>

class KCDataDoc;
class KCDataView;
class KCEdit_Base;
class KCEdit_Word;
class QCheckBox;
class QGridLayout;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QThread;

// The search dialog: a pattern typed in three linked fields (hex bytes, characters, words),
// find next and find all in the view's buffer on a worker thread, a stop button, the
// progress and result lines, and after find-all a list of the hits that jumps to each. The
// rules are KCSearchModel's; the dialog starts runs and shows what they found.
class KCSearchDlgBox : public QDialog
{
    Q_OBJECT
public:
    enum : int {
        IDD_SEARCH = 2176,
        // Placeholders of the layout and the linked fields that take their places.
        IDC_PLACE_BYTE = 2836, IDC_PLACE_CHAR = 2687, IDC_PLACE_WORD = 2688,
        IDC_EDIT_BYTE = 2615, IDC_EDIT_CHAR = 2616, IDC_EDIT_WORD = 2617,
        // The worker's "done" message and the progress timer.
        WM_SEARCH_DONE = 1026, IDT_PROGRESS = 105,
        // The view's search command that opens the dialog.
        ID_EDIT_SEARCH = 32806,
    };
    static constexpr int ProgressIntervalMs = 250;
    // Bytes of the buffer shown before and after each hit in the list.
    static constexpr int ListContextBytes = 4;

    explicit KCSearchDlgBox(KCDataView *view, QWidget *parent = nullptr);
    ~KCSearchDlgBox() override;

    // Replaces the placeholders by the linked fields and takes the search range.
    bool OnInitDialog();
    void OnFindNext();
    void OnFindAll();
    void OnStop();
    void OnCopyList();
    // The progress timer's tick: the address being searched.
    void OnTimer();
    bool isRunning() const { return m_worker != nullptr; }

    KCEdit_Base *edit(int id) const;
    QListWidget *hitList() const { return m_list; }
    QLabel *statusLine() const { return m_status; }
    QPushButton *button(const QString &name) const;
    QCheckBox *option(const QString &name) const;
    KCSearchModel &model() { return m_model; }
    const QTimer &progressTimer() const { return m_timer; }

    // F3 and Shift+F3: the last pattern again from the caret, forwards or backwards, without
    // the dialog; marks and scrolls to the hit. False when there is none.
    static bool FindAgain(KCDataView *view, bool forward);

protected:
    // Enter on the hit list jumps to the hit instead of pressing the default button.
    void keyPressEvent(QKeyEvent *event) override;

signals:
    // Posted by the worker when its run is over.
    void searchDone();

private:
    void start(bool findAll);
    void OnSearchDone();
    void OnHitActivated(QListWidgetItem *item);
    void fillHitList();
    void showHit(int64_t address, uint64_t length);
    void setRunning(bool running);
    bool wordLayout() const;

    KCDataView *m_view;
    KCDataDoc *m_doc;
    KCSearchModel m_model;
    QGridLayout *m_fields;
    QLabel *m_status;
    QListWidget *m_list;
    QThread *m_worker = nullptr;
    QTimer m_timer;
    int m_hitColor = -1;
};
