#include "bufops/KCLaneDialogForm.h"

#include "bufops/KCAddEdit.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace {

// Tests and the help find a dialog's controls by the ids of the original resource.
const char *const ControlIdProperty = "controlId";
constexpr int HexBase = 16;
constexpr int AddressDigits = 8;

} // namespace

KCLaneDialogForm::KCLaneDialogForm(QDialog *dialog) : m_dialog(dialog), m_form(new QFormLayout)
{
}

QComboBox *KCLaneDialogForm::addList(int id, const QString &label)
{
    auto *box = new QComboBox(m_dialog);
    box->setProperty(ControlIdProperty, id);
    m_form->addRow(label, box);
    return box;
}

KCAddEdit *KCLaneDialogForm::addAddress(int id, const QString &label, uint64_t maxAddress)
{
    auto *edit = new KCAddEdit(m_dialog);
    edit->setProperty(ControlIdProperty, id);
    edit->setBounds(0, maxAddress);
    edit->setBase(HexBase, AddressDigits);
    m_form->addRow(label, edit);
    return edit;
}

QDialogButtonBox *KCLaneDialogForm::finish()
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, m_dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, m_dialog, &QDialog::reject);
    auto *layout = new QVBoxLayout(m_dialog);
    layout->addLayout(m_form);
    layout->addWidget(buttons);
    return buttons;
}

QWidget *KCLaneDialogForm::find(const std::vector<QWidget *> &controls, int id)
{
    for (QWidget *w : controls)
        if (w && w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

uint32_t KCLaneDialogForm::selectedWidth(const QComboBox *box)
{
    return box->currentIndex() < 0 ? 0 : box->currentData().toUInt();
}

void KCLaneDialogForm::setWidths(QComboBox *box, const std::vector<uint32_t> &widths)
{
    box->clear();
    for (uint32_t w : widths)
        box->addItem(QString::number(w), w);
    box->setCurrentIndex(box->count() ? 0 : -1);
}
