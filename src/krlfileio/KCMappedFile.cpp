#include "KCMappedFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kReadChunk = size_t(1) << 20;
// Mapped files have their first pages read at once; the rest follows the reader through the
// kernel's read-ahead, so a reader that stops at an error early does not wait for the whole
// file to be read.
constexpr size_t kPopulateWindow = size_t(256) << 20;
#ifndef MADV_POPULATE_READ
#define MADV_POPULATE_READ 22
#endif

// Closes the descriptor on every way out of open().
struct FdCloser
{
    int fd;
    ~FdCloser()
    {
        if (fd >= 0)
            ::close(fd);
    }
};

} // namespace

KCMappedFile::~KCMappedFile()
{
    close();
}

void KCMappedFile::close()
{
    if (m_map)
        ::munmap(m_map, m_size);
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_map = nullptr;
    m_copy.clear();
    m_copy.shrink_to_fit();
    m_data = nullptr;
    m_size = 0;
}

bool KCMappedFile::fail(const char *what, int error)
{
    m_error = std::string("cannot ") + what + " " + m_path + ": " + std::strerror(error);
    close();
    return false;
}

bool KCMappedFile::open(const std::string &path, bool populate, uint64_t streamLimit)
{
    close();
    m_path = path;
    m_error.clear();
    // "-" is standard input; the descriptor is not ours to close.
    const bool standardInput = path == "-";
    FdCloser fd{standardInput ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (fd.fd < 0)
        return fail("open", errno);
    struct stat st;
    if (::fstat(fd.fd, &st) != 0)
        return fail("examine", errno);
    if (S_ISDIR(st.st_mode))
        return fail("read", EISDIR);

    if (S_ISREG(st.st_mode)) {
        if (st.st_size == 0)
            return true;
        if (uint64_t(st.st_size) > SIZE_MAX)
            return fail("map", EFBIG);
        void *map = ::mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE, fd.fd, 0);
        if (map != MAP_FAILED) {
            ::madvise(map, size_t(st.st_size), MADV_SEQUENTIAL);
            if (populate)
                ::madvise(map, std::min(size_t(st.st_size), kPopulateWindow), MADV_POPULATE_READ);
            if (!populate) {
                m_fd = fd.fd;
                fd.fd = -1;
            }
            m_map = map;
            m_data = static_cast<const uint8_t *>(map);
            m_size = size_t(st.st_size);
            return true;
        }
        // Some file systems cannot map; reading works everywhere.
    }

    // A pipe, a device or standard input: read as a stream, up to the limit.
    size_t used = 0;
    for (;;) {
        if (used > streamLimit) {
            m_error = m_path + ": more than " + std::to_string(streamLimit) + " bytes; reading stopped there";
            close();
            return false;
        }
        if (m_copy.size() - used < kReadChunk)
            m_copy.resize(std::max(m_copy.size() * 2, used + kReadChunk));
        const ssize_t got = ::read(fd.fd, m_copy.data() + used, m_copy.size() - used);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return fail("read", errno);
        }
        if (got == 0)
            break;
        used += size_t(got);
    }
    m_copy.resize(used);
    m_data = m_copy.data();
    m_size = used;
    return true;
}
