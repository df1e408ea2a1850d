#pragma once

#include "host/KCFormatArg.h"

#include <initializer_list>
#include <map>
#include <string>

// The host's numbered texts, read from a data file of lines "<number> <text>".
// Numbers may be decimal or 0x hexadecimal; '#' starts a comment line; in a text
// \n, \t and \\ are escapes.
class KCHostStringTable
{
public:
    // Reads the file; false (and an error text) when it cannot be read or a line is malformed.
    bool load(const std::string &path, std::string *error = nullptr);
    bool loadFromText(const std::string &text, const std::string &name, std::string *error = nullptr);

    bool contains(unsigned id) const { return m_texts.count(id) != 0; }
    // The text, or "<string N>" when the number has none.
    std::string text(unsigned id) const;
    std::string format(unsigned id, std::initializer_list<KCFormatArg> args) const;
    const std::map<unsigned, std::string> &texts() const { return m_texts; }

    // The table file the applications use: $KRLDV_DATA_DIR, the installed share folder
    // beside the executable, then the source tree's data folder.
    static std::string defaultPath();
    static std::string dataDirectory();

private:
    std::map<unsigned, std::string> m_texts;
};
