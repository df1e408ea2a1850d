#pragma once

#include "KCFileFormat.h"

#include <cstdint>
#include <string>
#include <vector>

// Formats hex records into one large buffer and hands it to the output stream in big
// blocks. Hex digits come from a table of digit pairs, always upper case.
class KCHexRecordWriter
{
public:
    // Longest record any writer emits: mark, type, 255 bytes in hex, line end.
    static constexpr size_t kMaxRecordChars = 4 + 2 * 260 + 2;

    KCHexRecordWriter(KCOutputStream &out, bool crlf);

    // Makes room for one record of at most kMaxRecordChars; false after a write failure.
    bool reserveRecord()
    {
        if (size_t(m_limit - m_p) < kMaxRecordChars)
            return flush();
        return true;
    }
    void put(char c) { *m_p++ = c; }
    void putText(const char *text, size_t n);
    void hexByte(uint8_t v)
    {
        m_p[0] = s_pairs[v][0];
        m_p[1] = s_pairs[v][1];
        m_p += 2;
    }
    // Writes the bytes in hex and returns their sum.
    unsigned hexBytes(const uint8_t *data, size_t n)
    {
        unsigned sum = 0;
        char *p = m_p;
        for (size_t i = 0; i < n; ++i, p += 2) {
            p[0] = s_pairs[data[i]][0];
            p[1] = s_pairs[data[i]][1];
            sum += data[i];
        }
        m_p = p;
        return sum;
    }
    void lineEnd()
    {
        if (m_crlf)
            *m_p++ = '\r';
        *m_p++ = '\n';
    }

    // Sends what is buffered; false when the stream failed (now or earlier).
    bool flush();
    bool failed() const { return m_failed; }

private:
    static const char s_pairs[256][2];

    KCOutputStream &m_out;
    bool m_crlf;
    bool m_failed = false;
    std::vector<char> m_buffer;
    char *m_p;
    char *m_limit;
};
