#include "host/KCHostStringTable.h"

#include "KCTextLines.h"

#include "host/KCFormat.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <sys/stat.h>

#ifndef KRLDV_SOURCE_DATA_DIR
#define KRLDV_SOURCE_DATA_DIR "data"
#endif

namespace {

const char *const StringTableFile = "host-strings.txt";

std::string unescape(const std::string &s)
{
    std::string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 1 < s.size()) {
            const char c = s[++i];
            out += c == 'n' ? '\n' : c == 't' ? '\t' : c;
        } else {
            out += s[i];
        }
    }
    return out;
}

bool isDirectory(const std::string &path)
{
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

} // namespace

bool KCHostStringTable::load(const std::string &path, std::string *error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (error)
            *error = path + ": cannot read the string table: " + std::strerror(errno);
        return false;
    }
    std::ostringstream ss;
    ss << in.rdbuf();
    return loadFromText(ss.str(), path, error);
}

bool KCHostStringTable::loadFromText(const std::string &text, const std::string &name, std::string *error)
{
    KCTextLines lines(text);
    std::string_view view;
    while (lines.next(view)) {
        const std::string line(view);
        const uint64_t lineNo = lines.lineNumber();
        const size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#')
            continue;
        char *end = nullptr;
        const unsigned long id = std::strtoul(line.c_str() + first, &end, 0);
        const size_t textStart = static_cast<size_t>(end - line.c_str());
        if (end == line.c_str() + first || textStart >= line.size()
            || (line[textStart] != ' ' && line[textStart] != '\t')) {
            if (error)
                *error = name + ":" + std::to_string(lineNo) + ": expected a number, a blank and a text";
            return false;
        }
        // A number given twice would silently hide one of its texts.
        if (!m_texts.emplace(static_cast<unsigned>(id), unescape(line.substr(textStart + 1))).second) {
            if (error)
                *error = name + ":" + std::to_string(lineNo) + ": string " + std::to_string(id) + " is given twice";
            return false;
        }
    }
    return true;
}

std::string KCHostStringTable::text(unsigned id) const
{
    const auto it = m_texts.find(id);
    if (it == m_texts.end())
        return "<string " + std::to_string(id) + ">";
    return it->second;
}

std::string KCHostStringTable::format(unsigned id, std::initializer_list<KCFormatArg> args) const
{
    return KCFormat::format(text(id), args);
}

std::string KCHostStringTable::dataDirectory()
{
    if (const char *env = std::getenv("KRLDV_DATA_DIR"); env && *env)
        return env;
    char exe[4096];
    const ssize_t n = ::readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n > 0) {
        std::string dir(exe, static_cast<size_t>(n));
        dir.erase(dir.rfind('/'));
        const std::string installed = dir + "/../share/krldv";
        if (isDirectory(installed))
            return installed;
    }
    return KRLDV_SOURCE_DATA_DIR;
}

std::string KCHostStringTable::defaultPath()
{
    return dataDirectory() + "/" + StringTableFile;
}
