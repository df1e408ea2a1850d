#pragma once

#include "bufops/KCBufferFillModel.h"

#include <QDialog>

class KCAddEdit;
class KCDataDoc;

// The fill dialog: a value into an address range of the document's buffer. Its rules are
// KCBufferFillModel's; the dialog shows them and forwards OK.
class KCBufferFill : public QDialog
{
    Q_OBJECT
public:
    enum : int { IDD_BUFFER_FILL = 2177, IDC_FILL_VALUE = 2782, IDC_FILL_START = 2780, IDC_FILL_END = 2781 };

    KCBufferFill(KCDataDoc *doc, QWidget *parent = nullptr);
    // False without a buffer: the dialog cannot be shown.
    bool OnInitDialog();
    void OnOK();
    KCAddEdit *edit(int id) const;

private:
    KCDataDoc *m_doc;
    KCBufferFillModel m_model;
    KCAddEdit *m_value;
    KCAddEdit *m_start;
    KCAddEdit *m_end;
    int m_bufferId = -1;
};
