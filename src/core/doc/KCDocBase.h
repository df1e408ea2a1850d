#pragma once

#include <string>
#include <vector>

class KCDocView;
class KCArchive;

// Document base: its views, modified flag, path and title.
class KCDocBase
{
public:
    KCDocBase() = default;
    virtual ~KCDocBase() = default;
    KCDocBase(const KCDocBase &) = delete;
    KCDocBase &operator=(const KCDocBase &) = delete;

    virtual bool OnNewDocument();
    virtual void OnCloseDocument();
    virtual void OnDocumentActivate(int) {}
    virtual void Serialize(KCArchive &) {}

    virtual int IsModified() const { return m_modified; }
    virtual void SetModifiedFlag(int modified = 1) { m_modified = modified; }

    // The framework's path and title.
    const std::string &GetPathName() const { return m_pathName; }
    virtual void SetPathName(const std::string &path, bool addToMru = true);
    const std::string &GetTitle() const { return m_title; }
    void SetTitle(const std::string &title) { m_title = title; }

    void AddView(KCDocView *view);
    void RemoveView(KCDocView *view);
    const std::vector<KCDocView *> &views() const { return m_views; }
    void UpdateAllViews(KCDocView *sender, long hint = 0);

    // The most recent paths given to SetPathName with addToMru set, newest first.
    static std::vector<std::string> &recentFiles();

    std::string m_strExtra;

private:
    int m_modified = 0;
    std::string m_pathName;
    std::string m_title;
    std::vector<KCDocView *> m_views;
};
