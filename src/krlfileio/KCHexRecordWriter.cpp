#include "KCHexRecordWriter.h"

#include <cstring>

namespace {

constexpr size_t kBufferSize = size_t(1) << 20;

} // namespace

#define KC_PAIR(h, l) {h, l}
#define KC_ROW(h)                                                                                              \
    KC_PAIR(h, '0'), KC_PAIR(h, '1'), KC_PAIR(h, '2'), KC_PAIR(h, '3'), KC_PAIR(h, '4'), KC_PAIR(h, '5'),      \
        KC_PAIR(h, '6'), KC_PAIR(h, '7'), KC_PAIR(h, '8'), KC_PAIR(h, '9'), KC_PAIR(h, 'A'), KC_PAIR(h, 'B'), \
        KC_PAIR(h, 'C'), KC_PAIR(h, 'D'), KC_PAIR(h, 'E'), KC_PAIR(h, 'F')
const char KCHexRecordWriter::s_pairs[256][2] = {
    KC_ROW('0'), KC_ROW('1'), KC_ROW('2'), KC_ROW('3'), KC_ROW('4'), KC_ROW('5'), KC_ROW('6'), KC_ROW('7'),
    KC_ROW('8'), KC_ROW('9'), KC_ROW('A'), KC_ROW('B'), KC_ROW('C'), KC_ROW('D'), KC_ROW('E'), KC_ROW('F'),
};
#undef KC_ROW
#undef KC_PAIR

KCHexRecordWriter::KCHexRecordWriter(KCOutputStream &out, bool crlf)
    : m_out(out), m_crlf(crlf), m_buffer(kBufferSize), m_p(m_buffer.data()), m_limit(m_buffer.data() + kBufferSize)
{
}

void KCHexRecordWriter::putText(const char *text, size_t n)
{
    std::memcpy(m_p, text, n);
    m_p += n;
}

bool KCHexRecordWriter::flush()
{
    if (!m_failed && m_p != m_buffer.data() && !m_out.write(m_buffer.data(), size_t(m_p - m_buffer.data())))
        m_failed = true;
    m_p = m_buffer.data();
    return !m_failed;
}
