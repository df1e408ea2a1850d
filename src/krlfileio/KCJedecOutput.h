#pragma once

#include "KCFileFormat.h"
#include "KCJedecChecksum.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>

// Output of the JEDEC writer in large blocks, summing what lies inside the transmission
// frame (STX to ETX) for the transmission checksum.
class KCJedecOutput
{
public:
    static constexpr size_t kChunk = size_t(1) << 20;
    static constexpr size_t kMaxFormatted = 256; // longest text appendf() produces
    KCJedecOutput(KCOutputStream &out, bool crlf) : m_out(out), m_eol(crlf ? "\r\n" : "\n")
    {
        m_buffer.reserve(kChunk + kChunk / 8);
    }

    void append(const char *text, size_t size) { m_buffer.append(text, size); }
    void append(const std::string &text) { m_buffer.append(text); }
    void appendf(const char *format, ...) __attribute__((format(printf, 2, 3)))
    {
        char text[kMaxFormatted];
        va_list args;
        va_start(args, format);
        const int n = vsnprintf(text, sizeof text, format, args);
        va_end(args);
        m_buffer.append(text, std::min<size_t>(size_t(std::max(n, 0)), sizeof text - 1));
    }
    void endLine() { m_buffer.append(m_eol); }
    const char *endOfLine() const { return m_eol; }
    char *grow(size_t size)
    {
        const size_t at = m_buffer.size();
        m_buffer.resize(at + size);
        return &m_buffer[at];
    }
    bool flushIfFull() { return m_buffer.size() < kChunk || flush(); }
    bool flush()
    {
        if (m_summing)
            addToSum();
        const bool ok = m_out.write(m_buffer.data(), m_buffer.size());
        m_buffer.clear();
        m_summedUpTo = 0;
        return ok;
    }
    uint16_t sum()
    {
        addToSum();
        return m_sum;
    }
    // Everything appended up to here belongs to the frame; nothing after.
    uint16_t closeFrame()
    {
        addToSum();
        m_summing = false;
        return m_sum;
    }

private:
    void addToSum()
    {
        m_sum = KCJedecChecksum::transmission(reinterpret_cast<const uint8_t *>(m_buffer.data()) + m_summedUpTo,
                                              m_buffer.size() - m_summedUpTo, m_sum);
        m_summedUpTo = m_buffer.size();
    }

    KCOutputStream &m_out;
    const char *m_eol;
    std::string m_buffer;
    bool m_summing = true;
    size_t m_summedUpTo = 0;
    uint16_t m_sum = 0;
};
