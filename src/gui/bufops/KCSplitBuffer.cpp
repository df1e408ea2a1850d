#include "bufops/KCSplitBuffer.h"

#include "bufops/KCAddEdit.h"
#include "doc/KCDataDoc.h"
#include "view/KCDataView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";
constexpr int HexBase = 16;
constexpr int AddressDigits = 8;

// The document of the frame's active window: the source of the split.
KCDocBase *activeDocument(QMdiArea *frame)
{
    QMdiSubWindow *sub = frame ? frame->currentSubWindow() : nullptr;
    auto *view = sub ? qobject_cast<KCDataView *>(sub->widget()) : nullptr;
    return view ? view->document() : nullptr;
}

uint32_t selectedWidth(const QComboBox *box)
{
    return box->currentIndex() < 0 ? 0 : box->currentData().toUInt();
}

} // namespace

KCSplitBuffer::KCSplitBuffer(QMdiArea *frame, std::function<KCDataDoc *()> newDocument, QWidget *parent)
    : QDialog(parent), m_model(activeDocument(frame), std::move(newDocument))
{
    setWindowTitle(tr("Split Buffer"));
    auto *form = new QFormLayout;
    const auto combo = [this, form](int id, const QString &label) {
        auto *box = new QComboBox(this);
        box->setProperty(ControlIdProperty, id);
        form->addRow(label, box);
        return box;
    };
    const auto edit = [this, form](int id, const QString &label) {
        auto *e = new KCAddEdit(this);
        e->setProperty(ControlIdProperty, id);
        e->setBounds(0, m_model.maxAddress());
        e->setBase(HexBase, AddressDigits);
        form->addRow(label, e);
        return e;
    };
    m_sourceWidth = combo(IDC_SOURCE_WIDTH, tr("&Source width (bits):"));
    m_destWidth = combo(IDC_DEST_WIDTH, tr("&Lane width (bits):"));
    m_first = edit(IDC_FIRST, tr("&First address (hex):"));
    m_last = edit(IDC_LAST, tr("Las&t address (hex):"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &KCSplitBuffer::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    for (uint32_t w : KCSplitBufferModel::SourceWidths())
        m_sourceWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_sourceWidth->setCurrentIndex(0);
    refillDestWidths();
    m_first->setValue(m_model.first());
    m_last->setValue(m_model.last());
    connect(m_sourceWidth, &QComboBox::currentIndexChanged, this, &KCSplitBuffer::refillDestWidths);
}

QWidget *KCSplitBuffer::control(int id) const
{
    for (QWidget *w : std::initializer_list<QWidget *>{m_sourceWidth, m_destWidth, m_first, m_last})
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCSplitBuffer::refillDestWidths()
{
    m_destWidth->clear();
    for (uint32_t w : KCSplitBufferModel::DestWidths(selectedWidth(m_sourceWidth)))
        m_destWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_destWidth->setCurrentIndex(m_destWidth->count() ? 0 : -1);
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
    if (m_model.apply(first, last, selectedWidth(m_sourceWidth), selectedWidth(m_destWidth))
        != KCSplitBufferModel::Refused)
        accept();
}
