#include "KCSerialDefDlg.h"

#include "doc/KCDataDoc.h"
#include "host/KCNumberText.h"
#include "serial/KCSerialDefCtrl.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";
constexpr int MaxSerialBytes = int(KCSerialDefCtrl::MaxElementLength);

bool parseHex(const QString &text, unsigned &value)
{
    // The field shows hexadecimal: digits without "0x" are hexadecimal too.
    uint64_t v = 0;
    if (!KCNumberText::parse(text.toStdString(), v, 0xFFFFFFFFull, 16))
        return false;
    value = static_cast<unsigned>(v);
    return true;
}

QString hex(unsigned v)
{
    return QStringLiteral("0x%1").arg(v, 0, 16).toUpper().replace("0X", "0x");
}

} // namespace

template <class T> T *KCSerialDefDlg::addControl(T *widget, int id)
{
    widget->setProperty(ControlIdProperty, id);
    return widget;
}

KCSerialDefDlg::KCSerialDefDlg(QWidget *parent, KCDataDoc *doc) : QDialog(parent), m_doc(doc), m_settings(&doc->serialState())
{
    setWindowTitle(tr("Serial Numbers"));
    auto *top = new QVBoxLayout(this);

    auto *fileBox = new QGroupBox(tr("Serial numbers"), this);
    auto *fileLayout = new QVBoxLayout(fileBox);
    m_chooseNo = addControl(new QRadioButton(tr("&No serial numbers"), fileBox), IDC_SERIAL_CHOOSE_NO);
    m_chooseInternal = addControl(
        new QRadioButton(tr("&Default definition file (%1)").arg(KCSerialDefCtrl::DefaultFileName), fileBox),
        IDC_SERIAL_CHOOSE_INTERNAL);
    m_chooseCustom = addControl(new QRadioButton(tr("&Own definition file:"), fileBox), IDC_SERIAL_CHOOSE_CUSTOM);
    auto *fileRow = new QHBoxLayout;
    m_fileName = addControl(new QLineEdit(fileBox), IDC_SERIAL_FILENAME);
    m_fileName->setReadOnly(true);
    auto *browse = addControl(new QPushButton(tr("&Browse..."), fileBox), IDC_SERIAL_FILEDIALOG);
    fileRow->addWidget(m_fileName, 1);
    fileRow->addWidget(browse);
    fileLayout->addWidget(m_chooseNo);
    fileLayout->addWidget(m_chooseInternal);
    fileLayout->addWidget(m_chooseCustom);
    fileLayout->addLayout(fileRow);
    top->addWidget(fileBox);
    m_fileControls = {m_fileName, browse};

    auto *numberBox = new QGroupBox(tr("Number"), this);
    auto *form = new QFormLayout(numberBox);
    m_address = addControl(new QLineEdit(numberBox), IDC_SERIAL_ADDRESS);
    m_byteCount = addControl(new QSpinBox(numberBox), IDC_SERIAL_BYTECOUNT);
    m_byteCount->setRange(1, MaxSerialBytes);
    m_length = addControl(new QLineEdit(numberBox), IDC_SERIAL_DEFAULT_LENGTH);
    m_next = addControl(new QLineEdit(numberBox), IDC_SERIAL_DEFAULT_NEXT);
    m_step = addControl(new QLineEdit(numberBox), IDC_SERIAL_DEFAULT_STEP);
    auto *saveDefault = addControl(new QPushButton(tr("&Save to file"), numberBox), IDC_SERIAL_SAVE_DEFAULT);
    form->addRow(tr("Buffer &address (hex):"), m_address);
    form->addRow(tr("B&ytes in the buffer:"), m_byteCount);
    form->addRow(tr("First block &length (1-4 bytes):"), m_length);
    form->addRow(tr("First block &next (hex):"), m_next);
    form->addRow(tr("First block s&tep (hex):"), m_step);
    form->addRow(QString(), saveDefault);

    auto *repr = new QHBoxLayout;
    auto makePair = [&](const QString &a, int ida, const QString &b, int idb, QRadioButton *&ra, QRadioButton *&rb) {
        auto *box = new QGroupBox(numberBox);
        auto *l = new QVBoxLayout(box);
        ra = addControl(new QRadioButton(a, box), ida);
        rb = addControl(new QRadioButton(b, box), idb);
        l->addWidget(ra);
        l->addWidget(rb);
        repr->addWidget(box);
        return box;
    };
    QWidget *decHex = makePair(tr("D&ecimal"), IDC_SERIAL_DEC, tr("&Hexadecimal"), IDC_SERIAL_HEX, m_dec, m_hex);
    QWidget *ascBin = makePair(tr("As&cii text"), IDC_SERIAL_ASC, tr("B&inary"), IDC_SERIAL_BIN, m_asc, m_bin);
    QWidget *endian = makePair(tr("&Big endian"), IDC_SERIAL_BIGENDIAN, tr("&Little endian"), IDC_SERIAL_LITTLEENDIAN,
                               m_big, m_little);
    form->addRow(repr);
    // The run's policy for failed devices is stored with the serial settings, in the project.
    auto *policy = new QWidget(numberBox);
    auto *policyRow = new QHBoxLayout(policy);
    policyRow->setContentsMargins(0, 0, 0, 0);
    m_discard = addControl(new QRadioButton(tr("discard"), policy), IDC_SERIAL_DISCARD);
    m_discard->setToolTip(tr("A failed device's number is used up"));
    m_reuse = addControl(new QRadioButton(tr("reuse"), policy), IDC_SERIAL_REUSE);
    m_reuse->setToolTip(tr("A failed device's number is handed out again next"));
    policyRow->addWidget(m_discard);
    policyRow->addWidget(m_reuse);
    policyRow->addStretch(1);
    form->addRow(tr("Failed device's n&umber:"), policy);
    m_preview = addControl(new QLabel(numberBox), IDC_SERIAL_PREVIEW);
    m_preview->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(tr("Next device gets:"), m_preview);
    m_conflict = addControl(new QLabel(numberBox), IDC_SERIAL_CONFLICT);
    m_conflict->setWordWrap(true);
    m_conflict->setStyleSheet(QStringLiteral("color: #C00000"));
    m_conflict->setVisible(false);
    form->addRow(m_conflict);
    top->addWidget(numberBox);
    m_numberControls = {m_address, m_byteCount, m_length, m_next, m_step, saveDefault, decHex, ascBin, endian, policy};

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
    addControl(buttons->button(QDialogButtonBox::Apply), IDC_SERIAL_APPLY);
    top->addWidget(buttons);

    connect(m_chooseNo, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialChooseNo);
    connect(m_chooseInternal, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialChooseInternal);
    connect(m_chooseCustom, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialChooseCustom);
    connect(browse, &QPushButton::clicked, this, &KCSerialDefDlg::OnSerialFiledialog);
    connect(m_address, &QLineEdit::textEdited, this, &KCSerialDefDlg::OnEDIT_ChangedAdr);
    connect(m_byteCount, qOverload<int>(&QSpinBox::valueChanged), this, &KCSerialDefDlg::OnEDITChangeSerialByteCount);
    connect(m_length, &QLineEdit::textEdited, this, &KCSerialDefDlg::OnChangeSerialDefaultLength);
    connect(m_next, &QLineEdit::textEdited, this, &KCSerialDefDlg::OnChangeSerialDefaultNext);
    connect(m_step, &QLineEdit::textEdited, this, &KCSerialDefDlg::OnChangeSerialDefaultStep);
    connect(saveDefault, &QPushButton::clicked, this, &KCSerialDefDlg::OnSerialSaveDefault);
    connect(m_big, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialBigEndian);
    connect(m_little, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialLittleEndian);
    connect(m_dec, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialDEC);
    connect(m_hex, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialHEX);
    connect(m_asc, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialASC);
    connect(m_bin, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialBIN);
    connect(m_discard, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialDiscard);
    connect(m_reuse, &QRadioButton::clicked, this, &KCSerialDefDlg::OnSerialReuse);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &KCSerialDefDlg::OnApply);
    connect(buttons, &QDialogButtonBox::accepted, this, &KCSerialDefDlg::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &KCSerialDefDlg::OnCancel);

    OnInitDialog();
}

