#pragma once

#include <cstddef>
#include <cstdint>

// Read-only view of a device text file (JEDEC, SVF, STAPL) that turns byte positions
// into 1-based line numbers. Lines are counted only when a message needs one, so the
// parsers do no per-byte line bookkeeping. CR LF, LF and CR each end one line.
class KCDeviceText
{
public:
    static constexpr uint8_t kDosEof = 0x1A;

    KCDeviceText(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}

    // Line of the byte at pos; fast for rising positions, restarts when asked for an earlier one.
    uint64_t lineAt(size_t pos);

    // Length of a UTF-8 byte order mark at the start, 0 if there is none.
    size_t bomLength() const;
    // End of the input: a trailing DOS end-of-file byte is not part of it.
    size_t contentEnd() const;

    static int hexDigit(uint8_t c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        c |= 0x20;
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        return -1;
    }
    static bool isSpace(uint8_t c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    static bool isPrintable(uint8_t c) { return c >= 0x20 && c <= 0x7E; }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
    uint64_t m_line = 1;
};
