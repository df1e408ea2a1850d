#pragma once

#include "KCFileFormat.h"

#include <string>
#include <vector>

// Writes to a file descriptor through one large buffer; large blocks go straight through.
// The descriptor is not owned. Call flush() at the end and check its result.
class KCFdOutputStream : public KCOutputStream
{
public:
    explicit KCFdOutputStream(int fd, size_t bufferSize = size_t(1) << 20);
    ~KCFdOutputStream() override;

    bool write(const void *data, size_t size) override;
    bool flush();

    // errno of the first failed write, 0 while all went well.
    int error() const { return m_error; }
    uint64_t bytesWritten() const { return m_written; }

private:
    bool writeAll(const uint8_t *data, size_t size);

    int m_fd;
    int m_error = 0;
    uint64_t m_written = 0;
    std::vector<uint8_t> m_buffer;
    size_t m_used = 0;
};
