#pragma once

#include "bufops/KCShuffleBufferModel.h"

#include <QDialog>

class KCAddEdit;
class KCDocBase;
class QComboBox;
class QMdiArea;

// The shuffle dialog: a narrow buffer into one lane of another open buffer document. Its
// rules are KCShuffleBufferModel's; the dialog shows the lists and forwards OK.
class KCShuffleBuffer : public QDialog
{
    Q_OBJECT
public:
    enum : int {
        IDC_LANE = 1040,
        IDC_SOURCE_WIDTH = 1041,
        IDC_DEST_WIDTH = 1042,
        IDC_DEST_DOC = 2011,
        IDC_FIRST = 2780,
        IDC_LAST = 2781,
    };

    // `frame` holds the document windows the destination is chosen from.
    KCShuffleBuffer(KCDocBase *doc, QMdiArea *frame, QWidget *parent = nullptr,
                    const KCShuffleBufferInitData &init = KCShuffleBufferInitData());
    // The control with the id, or null.
    QWidget *control(int id) const;
    const KCShuffleBufferModel &model() const { return m_model; }
    // With problems recorded at the start they are shown and the dialog is not run.
    int exec() override;
    void OnOK();

private:
    void OnInitDialog();
    void refillDestWidths();
    void refillLanes();

    KCShuffleBufferModel m_model;
    QComboBox *m_sourceWidth;
    QComboBox *m_destWidth;
    QComboBox *m_lane;
    QComboBox *m_destDoc;
    KCAddEdit *m_first;
    KCAddEdit *m_last;
};
