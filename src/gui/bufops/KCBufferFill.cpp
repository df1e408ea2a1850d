#include "bufops/KCBufferFill.h"

#include "bufops/KCAddEdit.h"
#include "doc/KCDataDoc.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";
constexpr int HexBase = 16;
constexpr int AddressDigits = 8;
constexpr int ValueDigits = 2;
constexpr uint64_t MaxValue = 0xFF;

} // namespace

KCBufferFill::KCBufferFill(KCDataDoc *doc, QWidget *parent) : QDialog(parent), m_doc(doc), m_model(*doc)
{
    setWindowTitle(QString::fromStdString(doc->host()->GetHostString(KCHostStrings::FillErrorCaption)));
    setProperty(ControlIdProperty, int(IDD_BUFFER_FILL));
    auto *form = new QFormLayout;
    const auto make = [this, form](int id, const QString &label) {
        auto *e = new KCAddEdit(this);
        e->setProperty(ControlIdProperty, id);
        form->addRow(label, e);
        return e;
    };
    m_start = make(IDC_FILL_START, tr("&Start address (hex):"));
    m_end = make(IDC_FILL_END, tr("&End address (hex):"));
    m_value = make(IDC_FILL_VALUE, tr("&Value (hex):"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &KCBufferFill::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    OnInitDialog();
}

KCAddEdit *KCBufferFill::edit(int id) const
{
    for (KCAddEdit *e : {m_value, m_start, m_end})
        if (e->property(ControlIdProperty).toInt() == id)
            return e;
    return nullptr;
}

bool KCBufferFill::OnInitDialog()
{
    if (!m_model.isValid())
        return false;
    for (KCAddEdit *e : {m_start, m_end}) {
        e->setBounds(0, m_model.maxAddress());
        e->setBase(HexBase, AddressDigits);
    }
    m_start->setValue(m_model.start());
    m_end->setValue(m_model.end());
    m_value->setBounds(0, MaxValue);
    m_value->setBase(HexBase, ValueDigits);
    m_value->setValue(m_model.value());
    return true;
}

void KCBufferFill::OnOK()
{
    uint64_t start = 0, end = 0, value = 0;
    if (!m_start->value(start) || !m_end->value(end) || !m_value->value(value))
        return;
    KCMainProgDataExChange *host = m_doc->host();
    if (m_model.apply(start, end, unsigned(value)) == KCBufferFillModel::StartAfterEnd) {
        host->MessageBox(host->GetHostString(KCHostStrings::FillStartAfterEnd), KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        return;
    }
    // Done or refused, the dialog closes with OK.
    accept();
}
