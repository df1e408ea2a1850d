#include "KCStatusBar.h"

#include "host/KCHostStrings.h"

#include <QFontMetrics>
#include <QLabel>

namespace {
// How long a text for an unknown pane stays in the message area.
constexpr int TransientMessageMs = 5000;
} // namespace

KCStatusBar::KCStatusBar(QWidget *parent) : QStatusBar(parent)
{
    setObjectName("statusBar");
    m_markSum = addPane("markSumPane", "Marked 0x00000000-0x00000000: sum 0x00000000");
    m_markSum->setVisible(false);
    m_checksum = addPane("checksumPane", "Checksum 0x00000000-0x00000000: 00000000");
    m_caret = addPane("caretPane", tr("Address: %1").arg("00000000.0"));
    m_mode = addPane("modePane", tr("OVR"));
    m_modified = addPane("modifiedPane", tr("Modified"));
    setInsertMode(true);
}

QLabel *KCStatusBar::addPane(const char *name, const QString &widest)
{
    auto *label = new QLabel(this);
    label->setObjectName(name);
    label->setMinimumWidth(QFontMetrics(label->font()).horizontalAdvance(widest) + 8);
    label->setAlignment(Qt::AlignCenter);
    addPermanentWidget(label);
    return label;
}

void KCStatusBar::setPaneText(unsigned paneId, const QString &text)
{
    if (paneId == STATUSPANE_CHECKSUM)
        m_checksum->setText(text);
    else
        showMessage(text, TransientMessageMs);
}

void KCStatusBar::setCaretAddress(const QString &text)
{
    m_caret->setText(text.isEmpty() ? QString() : tr("Address: %1").arg(text));
}

void KCStatusBar::setInsertMode(bool insert)
{
    m_mode->setText(insert ? tr("INS") : tr("OVR"));
    m_mode->setToolTip(insert ? tr("Paste inserts (Insert key switches)") : tr("Paste overwrites (Insert key switches)"));
}

void KCStatusBar::setMarkSum(const QString &text)
{
    m_markSum->setText(text);
    m_markSum->setVisible(!text.isEmpty());
}

QString KCStatusBar::markSumText() const
{
    return m_markSum->text();
}

void KCStatusBar::setModified(bool modified)
{
    m_modified->setText(modified ? tr("Modified") : QString());
}

void KCStatusBar::clearDocumentPanes()
{
    m_checksum->clear();
    m_caret->clear();
    setMarkSum(QString());
    m_modified->clear();
}

QString KCStatusBar::checksumText() const { return m_checksum->text(); }
QString KCStatusBar::caretText() const { return m_caret->text(); }
QString KCStatusBar::modeText() const { return m_mode->text(); }
QString KCStatusBar::modifiedText() const { return m_modified->text(); }
