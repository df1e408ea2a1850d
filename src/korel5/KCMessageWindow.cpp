#include "KCMessageWindow.h"

#include "host/KCMessageMarks.h"

#include <QAction>
#include <QApplication>
#include <QStyle>

namespace {

const QColor ErrorText(0xB0, 0x00, 0x00);
const QColor WarningText(0x9A, 0x5B, 0x00);
const QColor InformationText(0x00, 0x3C, 0x8C);

// Colours come as 0x00BBGGRR.
QColor fromColorRef(uint32_t c)
{
    return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

} // namespace

KCMessageWindow::KCMessageWindow(QWidget *parent) : QListWidget(parent)
{
    setObjectName("messageWindow");
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformItemSizes(false);
    setWordWrap(true);
    const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    setIconSize(QSize(icon, icon));
    setContextMenuPolicy(Qt::ActionsContextMenu);
    auto *clear = new QAction(tr("Clear"), this);
    connect(clear, &QAction::triggered, this, &KCMessageWindow::clearMessages);
    addAction(clear);
}

void KCMessageWindow::showMessage(const std::string &text, uint32_t textColor, uint32_t backColor)
{
    const KCMessageMarks::Parsed parsed = KCMessageMarks::parse(text);
    auto *item = new QListWidgetItem(QString::fromUtf8(parsed.text.data(), int(parsed.text.size())));
    QStyle *s = style();
    switch (parsed.severity) {
    case KCMessageMarks::Error:
        item->setIcon(s->standardIcon(QStyle::SP_MessageBoxCritical));
        item->setForeground(ErrorText);
        ++m_errors;
        break;
    case KCMessageMarks::Warning:
        item->setIcon(s->standardIcon(QStyle::SP_MessageBoxWarning));
        item->setForeground(WarningText);
        ++m_warnings;
        break;
    case KCMessageMarks::Information:
        item->setIcon(s->standardIcon(QStyle::SP_MessageBoxInformation));
        item->setForeground(InformationText);
        break;
    case KCMessageMarks::Plain:
        if (!(textColor & DefaultColourBits))
            item->setForeground(fromColorRef(textColor));
        break;
    }
    if (!(backColor & DefaultColourBits))
        item->setBackground(fromColorRef(backColor));
    item->setData(Qt::UserRole, int(parsed.severity));
    addItem(item);
    while (count() > MaxLines)
        delete takeItem(0);
    scrollToBottom();
}

void KCMessageWindow::clearMessages()
{
    clear();
    m_errors = 0;
    m_warnings = 0;
}
