#pragma once

#include <QTreeWidget>

#include <functional>
#include <vector>

class KCDataDoc;
class KCDocView;

// The workspace tree: the buffer documents and their view items, the current document first.
class KCWorkspaceTree : public QTreeWidget
{
    Q_OBJECT
public:
    explicit KCWorkspaceTree(QWidget *parent = nullptr);

    // Lists the current document's items again (null: none), then those of the others.
    void rebuild(KCDataDoc *doc);
    // Where the documents open besides the current one come from.
    void setOtherDocuments(std::function<std::vector<KCDataDoc *>()> others) { m_others = std::move(others); }

private:
    void addDocument(KCDataDoc *doc);

    std::function<std::vector<KCDataDoc *>()> m_others;

signals:
    // The user opened a view item; `view` may be null when the item has no window.
    void viewItemActivated(KCDocView *view);
};
