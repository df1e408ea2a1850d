#include "bufops/KCSplitBuffer.h"

#include "bufops/KCAddEdit.h"
#include "bufops/KCLaneDialogForm.h"
#include "doc/KCDataDoc.h"
#include "view/KCDataView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace {

using Form = KCLaneDialogForm;

// The document of the frame's active window: the source of the split.
KCDocBase *activeDocument(QMdiArea *frame)
{
    QMdiSubWindow *sub = frame ? frame->currentSubWindow() : nullptr;
    auto *view = sub ? qobject_cast<KCDataView *>(sub->widget()) : nullptr;
    return view ? view->document() : nullptr;
}

} // namespace

KCSplitBuffer::KCSplitBuffer(QMdiArea *frame, std::function<KCDataDoc *()> newDocument, QWidget *parent)
    : QDialog(parent), m_model(activeDocument(frame), std::move(newDocument))
{
    setWindowTitle(tr("Split Buffer"));
    Form form(this);
    m_sourceWidth = form.addList(IDC_SOURCE_WIDTH, tr("&Source width (bits):"));
    m_destWidth = form.addList(IDC_DEST_WIDTH, tr("&Lane width (bits):"));
    m_first = form.addAddress(IDC_FIRST, tr("&First address (hex):"), m_model.maxAddress());
    m_last = form.addAddress(IDC_LAST, tr("Las&t address (hex):"), m_model.maxAddress());
    connect(form.finish(), &QDialogButtonBox::accepted, this, &KCSplitBuffer::OnOK);

    Form::setWidths(m_sourceWidth, KCSplitBufferModel::SourceWidths());
    refillDestWidths();
    m_first->setValue(m_model.first());
    m_last->setValue(m_model.last());
    connect(m_sourceWidth, &QComboBox::currentIndexChanged, this, &KCSplitBuffer::refillDestWidths);
}

QWidget *KCSplitBuffer::control(int id) const
{
    return Form::find({m_sourceWidth, m_destWidth, m_first, m_last}, id);
}

void KCSplitBuffer::refillDestWidths()
{
    Form::setWidths(m_destWidth, KCSplitBufferModel::DestWidths(Form::selectedWidth(m_sourceWidth)));
}

int KCSplitBuffer::exec()
{
    if (!m_model.isValid()) {
        m_model.showErrors();
        return Rejected;
    }
    return QDialog::exec();
}

void KCSplitBuffer::OnOK()
{
    uint64_t first = 0, last = 0;
    if (!m_first->value(first) || !m_last->value(last))
        return;
    // Done or stopped at a failure, the documents made stay open and the dialog closes.
    if (m_model.apply(first, last, Form::selectedWidth(m_sourceWidth), Form::selectedWidth(m_destWidth))
        != KCSplitBufferModel::Refused)
        accept();
}
