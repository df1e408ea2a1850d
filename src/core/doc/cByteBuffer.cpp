#include "doc/cByteBuffer.h"

#include "doc/cFileLeaseGuard.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

constexpr uint64_t PageSize = 4096;
#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

// Large growth maps its pages in one call instead of one fault per page touched later; a
// kernel without the call simply faults them in as before.
constexpr uint64_t PopulateThreshold = uint64_t(2) << 20;

// Huge pages make a gigabyte cost a few hundred faults instead of a quarter of a million, but
// asking for them when free memory is fragmented makes the kernel compact it first, which
// can stall for seconds. So they are asked for only when enough free 2 MiB blocks exist, and
// not at all with KRLDV_NO_HUGEPAGES set (virtual machines that back guest memory lazily
// make the first touch of a huge page slow).
constexpr uint64_t HugePageThreshold = uint64_t(64) << 20;
constexpr int HugePageOrder = 9; // 2 MiB in 4 KiB pages

uint64_t freeHugeBlockBytes()
{
    std::FILE *f = std::fopen("/proc/buddyinfo", "r");
    if (!f)
        return 0;
    uint64_t bytes = 0;
    char line[512];
    while (std::fgets(line, sizeof line, f)) {
        // "Node 0, zone   Normal  c0 c1 ... c10": counts of free blocks by order.
        const char *p = std::strstr(line, "zone");
        if (!p)
            continue;
        p += 4;
        while (*p == ' ')
            ++p;
        while (*p && *p != ' ')
            ++p;
        char *end = nullptr;
        for (int order = 0;; ++order) {
            const unsigned long long count = std::strtoull(p, &end, 10);
            if (end == p)
                break;
            if (order >= HugePageOrder)
                bytes += count * (PageSize << order);
            p = end;
        }
    }
    std::fclose(f);
    return bytes;
}

// Above this the kernel's zeroing of fresh pages is split between two threads.
constexpr uint64_t ParallelPopulateThreshold = uint64_t(256) << 20;

bool hugePagesFree(uint64_t size)
{
    return !std::getenv("KRLDV_NO_HUGEPAGES") && freeHugeBlockBytes() >= size;
}

int adviseHugePages(void *p, size_t size)
{
    return ::madvise(p, size, MADV_HUGEPAGE);
}

void populate(uint8_t *p, uint64_t size)
{
    if (size < PopulateThreshold)
        return;
    if (size < ParallelPopulateThreshold || std::thread::hardware_concurrency() < 2) {
        ::madvise(p, size, MADV_POPULATE_WRITE);
        return;
    }
    const uint64_t half = (size / 2) & ~(PopulateThreshold - 1);
    std::thread second([p, half, size] { ::madvise(p + half, size - half, MADV_POPULATE_WRITE); });
    ::madvise(p, half, MADV_POPULATE_WRITE);
    second.join();
}

uint64_t roundUp(uint64_t n)
{
    return (n + PageSize - 1) & ~(PageSize - 1);
}

} // namespace

cByteBuffer::cByteBuffer() = default;

cByteBuffer::cByteBuffer(uint64_t size, uint8_t fill)
{
    resize(size, fill);
}

cByteBuffer::~cByteBuffer()
{
    releaseMapping();
}

void cByteBuffer::releaseMapping()
{
    if (m_lease)
        m_lease->release();
    m_lease.reset();
    if (m_data)
        ::munmap(m_data, m_capacity);
    m_data = nullptr;
    m_size = m_capacity = m_used = 0;
    m_fileMapped = false;
}

bool cByteBuffer::shareFile(int fd, uint64_t fileOffset, uint64_t count)
{
    if (m_size != 0 || m_lazy || count == 0 || fileOffset % PageSize != 0)
        return false;
    auto lease = std::make_unique<cFileLeaseGuard>();
    if (!lease->take(fd))
        return false;
    // Under the lease nobody can shorten the file any more; it must still hold the bytes,
    // or touching the mapping past its end would kill the process.
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || uint64_t(st.st_size) < fileOffset + count)
        return false;
    const uint64_t capacity = roundUp(count);
    void *p = ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE, fd, off_t(fileOffset));
    if (p == MAP_FAILED)
        return false;
    lease->watch(static_cast<uint8_t *>(p), capacity);
    releaseMapping();
    m_data = static_cast<uint8_t *>(p);
    m_capacity = capacity;
    m_size = m_used = count;
    m_fileMapped = true;
    m_lease = std::move(lease);
    return true;
}

bool (*cByteBuffer::s_hugePagesFree)(uint64_t) = hugePagesFree;
int (*cByteBuffer::s_adviseHugePages)(void *, size_t) = adviseHugePages;

bool cByteBuffer::reserve(uint64_t newSize)
{
    if (newSize <= m_capacity)
        return true;
    const uint64_t capacity = roundUp(newSize);
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | (m_lazy ? MAP_NORESERVE : 0);
    void *p = m_data && !m_fileMapped ? ::mremap(m_data, m_capacity, capacity, MREMAP_MAYMOVE)
                                      : ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, flags, -1, 0);
    if (p == MAP_FAILED && m_data && !m_fileMapped) {
        // The mapping cannot move as a whole (the kernel split it): take a fresh one and copy.
        p = ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE, flags, -1, 0);
        if (p == MAP_FAILED)
            return false;
        std::memcpy(p, m_data, m_used);
        ::munmap(m_data, m_capacity);
    } else if (p == MAP_FAILED) {
        return false;
    } else if (m_fileMapped) {
        // A file mapping cannot grow past the file: the bytes move to anonymous memory.
        const uint64_t used = m_used, size = m_size;
        std::memcpy(p, m_data, used);
        releaseMapping();
        m_used = used;
        m_size = size;
    }
    m_data = static_cast<uint8_t *>(p);
    // Huge pages are asked for over the whole mapping, so that it stays one piece the kernel
    // can move when it grows; a refusal only means normal pages.
    if (!m_lazy && capacity >= HugePageThreshold && s_hugePagesFree(capacity))
        s_adviseHugePages(m_data, capacity);
    if (!m_lazy)
        populate(m_data + m_used, capacity - m_used);
    m_capacity = capacity;
    return true;
}

bool cByteBuffer::resizeForOverwrite(uint64_t newSize)
{
    if (!reserve(newSize))
        return false;
    m_size = newSize;
    m_used = std::max(m_used, m_size);
    return true;
}

bool cByteBuffer::resize(uint64_t newSize, uint8_t fill)
{
    if (!reserve(newSize))
        return false;
    if (newSize > m_size) {
        // Pages never used yet read as zero, so a zero fill need not touch them.
        const uint64_t end = fill == 0 ? std::min(newSize, m_used) : newSize;
        if (end > m_size)
            std::memset(m_data + m_size, fill, end - m_size);
    } else if (newSize == 0 && m_fileMapped) {
        releaseMapping();
        return true;
    } else if (newSize < m_size && !m_fileMapped) {
        // Whole pages past the new end go back to the system and read as zero again, so a
        // later growth with a zero fill need not clear them.
        const uint64_t keep = std::min(roundUp(newSize), m_capacity);
        if (m_used > keep && ::madvise(m_data + keep, m_used - keep, MADV_DONTNEED) == 0)
            m_used = keep;
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
