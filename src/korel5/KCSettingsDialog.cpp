#include "KCSettingsDialog.h"

#include "host/KCNumberText.h"

#include "KCAppSettings.h"

#include <QDialogButtonBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSpinBox>

namespace {

constexpr int HexBase = 16;

bool parseSize(const QString &text, uint64_t &size)
{
    // The field shows hexadecimal: digits without "0x" are hexadecimal too.
    return KCNumberText::parse(text.toStdString(), size, KCAppSettings::MaxBufferSize, HexBase) && size > 0;
}

} // namespace

KCSettingsDialog::KCSettingsDialog(const KCAppSettings &settings, QWidget *parent)
    : QDialog(parent), m_font(settings.font())
{
    setWindowTitle(tr("Settings"));
    m_size = new QLineEdit(QString::number(settings.defaultBufferSize(), HexBase).toUpper(), this);
    m_size->setObjectName("bufferSizeEdit");
    m_size->setValidator(new QRegularExpressionValidator(QRegularExpression("(0[xX])?[0-9A-Fa-f]{1,9}"), m_size));
    m_fill = new QSpinBox(this);
    m_fill->setObjectName("fillByteSpin");
    m_fill->setDisplayIntegerBase(HexBase);
    m_fill->setRange(0, 0xFF);
    m_fill->setPrefix("0x");
    m_fill->setValue(settings.fillByte());
    m_undoBudget = new QSpinBox(this);
    m_undoBudget->setObjectName("undoBudgetSpin");
    m_undoBudget->setRange(0, int(KCAppSettings::MaxUndoBudgetMiB));
    m_undoBudget->setSuffix(tr(" MiB"));
    m_undoBudget->setSpecialValueText(tr("Off"));
    m_undoBudget->setToolTip(tr("Memory each buffer's undo history may hold. A change that needs more is made only "
                                "after asking, and cannot be undone."));
    m_undoBudget->setValue(int(settings.undoBudgetMiB()));
    m_hitListLimit = new QSpinBox(this);
    m_hitListLimit->setObjectName("hitListLimitSpin");
    m_hitListLimit->setRange(1, int(KCAppSettings::MaxHitListLimit));
    m_hitListLimit->setToolTip(tr("Addresses Find All lists; it goes on counting beyond them."));
    m_hitListLimit->setValue(int(settings.hitListLimit()));
    m_fontLabel = new QLabel(this);
    auto *fontButton = new QPushButton(tr("Choose..."), this);
    connect(fontButton, &QPushButton::clicked, this, &KCSettingsDialog::chooseFont);
    showFont();

    auto *fontRow = new QHBoxLayout;
    fontRow->addWidget(m_fontLabel, 1);
    fontRow->addWidget(fontButton);
    auto *form = new QFormLayout;
    form->addRow(tr("New buffer size (hex bytes):"), m_size);
    form->addRow(tr("Fill byte:"), m_fill);
    form->addRow(tr("Undo memory:"), m_undoBudget);
    form->addRow(tr("Find All lists at most:"), m_hitListLimit);
    form->addRow(tr("Data view font:"), fontRow);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        uint64_t size = 0;
        if (parseSize(m_size->text(), size))
            accept();
        else
            m_size->setFocus();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void KCSettingsDialog::chooseFont()
{
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, m_font, this, tr("Data view font"),
                                            QFontDialog::MonospacedFonts | QFontDialog::DontUseNativeDialog);
    if (!ok)
        return;
    m_font = font;
    m_fontChanged = true;
    showFont();
}

void KCSettingsDialog::showFont()
{
    m_fontLabel->setText(QString("%1, %2 pt").arg(m_font.family()).arg(m_font.pointSize()));
}

bool KCSettingsDialog::applyTo(KCAppSettings &settings) const
{
    uint64_t size = 0;
    if (!parseSize(m_size->text(), size))
        return false;
    settings.setDefaultBufferSize(size);
    settings.setFillByte(static_cast<uint8_t>(m_fill->value()));
    settings.setUndoBudgetMiB(unsigned(m_undoBudget->value()));
    settings.setHitListLimit(unsigned(m_hitListLimit->value()));
    if (m_fontChanged)
        settings.setFont(m_font);
    return true;
}
