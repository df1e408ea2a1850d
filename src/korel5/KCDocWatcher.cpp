#include "KCDocWatcher.h"

#include "doc/KCDocBase.h"

void KCDocWatcher::watch(KCDocBase *doc)
{
    if (m_doc)
        m_doc->RemoveView(this);
    m_doc = doc;
    if (m_doc)
        m_doc->AddView(this);
}

void KCDocWatcher::OnUpdate(KCDocView *, long hint)
{
    emit documentUpdated(hint);
}
