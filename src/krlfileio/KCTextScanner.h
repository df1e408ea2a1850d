#pragma once

#include "KCFileFormat.h"

#include <array>
#include <cstdint>
#include <string>

namespace KCTextScannerDetail {
constexpr uint8_t kBadNibble = 0x10;

constexpr std::array<uint8_t, 256> makeNibbleTable()
{
    std::array<uint8_t, 256> t{};
    for (unsigned c = 0; c < 256; ++c) {
        if (c >= '0' && c <= '9')
            t[c] = uint8_t(c - '0');
        else if (c >= 'A' && c <= 'F')
            t[c] = uint8_t(c - 'A' + 10);
        else if (c >= 'a' && c <= 'f')
            t[c] = uint8_t(c - 'a' + 10);
        else
            t[c] = kBadNibble;
    }
    return t;
}
} // namespace KCTextScannerDetail

// Walks the bytes of a text file in place, record by record: line ends of any kind
// (CR LF, LF, CR, mixed), blank lines, trailing blanks, a leading byte order mark and a
// DOS end-of-file byte. Decodes hex digits through a table while summing the bytes for
// the record checksum, and reports messages that name the file and the current line.
class KCTextScanner
{
public:
    static constexpr uint8_t kBadNibble = KCTextScannerDetail::kBadNibble;
    static constexpr uint8_t kDosEof = 0x1A;

    KCTextScanner(const KCInputFile &file, KCFileMessage &sink);

    // Skips blanks, blank lines and line ends up to the first significant character of the
    // next line. False at the end of input (also at a 0x1A at the start of a line).
    bool nextLine();
    // The current line had spaces or tabs before its first significant character.
    bool indented() const { return m_indented; }

    uint64_t line() const { return m_line; }
    const uint8_t *pos() const { return m_p; }
    const uint8_t *end() const { return m_end; }
    const uint8_t *lineStart() const { return m_lineStart; }
    size_t remaining() const { return size_t(m_end - m_p); }
    // The current byte, or -1 at the end of input.
    int peek() const { return m_p < m_end ? *m_p : -1; }
    void advance(size_t n) { m_p += n; }

    static unsigned nibble(uint8_t c) { return s_nibble[c]; }
    static bool isHex(uint8_t c) { return s_nibble[c] < 16; }
    static bool isBlank(uint8_t c) { return c == ' ' || c == '\t'; }
    static bool isLineEnd(uint8_t c) { return c == '\r' || c == '\n'; }

    // Decodes count bytes (2 * count hex digits) into out and adds each byte to sum.
    // On a non-hex digit or too little input nothing is consumed and false is returned.
    bool hexBytes(uint8_t *out, size_t count, unsigned &sum)
    {
        if (remaining() / 2 < count)
            return false;
        const uint8_t *p = m_p;
        unsigned bad = 0;
        unsigned s = sum;
        for (size_t i = 0; i < count; ++i, p += 2) {
            const unsigned hi = s_nibble[p[0]];
            const unsigned lo = s_nibble[p[1]];
            bad |= hi | lo;
            const unsigned v = (hi << 4) | lo;
            out[i] = uint8_t(v);
            s += v;
        }
        if (bad & kBadNibble)
            return false;
        sum = s;
        m_p = p;
        return true;
    }

    // Decodes exactly `digits` hex digits (at most 8) into value; false as for hexBytes.
    bool hexValue(unsigned digits, uint32_t &value);

    // Skips trailing blanks; true when only a line end, a 0x1A or the end of input follows.
    // The line end itself is left for nextLine().
    bool atLineEnd();
    // Moves to the end of the current line (before its line end).
    void skipRestOfLine();

    // Slow-path diagnosis of a record made of hex digits from `from` to the end of its line,
    // that should hold `expectedDigits` digits (0 = not known): names the first bad
    // character with its column, an odd digit count, or a wrong length.
    std::string hexRecordProblem(const uint8_t *from, size_t expectedDigits) const;
    // "character 'x'" or "control character 0x00" for the byte at p, with its column.
    std::string describeAt(const uint8_t *p) const;

    const std::string &fileName() const { return m_name; }
    KCFileMessage &sink() { return m_sink; }

    void error(const std::string &text) { m_sink.message(KCFileMessage::Error, m_name, m_line, text); }
    void warning(const std::string &text) { m_sink.message(KCFileMessage::Warning, m_name, m_line, text); }
    // A warning given at most once per load for each bit of `which`.
    void warnOnce(unsigned which, const std::string &text);
    // File-wide warning (line 0).
    void fileWarning(const std::string &text) { m_sink.message(KCFileMessage::Warning, m_name, 0, text); }

private:
    static constexpr std::array<uint8_t, 256> s_nibble = KCTextScannerDetail::makeNibbleTable();

    std::string m_name;
    KCFileMessage &m_sink;
    const uint8_t *m_p;
    const uint8_t *m_end;
    const uint8_t *m_lineStart;
    uint64_t m_line = 1;
    unsigned m_warned = 0;
    bool m_indented = false;
};