QWidget *KCSerialDefDlg::control(int id) const
{
    for (QWidget *w : findChildren<QWidget *>())
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCSerialDefDlg::OnInitDialog()
{
    m_updating = true;
    m_fileName->setText(QString::fromStdString(m_settings.fileName()));
    m_address->setText(hex(m_settings.address()));
    m_byteCount->setValue(int(m_settings.byteCount()));
    m_updating = false;
    showFlags();
    SetLayoutToCurrentSerialType(m_settings.choice());
}

void KCSerialDefDlg::SetLayoutToCurrentSerialType(int choice)
{
    m_chooseNo->setChecked(choice == KCSerialSettings::ChoiceNone);
    m_chooseInternal->setChecked(choice == KCSerialSettings::ChoiceInternal);
    m_chooseCustom->setChecked(choice == KCSerialSettings::ChoiceCustom);
    EnableFrameXObjects(m_fileControls, choice == KCSerialSettings::ChoiceCustom);
    EnableFrameXObjects(m_numberControls, choice != KCSerialSettings::ChoiceNone);
    showFirstBlock();
    UpdatePreviewFrame();
}

void KCSerialDefDlg::EnableFrameXObjects(const std::vector<QWidget *> &objects, int enable)
{
    for (QWidget *w : objects)
        w->setEnabled(enable != 0);
}

void KCSerialDefDlg::SetNewTMPFilename(const std::string &path)
{
    m_settings.setFileName(path);
    m_fileName->setText(QString::fromStdString(path));
}

void KCSerialDefDlg::UpdatePreviewFrame()
{
    const std::string preview = m_settings.previewText();
    m_preview->setText(preview.empty() ? tr("(none)") : QString::fromLatin1(preview.data(), int(preview.size())));
    // A setting that would cut the number, or put it outside the buffer, shows before Apply.
    const std::string conflict = m_settings.conflict();
    QString text = QString::fromStdString(conflict);
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    m_conflict->setText(text);
    m_conflict->setVisible(!conflict.empty());
}

void KCSerialDefDlg::showFlags()
{
    const unsigned f = m_settings.flags();
    m_dec->setChecked(f & KCSerialDefCtrl::FlagDec);
    m_hex->setChecked(f & KCSerialDefCtrl::FlagHex);
    m_asc->setChecked(f & KCSerialDefCtrl::FlagAsc);
    m_bin->setChecked(f & KCSerialDefCtrl::FlagBin);
    m_big->setChecked(f & KCSerialDefCtrl::FlagBigEndian);
    m_little->setChecked(f & KCSerialDefCtrl::FlagLittleEndian);
    m_discard->setChecked(!m_settings.reuseFailed());
    m_reuse->setChecked(m_settings.reuseFailed());
}

void KCSerialDefDlg::showFirstBlock()
{
    m_updating = true;
    m_length->setText(QString::number(m_settings.firstLength()));
    m_next->setText(hex(m_settings.firstNext()));
    m_step->setText(hex(m_settings.firstStep()));
    m_updating = false;
}

void KCSerialDefDlg::setFlag(unsigned bit)
{
    m_settings.setFlag(bit);
    showFlags();
    UpdatePreviewFrame();
}

void KCSerialDefDlg::OnSerialChooseNo()
{
    m_settings.setChoice(KCSerialSettings::ChoiceNone);
    SetLayoutToCurrentSerialType(KCSerialSettings::ChoiceNone);
}

void KCSerialDefDlg::OnSerialChooseInternal()
{
    m_settings.setChoice(KCSerialSettings::ChoiceInternal);
    m_fileName->setText(QString::fromStdString(m_settings.fileName()));
    SetLayoutToCurrentSerialType(KCSerialSettings::ChoiceInternal);
}

void KCSerialDefDlg::OnSerialChooseCustom()
{
    m_settings.setChoice(KCSerialSettings::ChoiceCustom);
    SetLayoutToCurrentSerialType(KCSerialSettings::ChoiceCustom);
}

void KCSerialDefDlg::OnSerialFiledialog()
{
    QFileDialog dialog(this, tr("Serial Number Definition File"), m_fileName->text(),
                       tr("Serial definitions (*.ser);;All Files (*)"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    SetNewTMPFilename(dialog.selectedFiles().first().toStdString());
    SetLayoutToCurrentSerialType(m_settings.choice());
}

void KCSerialDefDlg::OnEDIT_ChangedAdr()
{
    unsigned v = 0;
    if (parseHex(m_address->text(), v)) {
        m_settings.setAddress(v);
        UpdatePreviewFrame();
    }
}

void KCSerialDefDlg::OnEDITChangeSerialByteCount()
{
    if (m_updating)
        return;
    m_settings.setByteCount(unsigned(m_byteCount->value()));
    UpdatePreviewFrame();
}

void KCSerialDefDlg::OnChangeSerialDefaultLength()
{
    bool ok = false;
    const unsigned v = m_length->text().trimmed().toUInt(&ok);
    if (ok)
        m_settings.setFirst(v, m_settings.firstNext(), m_settings.firstStep());
}

void KCSerialDefDlg::OnChangeSerialDefaultNext()
{
    unsigned v = 0;
    if (parseHex(m_next->text(), v))
        m_settings.setFirst(m_settings.firstLength(), v, m_settings.firstStep());
}

void KCSerialDefDlg::OnChangeSerialDefaultStep()
{
    unsigned v = 0;
    if (parseHex(m_step->text(), v))
        m_settings.setFirst(m_settings.firstLength(), m_settings.firstNext(), v);
}

void KCSerialDefDlg::OnSerialSaveDefault()
{
    m_settings.OnSerialSaveDefault();
    m_settings.readFirstBlock();
    showFirstBlock();
    UpdatePreviewFrame();
}

void KCSerialDefDlg::OnSerialBigEndian() { setFlag(KCSerialDefCtrl::FlagBigEndian); }
void KCSerialDefDlg::OnSerialLittleEndian() { setFlag(KCSerialDefCtrl::FlagLittleEndian); }
void KCSerialDefDlg::OnSerialDEC() { setFlag(KCSerialDefCtrl::FlagDec); }
void KCSerialDefDlg::OnSerialHEX() { setFlag(KCSerialDefCtrl::FlagHex); }
void KCSerialDefDlg::OnSerialASC() { setFlag(KCSerialDefCtrl::FlagAsc); }
void KCSerialDefDlg::OnSerialBIN() { setFlag(KCSerialDefCtrl::FlagBin); }

void KCSerialDefDlg::OnSerialDiscard()
{
    m_settings.setReuseFailed(false);
    showFlags();
}

void KCSerialDefDlg::OnSerialReuse()
{
    m_settings.setReuseFailed(true);
    showFlags();
}

void KCSerialDefDlg::OnApply()
{
    m_settings.OnApply();
    SetLayoutToCurrentSerialType(m_settings.choice());
}

void KCSerialDefDlg::OnOK()
{
    OnApply();
    accept();
}

void KCSerialDefDlg::OnCancel()
{
    reject();
}
