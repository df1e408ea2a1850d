#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

// Splits a command's arguments into positional ones and "--name value" / "--flag" options,
// and reads numbers and ranges the way every command takes them.
class KCCliArgs
{
public:
    // valueOptions take a value, flagOptions do not; anything else starting "--" is an error.
    KCCliArgs(const std::vector<std::string> &args, const std::set<std::string> &valueOptions,
              const std::set<std::string> &flagOptions);

    bool ok() const { return m_error.empty(); }
    const std::string &error() const { return m_error; }
    bool helpRequested() const { return m_help; }
    const std::vector<std::string> &positional() const { return m_positional; }
    bool has(const std::string &option) const { return m_values.count(option) != 0; }
    std::string value(const std::string &option, const std::string &fallback = {}) const;

    // "0x1F" hexadecimal, otherwise decimal; false when not a number or too large.
    // Why OUT cannot be written (its folder missing or not writable, a folder of that name),
    // or empty; checked before work that cannot be repeated.
    static std::string outputProblem(const std::string &path);
    static bool parseNumber(const std::string &text, uint64_t &value, uint64_t max = UINT64_MAX);
    // "START:END", both inclusive.
    static bool parseRange(const std::string &text, uint64_t &start, uint64_t &end);

private:
    std::vector<std::string> m_positional;
    std::map<std::string, std::string> m_values;
    std::string m_error;
    bool m_help = false;
};
