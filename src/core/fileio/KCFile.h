#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

// A failed file operation: names the file and says what went wrong.
class KCFileException : public std::runtime_error
{
public:
    KCFileException(const std::string &path, const std::string &what, int error = 0);
    const std::string &path() const { return m_path; }
    int error() const { return m_error; }

private:
    std::string m_path;
    int m_error;
};

// A small wrapper over a POSIX file descriptor; failures throw KCFileException.
class KCFile
{
public:
    enum Mode { ReadOnly, WriteTruncate, ReadWrite };

    KCFile() = default;
    KCFile(const std::string &path, Mode mode);
    ~KCFile();
    KCFile(const KCFile &) = delete;
    KCFile &operator=(const KCFile &) = delete;

    void open(const std::string &path, Mode mode);
    void close();
    bool isOpen() const { return m_fd >= 0; }
    int handle() const { return m_fd; }
    const std::string &path() const { return m_path; }

    uint64_t size() const;
    // Reads up to n bytes; fewer only at the end of the file.
    size_t read(void *buffer, size_t n);
    void write(const void *data, size_t n);
    void sync();

private:
    int m_fd = -1;
    std::string m_path;
};
