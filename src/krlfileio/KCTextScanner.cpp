#include "KCTextScanner.h"

#include <cstdio>

namespace {

constexpr uint8_t kBom[3] = {0xEF, 0xBB, 0xBF};

using KCTextScannerDetail::PairTable;

constexpr PairTable makePairTable()
{
    constexpr auto nibble = KCTextScannerDetail::makeNibbleTable();
    PairTable t{};
    for (unsigned i = 0; i < 65536; ++i) {
        const unsigned hi = nibble[i & 0xFF];
        const unsigned lo = nibble[i >> 8];
        t.v[i] = uint16_t((hi | lo) & KCTextScannerDetail::kBadNibble ? KCTextScanner::kBadPair : hi << 4 | lo);
    }
    return t;
}

} // namespace

constexpr PairTable KCTextScanner::s_pairs = makePairTable();

KCTextScanner::KCTextScanner(const KCInputFile &file, KCFileMessage &sink)
    : m_name(file.name), m_sink(sink), m_p(file.data), m_end(file.data + file.size), m_lineStart(file.data)
{
    if (file.size >= sizeof(kBom) && file.data[0] == kBom[0] && file.data[1] == kBom[1] && file.data[2] == kBom[2]) {
        m_p += sizeof(kBom);
        m_lineStart = m_p;
    }
}

bool KCTextScanner::nextLineSlow()
{
    const uint8_t *p = m_p;
    while (p < m_end) {
        const uint8_t c = *p;
        if (isBlank(c)) {
            ++p;
        } else if (c == '\n') {
            ++p;
            ++m_line;
            m_lineStart = p;
        } else if (c == '\r') {
            ++p;
            if (p < m_end && *p == '\n')
                ++p;
            ++m_line;
            m_lineStart = p;
        } else if (c == kDosEof) {
            m_p = m_end = p;
            return false;
        } else {
            m_indented = p != m_lineStart;
            m_p = p;
            return true;
        }
    }
    m_p = p;
    return false;
}

bool KCTextScanner::hexValue(unsigned digits, uint32_t &value)
{
    if (remaining() < digits)
        return false;
    uint32_t v = 0;
    unsigned bad = 0;
    for (unsigned i = 0; i < digits; ++i) {
        const unsigned n = s_nibble[m_p[i]];
        bad |= n;
        v = (v << 4) | (n & 0x0F);
    }
    if (bad & kBadNibble)
        return false;
    m_p += digits;
    value = v;
    return true;
}

bool KCTextScanner::atLineEndSlow()
{
    while (m_p < m_end && isBlank(*m_p))
        ++m_p;
    return m_p == m_end || isLineEnd(*m_p) || *m_p == kDosEof;
}

void KCTextScanner::skipRestOfLine()
{
    while (m_p < m_end && !isLineEnd(*m_p))
        ++m_p;
}

std::string KCTextScanner::describeAt(const uint8_t *p) const
{
    char text[64];
    const unsigned long long column = (unsigned long long)(p - m_lineStart) + 1;
    if (*p < 0x20 || *p >= 0x7F)
        std::snprintf(text, sizeof text, "control or non-ASCII byte 0x%02X in column %llu", *p, column);
    else
        std::snprintf(text, sizeof text, "character '%c' in column %llu", *p, column);
    return text;
}

std::string KCTextScanner::hexRecordProblem(const uint8_t *from, size_t expectedDigits) const
{
    const uint8_t *p = from;
    while (p < m_end && !isLineEnd(*p))
        ++p;
    const uint8_t *last = p;
    while (last > from && isBlank(last[-1]))
        --last;
    for (const uint8_t *q = from; q < last; ++q)
        if (!isHex(*q))
            return "unexpected " + describeAt(q);
    const size_t digits = size_t(last - from);
    char text[128];
    if (digits % 2)
        std::snprintf(text, sizeof text, "odd number of hex digits (%zu)", digits);
    else if (expectedDigits && digits < expectedDigits)
        std::snprintf(text, sizeof text, "record too short: %zu hex digits, its length field asks for %zu", digits,
                      expectedDigits);
    else if (expectedDigits && digits > expectedDigits)
        std::snprintf(text, sizeof text, "record too long: %zu hex digits, its length field asks for %zu", digits,
                      expectedDigits);
    else
        std::snprintf(text, sizeof text, "record too short: %zu hex digits", digits);
    return text;
}

void KCTextScanner::warnOnce(unsigned which, const std::string &text)
{
    if (m_warned & which)
        return;
    m_warned |= which;
    warning(text);
}
