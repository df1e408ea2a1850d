#include "doc/KCDocBase.h"

#include "doc/KCDocView.h"

#include <algorithm>

namespace {
constexpr size_t RecentFileCount = 8;
}

bool KCDocBase::OnNewDocument()
{
    m_pathName.clear();
    m_modified = 0;
    return true;
}

void KCDocBase::OnCloseDocument()
{
    m_views.clear();
}

void KCDocBase::SetPathName(const std::string &path, bool addToMru)
{
    m_pathName = path;
    const size_t slash = path.find_last_of("/\\");
    m_title = slash == std::string::npos ? path : path.substr(slash + 1);
    if (addToMru && !path.empty()) {
        auto &recent = recentFiles();
        recent.erase(std::remove(recent.begin(), recent.end(), path), recent.end());
        recent.insert(recent.begin(), path);
        if (recent.size() > RecentFileCount)
            recent.resize(RecentFileCount);
    }
}

void KCDocBase::AddView(KCDocView *view)
{
    if (view && std::find(m_views.begin(), m_views.end(), view) == m_views.end())
        m_views.push_back(view);
}

void KCDocBase::RemoveView(KCDocView *view)
{
    m_views.erase(std::remove(m_views.begin(), m_views.end(), view), m_views.end());
}

void KCDocBase::UpdateAllViews(KCDocView *sender, long hint)
{
    // A view may remove itself while being updated: work on a copy.
    const std::vector<KCDocView *> views = m_views;
    for (KCDocView *v : views)
        if (v != sender)
            v->OnUpdate(sender, hint);
}

std::vector<std::string> &KCDocBase::recentFiles()
{
    static std::vector<std::string> files;
    return files;
}
