#pragma once

#include <cstdint>
#include <string>

// One argument of a host format string: a number or a text.
class KCFormatArg
{
public:
    KCFormatArg(int v) : m_number(v) {}
    KCFormatArg(unsigned v) : m_number(v) {}
    KCFormatArg(long v) : m_number(v) {}
    KCFormatArg(unsigned long v) : m_number(static_cast<int64_t>(v)) {}
    KCFormatArg(long long v) : m_number(v) {}
    KCFormatArg(unsigned long long v) : m_number(static_cast<int64_t>(v)) {}
    KCFormatArg(const char *s) : m_isText(true), m_text(s ? s : "") {}
    KCFormatArg(std::string s) : m_isText(true), m_text(std::move(s)) {}

    bool isText() const { return m_isText; }
    int64_t number() const { return m_number; }
    const std::string &text() const { return m_text; }

private:
    bool m_isText = false;
    int64_t m_number = 0;
    std::string m_text;
};
