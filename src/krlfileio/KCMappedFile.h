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

    // False on failure; errorText() then names the file and the reason. `populate` maps all
    // pages at once (readers walk every byte); without it the descriptor stays open in the
    // input, for a reader that copies the file as it is.
    bool open(const std::string &path, bool populate = true);
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
