#include "KCFileDialog.h"

#include "host/KCHostStrings.h"
#include "KCLoadSaveCombo.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPushButton>
#include <QSignalBlocker>

Q_LOGGING_CATEGORY(lcFileDialog, "krldv.filedialog", QtWarningMsg)

namespace {

// Names the toolkit gives the widgets of its own file dialog.
const char *const FileNameEditName = "fileNameEdit";
const char *const FileTypeComboName = "fileTypeCombo";
const char *const FileTypeLabelName = "fileTypeLabel";
const char *const ButtonBoxName = "buttonBox";
// The all-files pattern of the filter list; "*.*" would skip names without a dot here.
const char *const AllFilesPattern = "*.*";

QString hostText(unsigned id)
{
    const std::string text = g_pMainProgDataExChange ? g_pMainProgDataExChange->GetHostString(id)
                                                     : "<string " + std::to_string(id) + ">";
    return QString::fromStdString(text);
}

void setControlId(QWidget *w, int id)
{
    if (w)
        w->setProperty(KCFileDialog::ControlIdProperty, id);
}

} // namespace

KCFileDialog::KCFileDialog(QWidget *parent) : QFileDialog(parent), KCFileDialogCore()
{
    setUpDialog(true, FILEDIALOG_OPTIONS);
}

KCFileDialog::KCFileDialog(int openFileDialog, const QString &defaultExtension, const QString &fileName,
                           unsigned flags, QWidget *parent)
    : QFileDialog(parent), KCFileDialogCore(openFileDialog != 0)
{
    setUpDialog(openFileDialog != 0, flags);
    if (!defaultExtension.isEmpty())
        setDefaultSuffix(defaultExtension);
    if (!fileName.isEmpty())
        selectFile(fileName);
}

KCFileDialog::~KCFileDialog()
{
    // Closed without ever finishing (e.g. its parent went away): still keep the user's choice.
    if (m_initialised && !m_ended)
        OnDestroy();
}

void KCFileDialog::setUpDialog(bool open, unsigned flags)
{
    setOption(QFileDialog::DontUseNativeDialog, true);
    setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    setOption(QFileDialog::DontConfirmOverwrite, !(flags & OFN_OVERWRITEPROMPT));

    // Without a command (m_CallFromMenue below 1) there are only the two fixed rows: no filters.
    if (rows().size() > 2) {
        QStringList filters;
        for (const auto &pair : filterPairs()) {
            QString text = QString::fromStdString(pair.first);
            if (pair.second == AllFilesPattern)
                text.replace(QLatin1String("(*.*)"), QLatin1String("(*)"));
            filters << text;
        }
        setNameFilters(filters);
    }
    if (isSaveMode() && !defaultExtension().empty())
        setDefaultSuffix(QString::fromStdString(defaultExtension()));

    setControlId(findChild<QWidget *>(FileTypeComboName), IDC_FILETYPE_COMBO);
    setControlId(findChild<QWidget *>(FileTypeLabelName), IDC_FILETYPE_LABEL);
    if (auto *box = findChild<QDialogButtonBox *>(ButtonBoxName)) {
        const QList<QAbstractButton *> buttons = box->buttons();
        for (QAbstractButton *b : buttons)
            if (box->buttonRole(b) == QDialogButtonBox::AcceptRole)
                setControlId(b, IDC_OK);
    }
    connectNotifications();
}

void KCFileDialog::connectNotifications()
{
    connect(this, &QFileDialog::filterSelected, this, &KCFileDialog::filterChanged);
    connect(this, &QFileDialog::currentChanged, this, [this](const QString &path) {
        const QFileInfo info(path);
        if (!info.isDir())
            fileNameChanged(info.fileName().toStdString());
    });
    if (auto *edit = findChild<QLineEdit *>(FileNameEditName))
        connect(edit, &QLineEdit::textChanged, this,
                [this](const QString &text) { fileNameChanged(text.toStdString()); });
    connect(this, &QDialog::finished, this, [this](int) { OnDestroy(); });
}

void KCFileDialog::showEvent(QShowEvent *event)
{
    if (!m_initialised)
        OnInitDialog();
    QFileDialog::showEvent(event);
}

