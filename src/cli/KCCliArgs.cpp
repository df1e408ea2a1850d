#include "KCCliArgs.h"

#include "host/KCNumberText.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>

KCCliArgs::KCCliArgs(const std::vector<std::string> &args, const std::set<std::string> &valueOptions,
                     const std::set<std::string> &flagOptions)
{
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        if (a == "--help" || a == "-h") {
            m_help = true;
        } else if (a.size() > 2 && a.compare(0, 2, "--") == 0) {
            std::string name = a.substr(2), inlineValue;
            const size_t eq = name.find('=');
            const bool hasInline = eq != std::string::npos;
            if (hasInline) {
                inlineValue = name.substr(eq + 1);
                name.erase(eq);
            }
            if (valueOptions.count(name)) {
                if (hasInline)
                    m_values[name] = inlineValue;
                else if (i + 1 < args.size())
                    m_values[name] = args[++i];
                else if (m_error.empty())
                    m_error = "option --" + name + " needs a value";
            } else if (flagOptions.count(name) && !hasInline) {
                m_values[name] = "1";
            } else if (m_error.empty()) {
                m_error = "unknown option " + a;
            }
        } else {
            m_positional.push_back(a);
        }
    }
}

std::string KCCliArgs::value(const std::string &option, const std::string &fallback) const
{
    const auto it = m_values.find(option);
    return it == m_values.end() ? fallback : it->second;
}

std::string KCCliArgs::outputProblem(const std::string &path)
{
    if (path == "-")
        return std::string();
    struct stat st;
    if (::stat(path.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return path + " is a folder";
        if (::access(path.c_str(), W_OK) != 0)
            return "cannot write " + path + ": " + std::strerror(errno);
    }
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return "cannot write into " + folder + ": " + std::strerror(errno);
    return std::string();
}

bool KCCliArgs::parseNumber(const std::string &text, uint64_t &value, uint64_t max)
{
    return KCNumberText::parse(text, value, max);
}

bool KCCliArgs::parseRange(const std::string &text, uint64_t &start, uint64_t &end)
{
    return KCNumberText::parseRange(text, start, end);
}
