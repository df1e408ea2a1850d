#pragma once

#include "KCFileFormat.h"

#include <cstdint>
#include <string>
#include <vector>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

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
        const unsigned sum = encodeHex(data, n, m_p);
        m_p += 2 * n;
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

    // The n bytes as 2n upper-case hex digits at out; returns the sum of the bytes.
    static unsigned encodeHex(const uint8_t *data, size_t n, char *out)
    {
        unsigned sum = 0;
        size_t i = 0;
#ifdef __SSE2__
        for (; i + 16 <= n; i += 16, out += 32)
            sum += encode16(data + i, out);
#endif
        for (; i < n; ++i, out += 2) {
            out[0] = s_pairs[data[i]][0];
            out[1] = s_pairs[data[i]][1];
            sum += data[i];
        }
        return sum;
    }
    static void encodeByte(uint8_t v, char *out)
    {
        out[0] = s_pairs[v][0];
        out[1] = s_pairs[v][1];
    }

private:
#ifdef __SSE2__
    // 16 bytes to 32 upper-case hex digits; returns the sum of the bytes.
    static unsigned encode16(const uint8_t *data, char *out)
    {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data));
        const __m128i low4 = _mm_set1_epi8(0x0F);
        const __m128i high = _mm_and_si128(_mm_srli_epi16(bytes, 4), low4);
        const __m128i low = _mm_and_si128(bytes, low4);
        // Digit order in memory: high nibble, then low nibble.
        const __m128i first = _mm_unpacklo_epi8(high, low);
        const __m128i second = _mm_unpackhi_epi8(high, low);
        auto ascii = [](__m128i v) {
            const __m128i letters = _mm_cmpgt_epi8(v, _mm_set1_epi8(9));
            return _mm_add_epi8(_mm_add_epi8(v, _mm_set1_epi8('0')), _mm_and_si128(letters, _mm_set1_epi8('A' - '0' - 10)));
        };
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), ascii(first));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16), ascii(second));
        const __m128i sums = _mm_sad_epu8(bytes, _mm_setzero_si128());
        return unsigned(_mm_cvtsi128_si32(sums)) + unsigned(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
    }
#endif

    static const char s_pairs[256][2];

    KCOutputStream &m_out;
    bool m_crlf;
    bool m_failed = false;
    std::vector<char> m_buffer;
    char *m_p;
    char *m_limit;
};