bool KCFileDialog::OnInitDialog()
{
    if (m_initialised)
        return true;
    m_initialised = true;
    m_ended = false;

    m_combo = new KCLoadSaveCombo(this);
    m_combo->setObjectName("loadSaveCombo");
    setControlId(m_combo, IDC_LOADSAVE_COMBO);
    m_combo->setFont(font());
    m_label = new QLabel(hostText(KCHostStrings::FileDialogFormatLabel), this);
    m_label->setObjectName("formatLabel");
    setControlId(m_label, IDC_FORMAT_LABEL);
    m_label->setFont(font());
    m_label->setText(QString::fromStdString(labelCaption()));
    m_label->setBuddy(m_combo);

    // One row below the file-type row, in the columns of its label and combo.
    int labelColumn = 0, comboColumn = 1, comboColumns = 1;
    auto *grid = qobject_cast<QGridLayout *>(layout());
    if (grid) {
        int row, span, columnSpan;
        if (QWidget *typeLabel = findChild<QWidget *>(FileTypeLabelName))
            if (const int i = grid->indexOf(typeLabel); i >= 0)
                grid->getItemPosition(i, &row, &labelColumn, &span, &columnSpan);
        if (QWidget *typeCombo = findChild<QWidget *>(FileTypeComboName)) {
            if (const int i = grid->indexOf(typeCombo); i >= 0)
                grid->getItemPosition(i, &row, &comboColumn, &span, &comboColumns);
            m_combo->setSizePolicy(typeCombo->sizePolicy());
        }
        const int newRow = grid->rowCount();
        grid->addWidget(m_label, newRow, labelColumn);
        grid->addWidget(m_combo, newRow, comboColumn, 1, comboColumns);
    } else if (layout()) {
        layout()->addWidget(m_label);
        layout()->addWidget(m_combo);
    }

    for (const std::string &text : comboTexts())
        m_combo->addItem(QString::fromStdString(text));
    initComboSelection();
    syncFromCore();
    connect(m_combo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int index) { setComboSelection(index); });

    if (m_CallFromMenue == CALLFROM_RELOAD) {
        setWindowTitle(hostText(KCHostStrings::ReloadTitle));
        setLabelText(QFileDialog::Accept, hostText(KCHostStrings::ReloadButton));
    }

    // The name the dialog starts with is its first notification: it is only recorded.
    OnFileNameChange();
    return true;
}

void KCFileDialog::syncFromCore()
{
    if (m_combo && comboSelection() >= 0 && comboSelection() < m_combo->count()) {
        const QSignalBlocker block(m_combo);
        m_combo->setCurrentIndex(comboSelection());
    }
    if (isSaveMode() && !defaultExtension().empty())
        setDefaultSuffix(QString::fromStdString(defaultExtension()));
}

int KCFileDialog::filterRowOf(const QString &filter) const
{
    // The filter list leaves out the "Dummy" row 0: its index plus one is the row.
    const int i = nameFilters().indexOf(filter);
    return i < 0 ? -1 : i + 1;
}

void KCFileDialog::filterChanged(const QString &filter)
{
    KCFileDialogCore::OnTypeChange(filterRowOf(filter));
    syncFromCore();
}

void KCFileDialog::OnTypeChange()
{
    filterChanged(selectedNameFilter());
}

void KCFileDialog::fileNameChanged(const std::string &name)
{
    qCDebug(lcFileDialog) << "file name" << QString::fromStdString(name);
    KCFileDialogCore::OnFileNameChange(name);
    syncFromCore();
}

void KCFileDialog::OnFileNameChange()
{
    const auto *edit = findChild<QLineEdit *>(FileNameEditName);
    fileNameChanged(edit ? edit->text().toStdString() : std::string());
}

void KCFileDialog::OnDestroy()
{
    m_ended = true;
    if (!m_combo)
        return;
    setComboSelection(m_combo->currentIndex());
    KCFileDialogCore::OnDestroy();
}

void KCFileDialog::selectFilterType(FILTERTYPE filterType)
{
    const int row = GetFilterIndex(filterType);
    const QStringList filters = nameFilters();
    if (row >= 1 && row - 1 < filters.size())
        selectNameFilter(filters[row - 1]);
}

FILTERTYPE KCFileDialog::selectedFilterType() const
{
    const int row = filterRowOf(selectedNameFilter());
    return row < 0 ? FILTER_INVALID : GetFilterType(row);
}

QWidget *KCFileDialog::controlById(int id) const
{
    const QList<QWidget *> widgets = findChildren<QWidget *>();
    for (QWidget *w : widgets) {
        const QVariant v = w->property(ControlIdProperty);
        if (v.isValid() && v.toInt() == id)
            return w;
    }
    return nullptr;
}
