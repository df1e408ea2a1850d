#include "devopt/cDDEdit.h"

#include "host/KCFormat.h"

#include <cerrno>
#include <cstdlib>

cDDEdit::cDDEdit(Read read, Write write, Sink show, std::string format)
    : m_read(std::move(read)), m_write(std::move(write)), m_show(std::move(show)),
      m_format(format.empty() ? DefaultFormat : std::move(format))
{
}

bool cDDEdit::parse(const std::string &text, uint32_t &value) const
{
    // Hexadecimal formats read back as hexadecimal, the others as decimal.
    const bool hex = m_format.find_first_of("xX") != std::string::npos;
    const size_t begin = text.find_first_not_of(' ');
    if (begin == std::string::npos)
        return false;
    const char *start = text.c_str() + begin;
    char *end = nullptr;
    errno = 0;
    const unsigned long long v = std::strtoull(start, &end, hex ? 16 : 10);
    if (end == start || *end != '\0' || errno == ERANGE || v > 0xFFFFFFFFull || *start == '-')
        return false;
    value = uint32_t(v);
    return true;
}

void cDDEdit::OnChange(const std::string &text)
{
    if (m_guard)
        return;
    m_text = text;
    uint32_t value = 0;
    if (parse(text, value))
        m_write(value);
}

void cDDEdit::Show()
{
    uint32_t value = 0;
    m_text = m_read(value) ? KCFormat::format(m_format, {value}) : std::string();
    m_guard = true;
    m_show(m_text);
    m_guard = false;
}

void cDDEdit::WriteBack()
{
    uint32_t value = 0;
    if (parse(m_text, value))
        m_write(value);
}
