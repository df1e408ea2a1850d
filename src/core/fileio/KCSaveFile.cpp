#include "fileio/KCSaveFile.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t NewFileMode = 0666;
constexpr int LinkAttempts = 16;

std::string folderOf(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string resolveLinks(const std::string &path)
{
    struct stat st;
    if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
        return path;
    std::string resolved = path;
    if (char *real = ::realpath(path.c_str(), nullptr)) {
        resolved = real;
        std::free(real);
    } else {
        // A link to a file not there yet: write where it points.
        char target[PATH_MAX];
        const ssize_t n = ::readlink(path.c_str(), target, sizeof target - 1);
        if (n > 0) {
            target[n] = '\0';
            resolved = target[0] == '/' ? std::string(target) : folderOf(path) + "/" + target;
        }
    }
    return resolved;
}

} // namespace

KCSaveFile::~KCSaveFile()
{
    abort();
}

bool KCSaveFile::fail(const std::string &what, int error)
{
    m_error = what + ": " + std::strerror(error);
    abort();
    return false;
}

bool KCSaveFile::open(const std::string &path)
{
    abort();
    m_error.clear();
    m_direct = false;
    m_ownsFd = true;
    if (path == "-") {
        m_target = path;
        m_direct = true;
        m_ownsFd = false;
        m_fd = STDOUT_FILENO;
        return true;
    }
    m_target = resolveLinks(path);
    struct stat st;
    const bool exists = ::stat(m_target.c_str(), &st) == 0;
    if (exists && S_ISDIR(st.st_mode))
        return fail("cannot write " + m_target, EISDIR);
    if (exists && !S_ISREG(st.st_mode)) {
        // A FIFO or a device takes the bytes as they come; it is not replaced.
        m_direct = true;
        m_fd = ::open(m_target.c_str(), O_WRONLY | O_CLOEXEC);
        return m_fd >= 0 || fail("cannot open " + m_target, errno);
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = exists ? (st.st_mode & 07777) : (NewFileMode & ~mask);
    const std::string folder = folderOf(m_target);
#ifdef O_TMPFILE
    m_fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
#endif
    if (m_fd < 0) {
        m_temporary = m_target + ".krldv-XXXXXX";
        m_fd = ::mkstemp(&m_temporary[0]);
        if (m_fd < 0) {
            const int error = errno;
            m_temporary.clear();
            return fail("cannot create a file in " + folder, error);
        }
    }
    ::fchmod(m_fd, mode);
    return true;
}

bool KCSaveFile::commit()
{
    if (m_fd < 0)
        return false;
    if (m_direct) {
        const bool ok = !m_ownsFd || ::close(m_fd) == 0;
        const int error = errno;
        m_fd = -1;
        return ok || fail("cannot write " + m_target, error);
    }
    if (::fsync(m_fd) != 0)
        return fail("cannot write " + m_target, errno);
    if (m_temporary.empty()) {
        // Give the unnamed file a name beside the target, then move it over the target.
        std::mt19937 rng(std::random_device{}());
        const std::string proc = "/proc/self/fd/" + std::to_string(m_fd);
        for (int i = 0; i < LinkAttempts && m_temporary.empty(); ++i) {
            char suffix[16];
            std::snprintf(suffix, sizeof suffix, ".krldv-%06x", unsigned(rng() & 0xFFFFFF));
            const std::string name = m_target + suffix;
            if (::linkat(AT_FDCWD, proc.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
                m_temporary = name;
            else if (errno != EEXIST)
                return fail("cannot write " + m_target, errno);
        }
        if (m_temporary.empty())
            return fail("cannot write " + m_target, EEXIST);
    }
    if (::close(m_fd) != 0) {
        m_fd = -1;
        return fail("cannot write " + m_target, errno);
    }
    m_fd = -1;
    if (::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        return fail("cannot write " + m_target, errno);
    m_temporary.clear();
    return true;
}

void KCSaveFile::abort()
{
    if (m_fd >= 0 && m_ownsFd)
        ::close(m_fd);
    m_fd = -1;
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
    m_temporary.clear();
}
