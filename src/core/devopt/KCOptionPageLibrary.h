#pragma once

#include "devopt/KCOptionPageDesc.h"

#include <map>
#include <string>
#include <vector>

// The option page descriptions, read from the JSON files of a folder (every file with a
// "pages" array, all but the type table). A page's class name is its identifier.
class KCOptionPageLibrary
{
public:
    // The table of the option types' pages, in the same folder.
    static const char *const TypesFile;

    // False, with `error` naming the file and the fault, on the first bad file; pages read
    // before it stay.
    bool loadDirectory(const std::string &dir, std::string *error = nullptr);
    bool loadText(const std::string &text, const std::string &fileName, std::string *error = nullptr);

    const KCOptionPageDesc *find(const std::string &className) const;
    std::vector<std::string> classNames() const;
    size_t size() const { return m_pages.size(); }

    // The folder the applications read: "option-pages" in the host's data folder.
    static std::string defaultDirectory();
    // The pages of the default folder, read once.
    static const KCOptionPageLibrary &shared();

private:
    std::map<std::string, KCOptionPageDesc> m_pages;
};
