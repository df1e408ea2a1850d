#include "KCStaplCheck.h"

#include "KCStaplCrc.h"

#include <cstdio>

namespace {

constexpr size_t kCrcDigits = 4;
constexpr size_t kCrcKeywordLength = 3;
constexpr size_t kListedTextLength = 80; // NOTE texts are cut here in the listing

bool isIdentifierChar(uint8_t c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

bool sameWord(const uint8_t *word, size_t length, const char *upper)
{
    size_t i = 0;
    for (; i < length && upper[i]; ++i) {
        uint8_t c = word[i];
        if (c >= 'a' && c <= 'z')
            c -= 'a' - 'A';
        if (c != uint8_t(upper[i]))
            return false;
    }
    return i == length && !upper[i];
}

std::string hex4(uint16_t value)
{
    char text[8];
    snprintf(text, sizeof text, "%04X", value);
    return text;
}

} // namespace

KCStaplCheck::KCStaplCheck(KCFileMessage &sink, const std::string &fileName, const uint8_t *data, size_t size,
                           bool ignoreCrc)
    : m_sink(sink), m_fileName(fileName), m_d(data), m_text(data, size), m_begin(m_text.bomLength()),
      m_end(m_text.contentEnd()), m_ignoreCrc(ignoreCrc)
{
}

void KCStaplCheck::message(KCFileMessage::Severity severity, size_t pos, const std::string &text)
{
    m_sink.message(severity, m_fileName, m_text.lineAt(pos), text);
}

bool KCStaplCheck::run()
{
    return checkCharacters() && scan();
}

bool KCStaplCheck::checkCharacters()
{
    for (size_t p = m_begin; p < m_end; ++p) {
        const uint8_t c = m_d[p];
        if (!KCDeviceText::isPrintable(c) && !KCDeviceText::isSpace(c)) {
            char text[96];
            snprintf(text, sizeof text, "byte 0x%02X: not a STAPL text file (a binary byte-code file?)", c);
            message(KCFileMessage::Error, p, text);
            return false;
        }
    }
    return true;
}

size_t KCStaplCheck::skipBlanks(size_t p) const
{
    while (p < m_end && KCDeviceText::isSpace(m_d[p]))
        ++p;
    return p;
}

size_t KCStaplCheck::identifierEnd(size_t p) const
{
    while (p < m_end && isIdentifierChar(m_d[p]))
        ++p;
    return p;
}

// A label is "name:" at the start of a statement; returns the position after the colon, or 0.
size_t KCStaplCheck::labelEnd(size_t p) const
{
    const size_t end = identifierEnd(p);
    if (end == p)
        return 0;
    const size_t colon = skipBlanks(end);
    return colon < m_end && m_d[colon] == ':' ? colon + 1 : 0;
}

// The CRC keyword is matched in capitals only, with whitespace on both sides.
bool KCStaplCheck::isCrcKeyword(size_t p) const
{
    return p > m_begin && p + kCrcKeywordLength < m_end && m_d[p] == 'C' && m_d[p + 1] == 'R' && m_d[p + 2] == 'C' &&
           KCDeviceText::isSpace(m_d[p - 1]) && KCDeviceText::isSpace(m_d[p + kCrcKeywordLength]);
}

bool KCStaplCheck::quoted(size_t &p, std::string &text) const
{
    p = skipBlanks(p);
    if (p >= m_end || m_d[p] != '"')
        return false;
    const size_t begin = ++p;
    while (p < m_end && m_d[p] != '"')
        ++p;
    if (p >= m_end)
        return false;
    text.assign(reinterpret_cast<const char *>(m_d + begin), std::min(p - begin, kListedTextLength));
    ++p;
    return true;
}

void KCStaplCheck::listStatement(size_t p)
{
    if (m_listed >= kMaxListed)
        return;
    const size_t end = identifierEnd(p);
    std::string line;
    if (sameWord(m_d + p, end - p, "NOTE")) {
        size_t q = end;
        std::string key, value;
        if (!quoted(q, key) || !quoted(q, value))
            return;
        line = "NOTE " + key + ": " + value;
    } else if (sameWord(m_d + p, end - p, "ACTION")) {
        const size_t name = skipBlanks(end);
        const size_t nameEnd = identifierEnd(name);
        if (nameEnd == name)
            return;
        line = "ACTION " + std::string(reinterpret_cast<const char *>(m_d + name), nameEnd - name);
        size_t q = nameEnd;
        std::string description;
        if (quoted(q, description))
            line += ": " + description;
    } else {
        return;
    }
    ++m_listed;
    message(KCFileMessage::Info, p, line);
}

bool KCStaplCheck::scan()
{
    const uint16_t *table = KCStaplCrc::table();
    uint16_t reg = KCStaplCrc::kInitial;
    bool inComment = false;
    bool inString = false;
    bool atStatementStart = true;
    size_t stringStart = 0;
    size_t resumeAt = m_begin; // label characters up to here are not statement keywords
    for (size_t p = m_begin; p < m_end; ++p) {
        const uint8_t c = m_d[p];
        if (inComment) {
            inComment = c != '\n' && c != '\r';
        } else if (inString) {
            inString = c != '"';
        } else if (p >= resumeAt) {
            if (atStatementStart && c == 'C' && isCrcKeyword(p)) {
                // The CRC covers everything before the keyword, down to the whitespace just before it.
                m_computed = KCStaplCrc::result(reg);
                return checkCrcStatement(p);
            }
            if (c == '\'') {
                inComment = true;
            } else if (c == '"') {
                inString = true;
                stringStart = p;
                atStatementStart = false;
            } else if (c == ';') {
                atStatementStart = true;
            } else if (atStatementStart && !KCDeviceText::isSpace(c)) {
                if (const size_t label = labelEnd(p)) {
                    resumeAt = label;
                } else {
                    listStatement(p);
                    atStatementStart = false;
                }
            }
        }
        // Carriage returns are not covered, so CR LF and LF files share one CRC.
        if (c != '\r')
            reg = KCStaplCrc::update(table, reg, c);
    }
    if (inString) {
        message(KCFileMessage::Error, stringStart, "string not closed: unbalanced quotes at the end of the file");
        return false;
    }
    m_computed = KCStaplCrc::result(reg);
    message(KCFileMessage::Warning, m_end,
            "no CRC statement; the CRC of the file is " + hex4(m_computed));
    return true;
}

bool KCStaplCheck::checkCrcStatement(size_t p)
{
    size_t q = skipBlanks(p + kCrcKeywordLength);
    unsigned value = 0;
    size_t digits = 0;
    for (int v; q < m_end && (v = KCDeviceText::hexDigit(m_d[q])) >= 0; ++q, ++digits)
        value = (value << 4) | unsigned(v);
    q = skipBlanks(q);
    if (digits != kCrcDigits || q >= m_end || m_d[q] != ';') {
        message(KCFileMessage::Error, p, "malformed CRC statement: expected CRC, 4 hex digits and ';'");
        return false;
    }
    m_hasCrc = true;
    m_stated = uint16_t(value);
    checkTail(q + 1);
    if (m_stated != m_computed) {
        message(m_ignoreCrc ? KCFileMessage::Warning : KCFileMessage::Error, p,
                "CRC is " + hex4(m_computed) + ", expected " + hex4(m_stated));
        return m_ignoreCrc;
    }
    return true;
}

void KCStaplCheck::checkTail(size_t p)
{
    for (;;) {
        p = skipBlanks(p);
        if (p >= m_end)
            return;
        if (m_d[p] != '\'') {
            message(KCFileMessage::Warning, p, "text after the CRC statement");
            return;
        }
        while (p < m_end && m_d[p] != '\n' && m_d[p] != '\r')
            ++p;
    }
}
