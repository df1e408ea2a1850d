#pragma once

#include "bufops/KCSplitBufferModel.h"

#include <QDialog>

#include <functional>

class KCAddEdit;
class QComboBox;
class QMdiArea;

// The split dialog: the active buffer document of the frame into one new document per lane.
// Its rules are KCSplitBufferModel's; the dialog shows the lists and forwards OK.
class KCSplitBuffer : public QDialog
{
    Q_OBJECT
public:
    enum : int { IDC_SOURCE_WIDTH = 1041, IDC_DEST_WIDTH = 1042, IDC_FIRST = 2780, IDC_LAST = 2781 };

    KCSplitBuffer(QMdiArea *frame, std::function<KCDataDoc *()> newDocument, QWidget *parent = nullptr);
    QWidget *control(int id) const;
    const KCSplitBufferModel &model() const { return m_model; }
    int exec() override;
    void OnOK();

private:
    void refillDestWidths();

    KCSplitBufferModel m_model;
    QComboBox *m_sourceWidth;
    QComboBox *m_destWidth;
    KCAddEdit *m_first;
    KCAddEdit *m_last;
};
