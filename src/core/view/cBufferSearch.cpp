#include "view/cBufferSearch.h"

#include "view/KCSearchHits.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

constexpr unsigned VectorBytes = 16;
// Candidates compared backwards between two looks at the stop flag.
constexpr uint64_t BackwardStopCheck = 4096;

#if defined(__x86_64__)
constexpr unsigned WideBytes = 64;
constexpr unsigned HalfShift = 32;

// The first block of 64 starts, from i, holding a start whose first and last byte match
// (its bits in `mask`), or the first start not looked at with `mask` 0. Chosen at run time
// where the processor has the wide compares.
__attribute__((target("avx2"))) uint64_t wideCandidates(const uint8_t *mem, uint64_t i, uint64_t last, uint8_t first,
                                                          uint8_t final, size_t n, uint64_t &mask)
{
    const __m256i head = _mm256_set1_epi8(static_cast<char>(first));
    const __m256i tail = _mm256_set1_epi8(static_cast<char>(final));
    for (; i <= last && last - i + 1 >= WideBytes; i += WideBytes) {
        const auto *a = reinterpret_cast<const __m256i *>(mem + i);
        const auto *z = reinterpret_cast<const __m256i *>(mem + i + n - 1);
        const __m256i m1 = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(a), head),
                                            _mm256_cmpeq_epi8(_mm256_loadu_si256(z), tail));
        const __m256i m2 = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(a + 1), head),
                                            _mm256_cmpeq_epi8(_mm256_loadu_si256(z + 1), tail));
        const __m256i any = _mm256_or_si256(m1, m2);
        if (!_mm256_testz_si256(any, any)) {
            mask = static_cast<uint32_t>(_mm256_movemask_epi8(m1)) |
                   (static_cast<uint64_t>(static_cast<uint32_t>(_mm256_movemask_epi8(m2))) << HalfShift);
            return i;
        }
    }
    mask = 0;
    return i;
}

bool hasWideCompares()
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}
#endif

} // namespace

bool cBufferSearch::clip(uint64_t size, int64_t s, int64_t e, uint64_t &first, uint64_t &lastStart) const
{
    const int64_t n = static_cast<int64_t>(m_pattern.size());
    if (n == 0 || size == 0)
        return false;
    if (s < 0)
        s = 0;
    // Bytes past the buffer cannot be part of a match.
    e = std::min<int64_t>(e, static_cast<int64_t>(size - 1));
    const int64_t last = e - n + 1;
    if (last < s)
        return false;
    first = static_cast<uint64_t>(s);
    lastStart = static_cast<uint64_t>(last);
    return true;
}

template <class OnHit>
bool cBufferSearch::scan(const uint8_t *mem, uint64_t first, uint64_t last, OnHit &onHit) const
{
    const size_t n = m_pattern.size();
    const uint8_t *p = m_pattern.data();
    uint64_t i = first;
#if defined(__x86_64__)
    if (n >= 2 && hasWideCompares()) {
        for (;;) {
            uint64_t mask;
            i = wideCandidates(mem, i, last, p[0], p[n - 1], n, mask);
            if (!mask)
                break;
            for (; mask; mask &= mask - 1) {
                const uint64_t at = i + static_cast<unsigned>(__builtin_ctzll(mask));
                if ((n <= 2 || std::memcmp(mem + at + 1, p + 1, n - 2) == 0) && !onHit(at))
                    return false;
            }
            i += WideBytes;
        }
    }
#endif
#if defined(__SSE2__)
    // A start matches only where both its first and its last byte do: on most data a
    // 16-byte block then holds no candidate at all, and the bytes between are compared rarely.
    if (n >= 2) {
        const __m128i head = _mm_set1_epi8(static_cast<char>(p[0]));
        const __m128i tail = _mm_set1_epi8(static_cast<char>(p[n - 1]));
        for (; i <= last && last - i + 1 >= VectorBytes; i += VectorBytes) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(mem + i));
            const __m128i z = _mm_loadu_si128(reinterpret_cast<const __m128i *>(mem + i + n - 1));
            unsigned mask = static_cast<unsigned>(
                _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, head), _mm_cmpeq_epi8(z, tail))));
            while (mask) {
                const uint64_t at = i + static_cast<unsigned>(__builtin_ctz(mask));
                if (n <= 2 || std::memcmp(mem + at + 1, p + 1, n - 2) == 0) {
                    if (!onHit(at))
                        return false;
                }
                mask &= mask - 1;
            }
        }
    }
