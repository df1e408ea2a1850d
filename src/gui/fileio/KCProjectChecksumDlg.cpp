#include "KCProjectChecksumDlg.h"

#include "fileio/cKrlCrc16.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";

template <typename W> W *withId(W *widget, int id)
{
    widget->setProperty(ControlIdProperty, id);
    return widget;
}

} // namespace

KCProjectChecksumDlg::KCProjectChecksumDlg(QWidget *parent, const std::string &projectPath)
    : QDialog(parent), m_path(projectPath)
{
    setWindowTitle("Check Project Checksum");
    m_fileName = withId(new QLabel(QString::fromStdString(projectPath), this), IDC_FILE_NAME);
    m_fileName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_entry = withId(new QLineEdit(this), IDC_CHECKSUM_ENTRY);
    m_entry->setPlaceholderText("hexadecimal, e.g. A69D");
    auto *ok = withId(new QPushButton("OK", this), IDC_OK);
    auto *cancel = withId(new QPushButton("Cancel", this), IDC_CANCEL);
    ok->setDefault(true);

    auto *form = new QFormLayout;
    form->addRow("Project file:", m_fileName);
    form->addRow("CRC-16:", m_entry);
    auto *algorithm = new QLabel(cKrlCrc16::algorithmName(), this);
    algorithm->setWordWrap(true);
    form->addRow("", algorithm);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, &KCProjectChecksumDlg::OnOK);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

QWidget *KCProjectChecksumDlg::control(int id) const
{
    for (QWidget *w : findChildren<QWidget *>())
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCProjectChecksumDlg::OnOK()
{
    const uint16_t crc = cKrlCrc16().computeFile(m_path);
    if (cKrlCrc16::entryMatches(m_entry->text().toStdString(), crc)) {
        accept();
        return;
    }
    m_entry->setText(WrongText);
}
