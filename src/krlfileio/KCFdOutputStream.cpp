#include "KCFdOutputStream.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

KCFdOutputStream::KCFdOutputStream(int fd, size_t bufferSize) : m_fd(fd), m_buffer(bufferSize ? bufferSize : 1) {}

KCFdOutputStream::~KCFdOutputStream()
{
    flush();
}

bool KCFdOutputStream::writeAll(const uint8_t *data, size_t size)
{
    while (size && !m_error) {
        const ssize_t done = ::write(m_fd, data, size);
        if (done < 0) {
            if (errno != EINTR)
                m_error = errno;
            continue;
        }
        data += done;
        size -= size_t(done);
        m_written += uint64_t(done);
    }
    return !m_error;
}

bool KCFdOutputStream::write(const void *data, size_t size)
{
    if (m_error)
        return false;
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    // Blocks of half the buffer or more are worth a system call of their own, not a copy.
    if (size >= m_buffer.size() / 2)
        return flush() && writeAll(bytes, size);
    if (size <= m_buffer.size() - m_used) {
        std::memcpy(m_buffer.data() + m_used, bytes, size);
        m_used += size;
        return true;
    }
    if (!flush())
        return false;
    std::memcpy(m_buffer.data(), bytes, size);
    m_used = size;
    return true;
}

bool KCFdOutputStream::flush()
{
    const size_t n = m_used;
    m_used = 0;
    return writeAll(m_buffer.data(), n);
}
