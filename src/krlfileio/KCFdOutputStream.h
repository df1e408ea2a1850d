#pragma once

#include "KCFileFormat.h"

#include <atomic>
#include <string>
#include <vector>

// Writes to a file descriptor through one large buffer; large blocks go straight through.
// On a regular file, blocks of known length may be written at offsets from several threads.
// The descriptor is not owned. Call flush() at the end and check its result.
class KCFdOutputStream : public KCOutputStream
{
public:
    explicit KCFdOutputStream(int fd, size_t bufferSize = size_t(1) << 20);
    ~KCFdOutputStream() override;

    bool write(const void *data, size_t size) override;
    bool beginBlock(uint64_t length) override;
    bool writeAt(uint64_t offset, const void *data, size_t size) override;
    bool endBlock() override;
    bool flush();

    // errno of the first failed write, 0 while all went well.
    int error() const { return m_error; }
    uint64_t bytesWritten() const { return m_written; }

private:
    bool writeAll(const uint8_t *data, size_t size);
    void fail(int error);

    int m_fd;
    std::atomic<int> m_error{0};
    uint64_t m_written = 0;
    std::vector<uint8_t> m_buffer;
    size_t m_used = 0;
    // The open block: file position of its start and its length.
    int64_t m_blockStart = -1;
    uint64_t m_blockLength = 0;
};