#endif
    while (i <= last) {
        const void *q = std::memchr(mem + i, p[0], last - i + 1);
        if (!q)
            break;
        const uint64_t at = static_cast<uint64_t>(static_cast<const uint8_t *>(q) - mem);
        if (n == 1 || std::memcmp(mem + at + 1, p + 1, n - 1) == 0) {
            if (!onHit(at))
                return false;
        }
        i = at + 1;
    }
    return true;
}

int64_t cBufferSearch::next(const uint8_t *mem, uint64_t size, int64_t s, int64_t e) const
{
    uint64_t first, lastStart;
    if (!clip(size, s, e, first, lastStart))
        return -1;
    int64_t found = -1;
    auto onHit = [&](uint64_t at) {
        if (at % m_alignment)
            return true;
        found = static_cast<int64_t>(at);
        return false;
    };
    for (uint64_t b = first; b <= lastStart; b += BlockBytes) {
        if (stopped())
            return -1;
        if (m_position)
            m_position->store(static_cast<int64_t>(b), std::memory_order_relaxed);
        const uint64_t blockLast = std::min(lastStart, b + BlockBytes - 1);
        if (!scan(mem, b, blockLast, onHit))
            return found;
        if (blockLast == lastStart)
            break;
    }
    return -1;
}

int64_t cBufferSearch::previous(const uint8_t *mem, uint64_t size, int64_t s, int64_t first) const
{
    const uint64_t n = m_pattern.size();
    if (n == 0 || size < n)
        return -1;
    first = std::max<int64_t>(first, 0);
    int64_t i = std::min<int64_t>(s, static_cast<int64_t>(size - n));
    const uint8_t *p = m_pattern.data();
    uint64_t sinceCheck = 0;
    while (i >= first) {
        const void *q = memrchr(mem + first, p[0], static_cast<size_t>(i - first + 1));
        if (!q)
            return -1;
        i = static_cast<const uint8_t *>(q) - mem;
        if (std::memcmp(mem + i, p, n) == 0 && i % m_alignment == 0)
            return i;
        --i;
        if (++sinceCheck % BackwardStopCheck == 0 && stopped())
            return -1;
    }
    return -1;
}

uint64_t cBufferSearch::findAll(const uint8_t *mem, uint64_t size, int64_t s, int64_t e, KCSearchHits &hits) const
{
    uint64_t first, lastStart;
    if (!clip(size, s, e, first, lastStart))
        return 0;
    const uint64_t n = m_pattern.size();
    uint64_t added = 0;
    auto onHit = [&](uint64_t at) {
        if (at % m_alignment == 0) {
            hits.add(at, n);
            ++added;
        }
        return true;
    };
    for (uint64_t b = first; b <= lastStart; b += BlockBytes) {
        if (stopped())
            break;
        if (m_position)
            m_position->store(static_cast<int64_t>(b), std::memory_order_relaxed);
        const uint64_t blockLast = std::min(lastStart, b + BlockBytes - 1);
        scan(mem, b, blockLast, onHit);
        if (blockLast == lastStart)
            break;
    }
    return added;
}

TAG_SEARCH_RANGE cBufferSearch::rangeFromDescription(const TAG_SEARCH_RANGE *description, uint64_t bufferSize)
{
    if (!description)
        return TAG_SEARCH_RANGE{0, -1};
    if (bufferSize == 0)
        return TAG_SEARCH_RANGE{0, 0};
    const int64_t top = static_cast<int64_t>(bufferSize - 1);
    return TAG_SEARCH_RANGE{std::clamp<int64_t>(description->first, 0, top),
                            std::clamp<int64_t>(description->last, 0, top)};
}
