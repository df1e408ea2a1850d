#include "KCSelectDeviceDialog.h"

#include "devopt/KCDeviceDatabase.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

enum Column { ColumnName, ColumnVendor, ColumnFamily, ColumnKind, ColumnSize, ColumnEngine, ColumnCount };
constexpr int DialogWidth = 820;
constexpr int DialogHeight = 520;
constexpr uint64_t KiB = 1024;

QString sizeText(uint64_t bytes)
{
    if (bytes >= KiB * KiB && bytes % (KiB * KiB) == 0)
        return QString("%1 MiB").arg(bytes / (KiB * KiB));
    if (bytes >= KiB && bytes % KiB == 0)
        return QString("%1 KiB").arg(bytes / KiB);
    return QString("%1 B").arg(bytes);
}

} // namespace

KCSelectDeviceDialog::KCSelectDeviceDialog(const KCDeviceDatabase &database, const QStringList &recent, QWidget *parent)
    : QDialog(parent), m_database(database), m_recent(recent)
{
    setWindowTitle(tr("Select Device"));
    m_filter = new QLineEdit(this);
    m_filter->setObjectName("deviceFilter");
    m_filter->setPlaceholderText(tr("Type part of a name or vendor"));
    m_filter->setClearButtonEnabled(true);
    m_list = new QTreeWidget(this);
    m_list->setObjectName("deviceList");
    m_list->setColumnCount(ColumnCount);
    m_list->setHeaderLabels({tr("Device"), tr("Vendor"), tr("Family"), tr("Kind"), tr("Size"), tr("Engine")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (!selectedName().isEmpty())
            accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(m_filter, &QLineEdit::textChanged, this, &KCSelectDeviceDialog::refill);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            [buttons, this] { buttons->button(QDialogButtonBox::Ok)->setEnabled(!selectedName().isEmpty()); });
    connect(m_filter, &QLineEdit::returnPressed, this, [this] {
        if (!selectedName().isEmpty())
            accept();
    });

    auto *layout = new QVBoxLayout(this);
    auto *label = new QLabel(tr("&Filter:"), this);
    label->setBuddy(m_filter);
    layout->addWidget(label);
    layout->addWidget(m_filter);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    resize(DialogWidth, DialogHeight);
    refill();
    m_filter->setFocus();
}

void KCSelectDeviceDialog::keyPressEvent(QKeyEvent *event)
{
    // Up and Down in the filter move through the list, so the keyboard alone picks a device.
    const int key = event->key();
    if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        QCoreApplication::sendEvent(m_list, event);
        return;
    }
    QDialog::keyPressEvent(event);
}

QString KCSelectDeviceDialog::selectedName() const
{
    const QTreeWidgetItem *item = m_list->currentItem();
    return item ? item->text(ColumnName) : QString();
}

void KCSelectDeviceDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

void KCSelectDeviceDialog::refill()
{
    m_list->clear();
    const auto found = m_database.match(m_filter->text().trimmed().toStdString());
    const auto add = [this](const DEVICE_KRLXDEF_ITEM &d) {
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(ColumnName, QString::fromStdString(d.name));
        item->setText(ColumnVendor, QString::fromStdString(d.vendor));
        item->setText(ColumnFamily, QString::fromStdString(d.familyName));
        item->setText(ColumnKind, QString("0x%1").arg(d.kind, 0, 16));
        item->setText(ColumnSize, sizeText(d.bufferSize));
        item->setTextAlignment(ColumnSize, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(ColumnEngine, d.engine.empty() ? QString("-") : QString::fromStdString(d.engine));
        return item;
    };
    // Recent devices that match lead the list, in bold.
    for (const QString &name : m_recent) {
        const DEVICE_KRLXDEF_ITEM *d = m_database.find(name.toStdString());
        if (!d || std::find(found.begin(), found.end(), d) == found.end())
            continue;
        QTreeWidgetItem *item = add(*d);
        QFont bold = item->font(ColumnName);
        bold.setBold(true);
        item->setFont(ColumnName, bold);
        item->setToolTip(ColumnName, tr("Used recently"));
    }
    for (const DEVICE_KRLXDEF_ITEM *d : found)
        if (!m_recent.contains(QString::fromStdString(d->name)))
            add(*d);
    if (m_list->topLevelItemCount())
        m_list->setCurrentItem(m_list->topLevelItem(0));
}
