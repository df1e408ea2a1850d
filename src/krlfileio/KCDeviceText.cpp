#include "KCDeviceText.h"

uint64_t KCDeviceText::lineAt(size_t pos)
{
    if (pos > m_size)
        pos = m_size;
    if (pos < m_pos) {
        m_pos = 0;
        m_line = 1;
    }
    for (size_t i = m_pos; i < pos; ++i) {
        const uint8_t c = m_data[i];
        if (c == '\r' || (c == '\n' && (i == 0 || m_data[i - 1] != '\r')))
            ++m_line;
    }
    m_pos = pos;
    return m_line;
}

size_t KCDeviceText::bomLength() const
{
    return m_size >= 3 && m_data[0] == 0xEF && m_data[1] == 0xBB && m_data[2] == 0xBF ? 3 : 0;
}

size_t KCDeviceText::contentEnd() const
{
    size_t end = m_size;
    while (end > 0 && m_data[end - 1] == kDosEof)
        --end;
    return end;
}
