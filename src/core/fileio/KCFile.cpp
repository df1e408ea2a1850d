#include "fileio/KCFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

KCFileException::KCFileException(const std::string &path, const std::string &what, int error)
    : std::runtime_error(path + ": " + what + (error ? std::string(": ") + std::strerror(error) : std::string())),
      m_path(path), m_error(error)
{
}

KCFile::KCFile(const std::string &path, Mode mode)
{
    open(path, mode);
}

KCFile::~KCFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void KCFile::open(const std::string &path, Mode mode)
{
    close();
    int flags = O_CLOEXEC;
    switch (mode) {
    case ReadOnly: flags |= O_RDONLY; break;
    case WriteTruncate: flags |= O_WRONLY | O_CREAT | O_TRUNC; break;
    case ReadWrite: flags |= O_RDWR | O_CREAT; break;
    }
    const int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0)
        throw KCFileException(path, mode == ReadOnly ? "cannot open the file" : "cannot create the file", errno);
    struct stat st;
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(fd);
        throw KCFileException(path, "is a folder, not a file");
    }
    m_fd = fd;
    m_path = path;
}

void KCFile::close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

uint64_t KCFile::size() const
{
    struct stat st;
    if (::fstat(m_fd, &st) != 0)
        throw KCFileException(m_path, "cannot read the file size", errno);
    return static_cast<uint64_t>(st.st_size);
}

size_t KCFile::read(void *buffer, size_t n)
{
    size_t done = 0;
    while (done < n) {
        const ssize_t r = ::read(m_fd, static_cast<char *>(buffer) + done, n - done);
        if (r < 0) {
            if (errno == EINTR)
                continue;
            throw KCFileException(m_path, "cannot read the file", errno);
        }
        if (r == 0)
            break;
        done += static_cast<size_t>(r);
    }
    return done;
}

void KCFile::write(const void *data, size_t n)
{
    size_t done = 0;
    while (done < n) {
        const ssize_t w = ::write(m_fd, static_cast<const char *>(data) + done, n - done);
        if (w < 0) {
            if (errno == EINTR)
                continue;
            throw KCFileException(m_path, "cannot write the file", errno);
        }
        done += static_cast<size_t>(w);
    }
}

void KCFile::sync()
{
    if (::fsync(m_fd) != 0)
        throw KCFileException(m_path, "cannot flush the file to disk", errno);
}
