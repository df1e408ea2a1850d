#pragma once

#include "KCFileFormat.h"

#include <array>
#include <cstdint>
#include <string>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

struct PairTable
{
    uint16_t v[65536];
};
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
    static constexpr unsigned kBadPair = 0x100;

    KCTextScanner(const KCInputFile &file, KCFileMessage &sink);

    // Skips blanks, blank lines and line ends up to the first significant character of the
    // next line. False at the end of input (also at a 0x1A at the start of a line).
    bool nextLine()
    {
        // The common case: CR LF or LF, then the next record at the start of the line.
        const uint8_t *p = m_p;
        if (m_end - p > 2 && p[0] == '\r' && p[1] == '\n' && p[2] > ' ' && p[2] != 0x7F) {
            m_p = m_lineStart = p + 2;
        } else if (m_end - p > 1 && p[0] == '\n' && p[1] > ' ' && p[1] != 0x7F) {
            m_p = m_lineStart = p + 1;
        } else {
            return nextLineSlow();
        }
        ++m_line;
        m_indented = false;
        return true;
    }
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
    // The byte of the two hex digits at p, or kBadPair.
    static unsigned pairValue(const uint8_t *p) { return s_pairs.v[p[0] | unsigned(p[1]) << 8]; }
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
        size_t i = 0;
#ifdef __SSE2__
        for (; i + 16 <= count; i += 16, p += 32)
            if (!decode16(p, out + i, s))
                return false;
#endif
        for (; i < count; ++i, p += 2) {
            const unsigned v = s_pairs.v[p[0] | unsigned(p[1]) << 8];
            bad |= v;
            out[i] = uint8_t(v);
            s += v;
        }
        if (bad & kBadPair)
            return false;
        sum = s;
        m_p = p;
        return true;
    }

    // Decodes exactly `digits` hex digits (at most 8) into value; false as for hexBytes.
    bool hexValue(unsigned digits, uint32_t &value);

    // Skips trailing blanks; true when only a line end, a 0x1A or the end of input follows.
    // The line end itself is left for nextLine().
    bool atLineEnd()
    {
        if (m_p < m_end && isLineEnd(*m_p))
            return true;
        return atLineEndSlow();
    }
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
#ifdef __SSE2__
    // 32 hex digits to 16 bytes at once; false if any is not a hex digit.
    static bool decode16(const uint8_t *p, uint8_t *out, unsigned &sum)
    {
        const __m128i zero = _mm_setzero_si128();
        __m128i bytes[2];
        for (int half = 0; half < 2; ++half) {
            const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 16 * half));
            const __m128i d = _mm_sub_epi8(c, _mm_set1_epi8('0'));
            const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(d, _mm_set1_epi8(9)), d);
            const __m128i l = _mm_sub_epi8(_mm_or_si128(c, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
            const __m128i isLetter = _mm_cmpeq_epi8(_mm_min_epu8(l, _mm_set1_epi8(5)), l);
            if (_mm_movemask_epi8(_mm_or_si128(isDigit, isLetter)) != 0xFFFF)
                return false;
            const __m128i nibbles = _mm_or_si128(_mm_and_si128(d, isDigit),
                                                 _mm_and_si128(_mm_add_epi8(l, _mm_set1_epi8(10)), isLetter));
            // Little-endian 16-bit lanes hold (first digit, second digit).
            const __m128i high = _mm_slli_epi16(_mm_and_si128(nibbles, _mm_set1_epi16(0x00FF)), 4);
            bytes[half] = _mm_or_si128(high, _mm_srli_epi16(nibbles, 8));
        }
        const __m128i packed = _mm_packus_epi16(bytes[0], bytes[1]);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), packed);
        const __m128i sums = _mm_sad_epu8(packed, zero);
        sum += unsigned(_mm_cvtsi128_si32(sums)) + unsigned(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
        return true;
    }
#endif

    bool nextLineSlow();
    bool atLineEndSlow();

    static constexpr std::array<uint8_t, 256> s_nibble = KCTextScannerDetail::makeNibbleTable();
    // Byte value of two hex digits, indexed by first | second << 8; kBadPair when either is not a digit.
    static const KCTextScannerDetail::PairTable s_pairs;

    std::string m_name;
    KCFileMessage &m_sink;
    const uint8_t *m_p;
    const uint8_t *m_end;
    const uint8_t *m_lineStart;
    uint64_t m_line = 1;
    unsigned m_warned = 0;
    bool m_indented = false;
};
