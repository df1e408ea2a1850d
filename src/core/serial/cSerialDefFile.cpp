#include "serial/cSerialDefFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <fcntl.h>
#include <sched.h>
#include <time.h>
#include <unistd.h>

namespace {
// A held lock is polled: F_OFD_SETLKW cannot be cancelled from another thread. The first
// retries only yield (a consumer holds the file for a few system calls); later ones sleep,
// doubling up to a cap, so waiting stations do not starve the holder of the processor.
constexpr unsigned YieldingRetries = 8;
constexpr long FirstSleepNs = 20'000;
constexpr long MaxSleepNs = 1'000'000;
// A lock-free reader gives up after this many reads that never agreed.
constexpr int MaxUnstableReads = 100;
constexpr size_t ReadChunk = 4096;
constexpr mode_t NewFileMode = 0666;

bool writeAll(int fd, const char *data, size_t size, off_t offset)
{
    while (size > 0) {
        const ssize_t n = ::pwrite(fd, data, size, offset);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
        offset += n;
    }
    return true;
}
}

cSerialDefFile::~cSerialDefFile()
{
    close();
}

cSerialDefFile::OpenResult cSerialDefFile::open(const std::string &path, bool exclusive,
                                                const std::atomic<bool> &cancel)
{
    close();
    // Non-blocking, so that a FIFO does not wait here for a writer before it can be refused.
    const int flags = (exclusive ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
    do {
        m_fd = ::open(path.c_str(), flags);
    } while (m_fd < 0 && errno == EINTR);
    if (m_fd < 0) {
        m_error = errno;
        return errno == ENOENT ? Missing : Failed;
    }
    struct stat st;
    if (::fstat(m_fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close();
        return NotRegular;
    }
    ::fcntl(m_fd, F_SETFL, ::fcntl(m_fd, F_GETFL) & ~O_NONBLOCK);
    m_exclusive = exclusive;
    if (exclusive && !waitForLock(cancel)) {
        const OpenResult result = cancel.load() ? Cancelled : Failed;
        close();
        return result;
    }
    return Opened;
}

bool cSerialDefFile::waitForLock(const std::atomic<bool> &cancel)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET; // l_start 0 and l_len 0: the whole file, however long
    long sleepNs = FirstSleepNs;
    for (unsigned attempt = 0;; ++attempt) {
        if (::fcntl(m_fd, F_OFD_SETLK, &lock) == 0)
            return true;
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            m_error = errno;
            return false;
        }
        if (cancel.load())
            return false;
        if (attempt < YieldingRetries) {
            sched_yield();
        } else {
            const struct timespec pause = {0, sleepNs};
            nanosleep(&pause, nullptr);
            sleepNs = sleepNs * 2 > MaxSleepNs ? MaxSleepNs : sleepNs * 2;
        }
    }
}

bool cSerialDefFile::readOnce(std::string *text, size_t maxSize) const
{
    // Read into what the buffer already holds: a definition file fits at once, and a read
    // that comes back short has met the end of the file.
    text->resize(std::min(std::max(text->capacity(), ReadChunk), maxSize + 1));
    size_t got = 0;
    for (;;) {
        const ssize_t n = ::pread(m_fd, &(*text)[got], text->size() - got, static_cast<off_t>(got));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            m_error = errno;
            return false;
        }
        got += static_cast<size_t>(n);
        if (got < text->size())
            break;
        if (text->size() > maxSize) {
            m_tooLarge = true;
            return false;
        }
        text->resize(std::min(text->size() * 2, maxSize + 1));
    }
    text->resize(got);
    m_size = got;
    return true;
}

bool cSerialDefFile::readAll(std::string *text, size_t maxSize) const
{
    if (m_fd < 0 || !text)
        return false;
    if (m_exclusive)
        return readOnce(text, maxSize);
    std::string again;
    if (!readOnce(text, maxSize))
        return false;
    for (int i = 0; i < MaxUnstableReads; ++i) {
        if (!readOnce(&again, maxSize))
            return false;
        if (again == *text)
            return true;
        text->swap(again);
    }
    return false;
}

bool cSerialDefFile::replaceAll(const std::string &text)
{
    if (m_fd < 0 || !m_exclusive)
        return false;
    const off_t size = static_cast<off_t>(text.size());
    // Reserve the blocks first so that a full disk fails here and not halfway through the
    // text. Not every file system can; the write then simply goes ahead.
    if (text.size() > m_size && ::fallocate(m_fd, FALLOC_FL_KEEP_SIZE, 0, size) != 0 && errno == ENOSPC) {
        m_error = errno;
        return false;
    }
    // A longer text is written from its new end first: when that fails (a full disk, a size
    // limit) the old text is still whole, cut back to its old length.
    const size_t oldSize = std::min(m_size, text.size());
    if (text.size() > oldSize
        && !writeAll(m_fd, text.data() + oldSize, text.size() - oldSize, static_cast<off_t>(oldSize))) {
        m_error = errno;
        while (::ftruncate(m_fd, static_cast<off_t>(m_size)) != 0 && errno == EINTR) {
        }
        return false;
    }
    if (!writeAll(m_fd, text.data(), oldSize, 0)) {
        m_error = errno;
        return false;
    }
    int result;
    do {
        result = ::ftruncate(m_fd, size);
    } while (result != 0 && errno == EINTR);
    if (result != 0 || ::fdatasync(m_fd) != 0) {
        m_error = errno;
        return false;
    }
    m_size = text.size();
    return true;
}

std::string cSerialDefFile::errorText() const
{
    return m_error ? std::strerror(m_error) : "unknown error";
}

bool cSerialDefFile::close()
{
    if (m_fd < 0)
        return true;
    const int result = ::close(m_fd);
    m_fd = -1;
    m_exclusive = false;
    return result == 0;
}

bool cSerialDefFile::createComplete(const std::string &path, const std::string &text)
{
    // Written under a private name, then linked into place: link() fails rather than
    // replacing a file another station created meanwhile.
    static std::atomic<unsigned> creations{0};
    const std::string temporary =
        path + ".new" + std::to_string(::getpid()) + "-" + std::to_string(creations++);
    int fd = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, NewFileMode);
    if (fd < 0 && errno == EEXIST) {
        ::unlink(temporary.c_str()); // left by a process that died while creating it
        fd = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, NewFileMode);
    }
    if (fd < 0)
        return false;
    const bool written = writeAll(fd, text.data(), text.size(), 0) && ::fsync(fd) == 0;
    ::close(fd);
    bool created = false;
    if (written) {
        if (::link(temporary.c_str(), path.c_str()) == 0 || errno == EEXIST)
            created = true;
    }
    ::unlink(temporary.c_str());
    if (written && !created) {
        // File systems without hard links: create in place, briefly visible while empty.
        fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, NewFileMode);
        if (fd < 0)
            return errno == EEXIST;
        created = writeAll(fd, text.data(), text.size(), 0) && ::fsync(fd) == 0;
        ::close(fd);
    }
    return created;
}
