#pragma once

#include "KCByteArray.h"

#include <cstddef>
#include <cstdint>
#include <memory>

class cFileLeaseGuard;

// One device data buffer: up to several GiB of bytes in anonymous memory mappings, so a
// large buffer costs nothing until it is touched and grows without copying.
class cByteBuffer : public KCByteArray
{
public:
    cByteBuffer();
    explicit cByteBuffer(uint64_t size, uint8_t fill = 0xFF);
    ~cByteBuffer() override;
    cByteBuffer(const cByteBuffer &) = delete;
    cByteBuffer &operator=(const cByteBuffer &) = delete;

    uint64_t size() const override { return m_size; }
    uint8_t *data() override { return m_data; }
    const uint8_t *data() const override { return m_data; }
    bool resize(uint64_t newSize, uint8_t fill) override;
    bool resizeForOverwrite(uint64_t newSize) override;
    // A large raw image shares the file's cached pages copy-on-write: no fresh memory to
    // zero, no copy. A lease on the file keeps the buffer from following later changes of it.
    bool shareFile(int fd, uint64_t fileOffset, uint64_t count) override;
    bool isSharingFile() const { return m_fileMapped; }

    uint64_t GetSize() const { return m_size; }
    uint8_t GetAt(uint64_t addr) const { return m_data[addr]; }
    void SetAt(uint64_t addr, uint8_t value) { m_data[addr] = value; }
    uint8_t *GetData() { return m_data; }
    const uint8_t *GetData() const { return m_data; }
    // Sets bytes start..end inclusive, clipped to the buffer.
    void Fill(uint64_t start, uint64_t end, uint8_t value);
    // A lazy buffer takes memory only for the pages written: growth reserves address space
    // and nothing more, and new bytes read as zero. For images whose data are sparse.
    void setLazy(bool lazy) { m_lazy = lazy; }
    bool isLazy() const { return m_lazy; }

    // Whether huge pages are free for a mapping of this size, and the request for them; tests
    // replace them to take the huge-page path, or to have it refused, on any machine.
    static bool (*s_hugePagesFree)(uint64_t size);
    static int (*s_adviseHugePages)(void *p, size_t size);

private:
    bool reserve(uint64_t newSize);
    void releaseMapping();

    uint8_t *m_data = nullptr;
    uint64_t m_size = 0;
    uint64_t m_capacity = 0;
    uint64_t m_used = 0; // bytes of the mapping ever inside the buffer
    bool m_lazy = false;
    // The mapping is of a file: growing it in place would map bytes past the file's end, and
    // pages given back would read the file again instead of zeros.
    bool m_fileMapped = false;
    std::unique_ptr<cFileLeaseGuard> m_lease;
};
