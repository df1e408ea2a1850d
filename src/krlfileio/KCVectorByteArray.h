#pragma once

#include "KCByteArray.h"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>
#ifdef __linux__
#include <sys/mman.h>
#endif

// A KCByteArray over std::vector, for tools and tests.
class KCVectorByteArray : public KCByteArray
{
public:
    KCVectorByteArray() = default;
    explicit KCVectorByteArray(std::vector<uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    uint64_t size() const override { return m_bytes.size(); }
    uint8_t *data() override { return m_bytes.data(); }
    const uint8_t *data() const override { return m_bytes.data(); }
    bool resize(uint64_t newSize, uint8_t fill) override
    {
        if (newSize > m_bytes.max_size())
            return false;
        try {
            if (newSize > m_bytes.capacity() && newSize >= kHugePageWorthwhile) {
                m_bytes.reserve(size_t(newSize));
                adviseHugePages();
            }
            m_bytes.resize(size_t(newSize), fill);
        } catch (const std::bad_alloc &) {
            return false;
        }
        return true;
    }

    std::vector<uint8_t> &bytes() { return m_bytes; }
    const std::vector<uint8_t> &bytes() const { return m_bytes; }

private:
    // Large images are filled page by page right after they grow; huge pages make that
    // one fault per 2 MiB instead of one per 4 KiB. KRLDV_NO_HUGEPAGES turns them off, as
    // for the document buffers.
    static constexpr uint64_t kHugePage = uint64_t(2) << 20;
    static constexpr uint64_t kHugePageWorthwhile = 4 * kHugePage;

    void adviseHugePages()
    {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
        const uintptr_t begin = (reinterpret_cast<uintptr_t>(m_bytes.data()) + kHugePage - 1) & ~uintptr_t(kHugePage - 1);
        const uintptr_t end = (reinterpret_cast<uintptr_t>(m_bytes.data()) + m_bytes.capacity()) & ~uintptr_t(kHugePage - 1);
        if (end > begin && !std::getenv("KRLDV_NO_HUGEPAGES"))
            ::madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE); // only advice: failure is harmless
#endif
    }

    std::vector<uint8_t> m_bytes;
};
