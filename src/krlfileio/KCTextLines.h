#pragma once

#include <cstdint>
#include <string_view>

// Splits a line-oriented text (a string table, a definition file) into its lines: LF, CR LF
// and a lone CR each end a line, and the last line needs no end. The record formats have
// their own faster scanner (KCTextScanner).
class KCTextLines
{
public:
    explicit KCTextLines(std::string_view text) : m_text(text) {}

    // The next line without its end; false when the text is used up.
    bool next(std::string_view &line)
    {
        if (m_pos >= m_text.size())
            return false;
        const size_t end = m_text.find_first_of("\r\n", m_pos);
        if (end == std::string_view::npos) {
            line = m_text.substr(m_pos);
            m_pos = m_text.size();
        } else {
            line = m_text.substr(m_pos, end - m_pos);
            m_pos = end + (m_text[end] == '\r' && end + 1 < m_text.size() && m_text[end + 1] == '\n' ? 2 : 1);
        }
        ++m_lineNumber;
        return true;
    }

    // 1-based number of the line `next` gave last.
    uint64_t lineNumber() const { return m_lineNumber; }

private:
    std::string_view m_text;
    size_t m_pos = 0;
    uint64_t m_lineNumber = 0;
};
