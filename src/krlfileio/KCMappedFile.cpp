#include "KCMappedFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kReadChunk = size_t(1) << 20;

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

bool KCMappedFile::open(const std::string &path, bool populate)
{
    close();
    m_path = path;
    m_error.clear();
    FdCloser fd{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
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
        void *map = ::mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE | (populate ? MAP_POPULATE : 0),
                           fd.fd, 0);
        if (map != MAP_FAILED) {
            ::madvise(map, size_t(st.st_size), MADV_SEQUENTIAL);
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

    size_t used = 0;
    for (;;) {
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
