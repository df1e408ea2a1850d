#pragma once

#include "KCFileFormat.h"

#include <cstdint>
#include <string>
#include <vector>

// A whole input file in memory, read once: mapped read-only when it is a regular file,
// otherwise (pipes, devices) read in one go.
class KCMappedFile
{
public:
    KCMappedFile() = default;
    ~KCMappedFile();
    KCMappedFile(const KCMappedFile &) = delete;
    KCMappedFile &operator=(const KCMappedFile &) = delete;

    // False on failure; errorText() then names the file and the reason. `populate` reads the
    // first pages at once (readers walk every byte); without it the descriptor stays open in
    // the input, for a reader that copies the file as it is. "-" is standard input. What is
    // not a regular file is read as a stream, and more than `streamLimit` bytes of it fail.
    bool open(const std::string &path, bool populate = true, uint64_t streamLimit = DefaultStreamLimit);

    // A stream cannot hold more than the largest buffer, 4 GiB.
    static constexpr uint64_t DefaultStreamLimit = uint64_t(1) << 32;
    void close();

    const std::string &errorText() const { return m_error; }
    const uint8_t *data() const { return m_data; }
    size_t size() const { return m_size; }
    KCInputFile input() const { return KCInputFile{m_path, m_data, m_size, m_fd}; }

private:
    bool fail(const char *what, int error);

    std::string m_path;
    std::string m_error;
    const uint8_t *m_data = nullptr;
    size_t m_size = 0;
    void *m_map = nullptr;
    int m_fd = -1;
    std::vector<uint8_t> m_copy;
};
