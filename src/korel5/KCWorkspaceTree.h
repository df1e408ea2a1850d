#pragma once

#include <QTreeWidget>

class KCDataDoc;
class KCDocView;

// The workspace tree: the buffer document and its view items.
class KCWorkspaceTree : public QTreeWidget
{
    Q_OBJECT
public:
    explicit KCWorkspaceTree(QWidget *parent = nullptr);

    // Lists the document's items again (null: empty tree).
    void rebuild(KCDataDoc *doc);

signals:
    // The user opened a view item; `view` may be null when the item has no window.
    void viewItemActivated(KCDocView *view);
};
