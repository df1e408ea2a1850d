#include "cKrlCSVSerialNumberDlg.h"

#include "doc/KCDataDoc.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const char *const ControlIdProperty = "controlId";
// Wide enough for a rule check line with its value and byte count.
constexpr int DefaultWidth = 640;
constexpr int DefaultHeight = 360;
}

cKrlCSVSerialNumberDlg::cKrlCSVSerialNumberDlg(QWidget *parent, KCDataDoc *doc, const cKrlSerialNumberHandler *active,
                                               const QString &projectFile)
    : QDialog(parent), m_doc(doc)
{
    setWindowTitle(tr("CSV Serial Numbers"));
    m_messages = new QListWidget(this);
    m_fileName = new QLineEdit(this);
    m_fileName->setMaxLength(MaxPathLength);
    auto *browseButton = new QPushButton(tr("..."), this);
    m_strict = new QCheckBox(tr("Treat warnings as errors"), this);
    auto *checkButton = new QPushButton(tr("Check"), this);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_messages->setProperty(ControlIdProperty, IDC_CSV_MESSAGES);
    m_fileName->setProperty(ControlIdProperty, IDC_CSV_FILENAME);
    browseButton->setProperty(ControlIdProperty, IDC_CSV_BROWSE);
    m_strict->setProperty(ControlIdProperty, IDC_CSV_STRICT);
    checkButton->setProperty(ControlIdProperty, IDC_CSV_CHECK);

    auto *fileRow = new QHBoxLayout;
    fileRow->addWidget(m_fileName, 1);
    fileRow->addWidget(browseButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_messages, 1);
    layout->addLayout(fileRow);
    auto *checkRow = new QHBoxLayout;
    checkRow->addWidget(m_strict, 1);
    checkRow->addWidget(checkButton);
    layout->addLayout(checkRow);
    layout->addWidget(buttons);
    resize(DefaultWidth, DefaultHeight);
    connect(browseButton, &QPushButton::clicked, this, &cKrlCSVSerialNumberDlg::browse);
    connect(checkButton, &QPushButton::clicked, this, &cKrlCSVSerialNumberDlg::ruleCheck);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (ruleCheck())
            accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    if (!doc) {
        addLine(tr("Error: No document defined."));
        return;
    }
    if (active && active->isInUse()) {
        addLine(tr("Warning: Serial number handling is active."));
        addLine(tr("Warning: Every change is destroying the current serial number run."));
    }
    if (!projectFile.isEmpty()) {
        addLine(tr("Current project file: ") + projectFile);
        m_fileName->setText(projectFile);
    }
}

QWidget *cKrlCSVSerialNumberDlg::control(int id) const
{
    for (QWidget *w : findChildren<QWidget *>())
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

QString cKrlCSVSerialNumberDlg::fileName() const
{
    return m_fileName->text();
}

void cKrlCSVSerialNumberDlg::setFileName(const QString &path)
{
    m_fileName->setText(path);
}

void cKrlCSVSerialNumberDlg::addLine(const QString &line)
{
    m_messages->addItem(line);
    // The newest line is the one the user looks for.
    m_messages->setCurrentRow(m_messages->count() - 1);
}

void cKrlCSVSerialNumberDlg::browse()
{
    QFileDialog dialog(this, tr("CSV Serial Variables File"), m_fileName->text(),
                       tr("Norvita Serial Variables File (*.csv*)"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_fileName->setText(dialog.selectedFiles().front().left(MaxPathLength));
}

bool cKrlCSVSerialNumberDlg::ruleCheck()
{
    const QString path = m_fileName->text();
    addLine(tr("Starting rule check of file:"));
    addLine(path);
    cKrlSerialNumberHandler handler(path.toStdString(), m_strict->isChecked() ? cKrlSerialNumberHandler::ModeStrict
                                                                            : cKrlSerialNumberHandler::ModeLenient);
    if (m_doc)
        handler.setDeviceSize(m_doc->GetBufferSize());
    const bool ok = handler.readCSVSerialNumberFile();
    // Warnings are shown on success too, a line each. The path stands on the line above, so
    // each line starts with its line number rather than the path again (which pushed the
    // problem itself out of sight).
    const QString prefix = path + ": ";
    for (QString line : QString::fromStdString(handler.getErrors()).split('\n', Qt::SkipEmptyParts))
        addLine(line.startsWith(prefix) ? line.mid(prefix.size()) : line);
    addLine(ok ? tr("Rule check successful.") : tr("Rule check failed."));
    return ok;
}
