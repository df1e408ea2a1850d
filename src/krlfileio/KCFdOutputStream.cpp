#include "KCFdOutputStream.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

KCFdOutputStream::KCFdOutputStream(int fd, size_t bufferSize) : m_fd(fd), m_buffer(bufferSize ? bufferSize : 1) {}

KCFdOutputStream::~KCFdOutputStream()
{
    flush();
}

void KCFdOutputStream::fail(int error)
{
    int none = 0;
    m_error.compare_exchange_strong(none, error ? error : EIO);
}

bool KCFdOutputStream::writeAll(const uint8_t *data, size_t size)
{
    while (size && !m_error) {
        const ssize_t done = ::write(m_fd, data, size);
        if (done < 0) {
            if (errno != EINTR)
                fail(errno);
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

bool KCFdOutputStream::beginBlock(uint64_t length)
{
    struct stat st;
    if (m_blockStart >= 0 || !flush() || ::fstat(m_fd, &st) != 0 || !S_ISREG(st.st_mode))
        return false;
    // pwrite ignores the offset on a descriptor opened for appending.
    const int flags = ::fcntl(m_fd, F_GETFL);
    if (flags < 0 || (flags & O_APPEND))
        return false;
    const off_t at = ::lseek(m_fd, 0, SEEK_CUR);
    if (at < 0)
        return false;
    m_blockStart = at;
    m_blockLength = length;
    return true;
}

bool KCFdOutputStream::writeAt(uint64_t offset, const void *data, size_t size)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    if (m_blockStart < 0 || offset > m_blockLength || size > m_blockLength - offset) {
        fail(EINVAL);
        return false;
    }
    off_t at = off_t(m_blockStart + int64_t(offset));
    while (size && !m_error) {
        const ssize_t done = ::pwrite(m_fd, bytes, size, at);
        if (done < 0) {
            if (errno != EINTR)
                fail(errno);
            continue;
        }
        bytes += done;
        size -= size_t(done);
        at += done;
    }
    return !m_error;
}

bool KCFdOutputStream::endBlock()
{
    if (m_blockStart < 0)
        return false;
    const off_t end = off_t(m_blockStart + int64_t(m_blockLength));
    m_blockStart = -1;
    if (m_error)
        return false;
    if (::lseek(m_fd, end, SEEK_SET) != end) {
        fail(errno);
        return false;
    }
    m_written += m_blockLength;
    return true;
}

bool KCFdOutputStream::flush()
{
    const size_t n = m_used;
    m_used = 0;
    return writeAll(m_buffer.data(), n);
}
