#pragma once

#include <string>

// Getting a file's new content to disk without ever losing the old one. A regular file (or a
// new one) is written to an unnamed temporary in the same folder, which replaces the file
// only when it is complete and on disk; a process killed meanwhile leaves nothing behind.
// Where the file system has no unnamed temporaries, a named one is used and removed on
// failure. Saving through a symbolic link replaces the file it points to and keeps the link;
// the old file's permissions are kept. "-" (standard output), a FIFO or a device is written
// directly, as cp does: it cannot be replaced.
class KCSaveFile
{
public:
    KCSaveFile() = default;
    ~KCSaveFile();
    KCSaveFile(const KCSaveFile &) = delete;
    KCSaveFile &operator=(const KCSaveFile &) = delete;

    // False with errorText() set when nothing can be written there.
    bool open(const std::string &path);
    int fd() const { return m_fd; }
    // The file that is written: `path` with its links resolved.
    const std::string &target() const { return m_target; }
    bool isDirect() const { return m_direct; }
    // Puts the written content in place; false (the old file untouched) with errorText() set.
    bool commit();
    // Drops what was written; the old file stays as it was.
    void abort();
    const std::string &errorText() const { return m_error; }

private:
    bool fail(const std::string &what, int error);

    std::string m_target;
    std::string m_temporary; // a named temporary, when one had to be used
    std::string m_error;
    int m_fd = -1;
    bool m_direct = false;
    bool m_ownsFd = true;
};
