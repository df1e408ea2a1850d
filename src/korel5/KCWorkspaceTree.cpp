#include "KCWorkspaceTree.h"

#include "doc/KCDataDoc.h"
#include "doc/KCDocView.h"

#include <QHeaderView>

namespace {
// Where an item keeps the view it stands for.
constexpr int ViewRole = Qt::UserRole + 1;
} // namespace

KCWorkspaceTree::KCWorkspaceTree(QWidget *parent) : QTreeWidget(parent)
{
    setObjectName("workspaceTree");
    setColumnCount(1);
    header()->hide();
    setRootIsDecorated(true);
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem *item, int) {
        if (!item || !item->parent())
            return;
        emit viewItemActivated(static_cast<KCDocView *>(item->data(0, ViewRole).value<void *>()));
    });
}

void KCWorkspaceTree::rebuild(KCDataDoc *doc)
{
    clear();
    if (doc)
        addDocument(doc);
    if (m_others)
        for (KCDataDoc *other : m_others())
            addDocument(other);
    expandAll();
}

void KCWorkspaceTree::addDocument(KCDataDoc *doc)
{
    auto *root = new QTreeWidgetItem(this);
    const QString title = QString::fromStdString(doc->displayName());
    root->setText(0, doc->IsModified() ? title + " *" : title);
    root->setToolTip(0, QString::fromStdString(doc->getPathName()));
    const QString size = QString::number(doc->GetBufferSize());
    for (const TAG_DATADOC_VIEWITEM &item : doc->viewItems()) {
        auto *child = new QTreeWidgetItem(root);
        QString text = item.text1.empty() ? tr("Buffer %1").arg(item.bufferId) : QString::fromStdString(item.text1);
        if (item.view && item.view->isDataView())
            text += QString(" [%1]").arg(QString::fromStdString(item.view->GetBufferLayoutName()));
        child->setText(0, text);
        child->setToolTip(0, tr("%1 bytes").arg(size));
        child->setData(0, ViewRole, QVariant::fromValue(static_cast<void *>(item.view)));
    }
}
