#pragma once

#include <atomic>
#include <cstddef>
#include <string>

// An open serial definition file. A consumer opens it read-write and holds an exclusive
// open-file-description lock from open to close; the kernel drops that lock when the
// descriptor closes, also when the holding process dies. Readers take no lock.
class cSerialDefFile
{
public:
    enum OpenResult { Opened, Missing, Cancelled, Failed, NotRegular };

    cSerialDefFile() = default;
    ~cSerialDefFile();
    cSerialDefFile(const cSerialDefFile &) = delete;
    cSerialDefFile &operator=(const cSerialDefFile &) = delete;

    // With `exclusive`, opens read-write and waits until the lock is free or `cancel` is set.
    // Only a regular file can be locked and rewritten in place: anything else (a FIFO, a
    // device) is refused at once, without waiting for a writer.
    OpenResult open(const std::string &path, bool exclusive, const std::atomic<bool> &cancel);
    bool isOpen() const { return m_fd >= 0; }
    bool isExclusive() const { return m_exclusive; }

    // The whole file; fails on files larger than `maxSize`. Without the lock a writer may be
    // rewriting the file meanwhile, so the file is read until two reads agree.
    bool readAll(std::string *text, size_t maxSize) const;
    // One write of the whole text at offset 0, truncation to its length, flush to disk.
    bool replaceAll(const std::string &text);
    bool close();
    // Why the last operation failed, in the system's words; and whether a read failed for size.
    std::string errorText() const;
    bool tooLarge() const { return m_tooLarge; }

    // Creates `path` holding `text` unless it exists already (true then too). Other
    // stations see the file complete or not at all.
    static bool createComplete(const std::string &path, const std::string &text);

private:
    bool readOnce(std::string *text, size_t maxSize) const;
    bool waitForLock(const std::atomic<bool> &cancel);

    int m_fd = -1;
    bool m_exclusive = false;
    mutable size_t m_size = 0; // as last read or written
    mutable int m_error = 0;
    mutable bool m_tooLarge = false;
};
