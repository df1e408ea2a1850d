#include "KCSaveHandlerJobDlg.h"

#include "doc/KCDataDoc.h"
#include "doc/cHandlerJobSave.h"
#include "fileio/cKrlCrc16.h"
#include "host/KCMainProgDataExChange.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
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

KCSaveHandlerJobDlg::KCSaveHandlerJobDlg(QWidget *parent, KCDataDoc *doc) : QDialog(parent), m_doc(doc)
{
    setWindowTitle("Save Handler Job");
    setProperty(ControlIdProperty, IDD);
    m_actions = withId(new QComboBox(this), IDC_ACTION_LIST);
    m_checksum = withId(new QLabel(this), IDC_CHECKSUM);
    m_checksum->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_option = withId(new QCheckBox("Keep the device options fixed in the job", this), IDC_OPTION_BOX);
    auto *save = withId(new QPushButton("Save...", this), IDC_SAVE);
    auto *close = withId(new QPushButton("Close", this), IDC_CLOSE);
    save->setDefault(true);

    auto *form = new QFormLayout;
    form->addRow("Action:", m_actions);
    form->addRow("", m_option);
    form->addRow("CRC-16 of the job file:", m_checksum);
    // Named with its check value, so the figure can be reproduced with any CRC tool.
    auto *algorithm = new QLabel(QString("%1; \"123456789\" gives %2")
                                     .arg(cKrlCrc16::algorithmName(),
                                          QString::fromStdString(cKrlCrc16::toText(cKrlCrc16::CheckValue))),
                                 this);
    algorithm->setWordWrap(true);
    form->addRow("", algorithm);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    connect(save, &QPushButton::clicked, this, &KCSaveHandlerJobDlg::OnOK);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    askPath = [this] {
        const QString filter = QString("%1 (*.%2)").arg(cHandlerJobSave::FileFilterDescription,
                                                        cHandlerJobSave::FileExtension);
        return QFileDialog::getSaveFileName(this, "Save Handler Job", QString(), filter, nullptr,
                                            QFileDialog::DontUseNativeDialog)
            .toStdString();
    };
    OnInitDialog();
}

void KCSaveHandlerJobDlg::OnInitDialog()
{
    for (const std::string &a : cHandlerJobSave::actions())
        m_actions->addItem(QString::fromStdString(a));
    m_actions->setCurrentIndex(0);
    m_option->setChecked(true);
}

QWidget *KCSaveHandlerJobDlg::control(int id) const
{
    for (QWidget *w : findChildren<QWidget *>())
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCSaveHandlerJobDlg::OnOK()
{
    const std::string path = askPath ? askPath() : std::string();
    if (path.empty())
        return;
    uint16_t crc = 0;
    std::string error;
    if (!cHandlerJobSave::save(*m_doc, path, m_actions->currentText().toStdString(), m_option->isChecked() ? 1 : 0,
                               crc, error)) {
        if (KCMainProgDataExChange *host = m_doc->host()) {
            host->MessageBox("Write handlerjob file failed.", KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
            if (!error.empty())
                host->ShowMessage("\xA7" "E" + error);
        }
        return;
    }
    m_checksum->setText(QString::fromStdString(cKrlCrc16::toText(crc)));
}
