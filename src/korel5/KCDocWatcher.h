#pragma once

#include "doc/KCDocView.h"

#include <QObject>

class KCDocBase;

// Hears a document's updates on behalf of the main frame (title, tree, status panes) and
// passes them on as a signal. It shows no data, so it never counts as a data view.
class KCDocWatcher : public QObject, public KCDocView
{
    Q_OBJECT
public:
    explicit KCDocWatcher(QObject *parent = nullptr) : QObject(parent) {}
    ~KCDocWatcher() override { watch(nullptr); }

    void watch(KCDocBase *doc);
    void OnUpdate(KCDocView *sender, long hint) override;

signals:
    void documentUpdated(long hint);

private:
    KCDocBase *m_doc = nullptr;
};
