#include "cByteBuffer.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>

namespace {

constexpr uint64_t PageSize = 4096;
// Large buffers ask for huge pages: a gigabyte then costs a few hundred page faults, not
// a quarter of a million.
constexpr uint64_t HugePageSize = uint64_t(2) << 20;

void adviseHugePages(void *p, uint64_t size)
{
    if (size >= HugePageSize)
        ::madvise(p, size, MADV_HUGEPAGE);
}

uint64_t roundUp(uint64_t n)
{
    return (n + PageSize - 1) & ~(PageSize - 1);
}

} // namespace

cByteBuffer::cByteBuffer(uint64_t size, uint8_t fill)
{
    resize(size, fill);
}

cByteBuffer::~cByteBuffer()
{
    if (m_data)
        ::munmap(m_data, m_capacity);
}

bool cByteBuffer::resize(uint64_t newSize, uint8_t fill)
{
    if (newSize > m_capacity) {
        const uint64_t capacity = roundUp(newSize);
        void *p = m_data ? ::mremap(m_data, m_capacity, capacity, MREMAP_MAYMOVE)
                         : ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p == MAP_FAILED)
            return false;
        m_data = static_cast<uint8_t *>(p);
        m_capacity = capacity;
        adviseHugePages(m_data, m_capacity);
    }
    if (newSize > m_size) {
        // Pages never used yet read as zero, so a zero fill need not touch them.
        const uint64_t end = fill == 0 ? std::min(newSize, m_used) : newSize;
        if (end > m_size)
            std::memset(m_data + m_size, fill, end - m_size);
    }
    m_size = newSize;
    m_used = std::max(m_used, m_size);
    return true;
}

void cByteBuffer::Fill(uint64_t start, uint64_t end, uint8_t value)
{
    if (start >= m_size || start > end)
        return;
    if (end >= m_size)
        end = m_size - 1;
    std::memset(m_data + start, value, end - start + 1);
}
