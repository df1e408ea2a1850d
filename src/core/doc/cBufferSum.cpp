#include "doc/cBufferSum.h"

#include <immintrin.h>
#include <thread>

namespace {

// Horizontal sums of 16/32 bytes against zero (psadbw) keep 64-bit lane totals, so a run of
// any length cannot overflow before it is folded.
uint64_t byteSumSse2(const uint8_t *p, size_t n)
{
    __m128i acc = _mm_setzero_si128();
    const __m128i zero = _mm_setzero_si128();
    size_t i = 0;
    for (; i + 64 <= n; i += 64) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i + 16));
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i + 32));
        const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i + 48));
        acc = _mm_add_epi64(acc, _mm_add_epi64(_mm_add_epi64(_mm_sad_epu8(a, zero), _mm_sad_epu8(b, zero)),
                                               _mm_add_epi64(_mm_sad_epu8(c, zero), _mm_sad_epu8(d, zero))));
    }
    uint64_t sum = static_cast<uint64_t>(_mm_cvtsi128_si64(acc))
                   + static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(acc, acc)));
    for (; i < n; ++i)
        sum += p[i];
    return sum;
}

__attribute__((target("avx2"))) uint64_t byteSumAvx2(const uint8_t *p, size_t n)
{
    __m256i acc0 = _mm256_setzero_si256();
    __m256i acc1 = _mm256_setzero_si256();
    const __m256i zero = _mm256_setzero_si256();
    size_t i = 0;
    for (; i + 128 <= n; i += 128) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i + 32));
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i + 64));
        const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i + 96));
        acc0 = _mm256_add_epi64(acc0, _mm256_add_epi64(_mm256_sad_epu8(a, zero), _mm256_sad_epu8(b, zero)));
        acc1 = _mm256_add_epi64(acc1, _mm256_add_epi64(_mm256_sad_epu8(c, zero), _mm256_sad_epu8(d, zero)));
    }
    alignas(32) uint64_t lanes[4];
    _mm256_store_si256(reinterpret_cast<__m256i *>(lanes), _mm256_add_epi64(acc0, acc1));
    return lanes[0] + lanes[1] + lanes[2] + lanes[3] + byteSumSse2(p + i, n - i);
}

// Fuse sum over groups of 8 bytes that start at an address divisible by 8: the nonzero-mask
// of such a group is exactly its weight sum.
uint64_t fuseSumAlignedSse2(const uint8_t *p, size_t n)
{
    const __m128i zero = _mm_setzero_si128();
    uint64_t sum = 0;
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i));
        const unsigned nonzero = ~static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, zero))) & 0xFFFFu;
        sum += (nonzero & 0xFFu) + (nonzero >> 8);
    }
    for (; i < n; ++i)
        if (p[i])
            sum += 1u << (i & 7);
    return sum;
}

__attribute__((target("avx2"))) uint64_t fuseSumAlignedAvx2(const uint8_t *p, size_t n)
{
    const __m256i zero = _mm256_setzero_si256();
    uint64_t sum = 0;
    size_t i = 0;
    for (; i + 64 <= n; i += 64) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p + i + 32));
        const uint64_t za = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(a, zero)));
        const uint64_t zb = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(b, zero)));
        const uint64_t nonzero = ~(za | (zb << 32));
        // Add the eight mask bytes: pairwise, then by four, then by eight.
        uint64_t s = (nonzero & 0x00FF00FF00FF00FFull) + ((nonzero >> 8) & 0x00FF00FF00FF00FFull);
        s = (s & 0x0000FFFF0000FFFFull) + ((s >> 16) & 0x0000FFFF0000FFFFull);
        sum += (s & 0xFFFFFFFFull) + (s >> 32);
    }
    return sum + fuseSumAlignedSse2(p + i, n - i);
}

bool hasAvx2()
{
    static const bool avx2 = __builtin_cpu_supports("avx2");
    return avx2;
}


uint64_t byteSumOneThread(const uint8_t *data, size_t size)
{
    return hasAvx2() ? byteSumAvx2(data, size) : byteSumSse2(data, size);
}

// From this size the sum is shared with a second thread: memory, not arithmetic, is the
// limit, and one core alone does not draw all the bandwidth there is.
constexpr size_t ParallelSumThreshold = size_t(64) << 20;

} // namespace

uint32_t cBufferSum::byteSum(const uint8_t *data, size_t size)
{
    if (size < ParallelSumThreshold || std::thread::hardware_concurrency() < 2)
        return static_cast<uint32_t>(byteSumOneThread(data, size));
    const size_t half = size / 2;
    uint64_t second = 0;
    std::thread t([&] { second = byteSumOneThread(data + half, size - half); });
    const uint64_t first = byteSumOneThread(data, half);
    t.join();
    return static_cast<uint32_t>(first + second);
}

uint32_t cBufferSum::fuseSum(const uint8_t *data, size_t size, uint64_t firstAddress)
{
    uint64_t sum = 0;
    size_t i = 0;
    // Head up to the next address divisible by 8, where the weights start again at 1.
    for (; i < size && ((firstAddress + i) & 7) != 0; ++i)
        if (data[i])
            sum += 1u << ((firstAddress + i) & 7);
    sum += hasAvx2() ? fuseSumAlignedAvx2(data + i, size - i) : fuseSumAlignedSse2(data + i, size - i);
    return static_cast<uint32_t>(sum);
}

uint32_t cBufferSum::byteSumReference(const uint8_t *data, size_t size)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < size; ++i)
        sum += data[i];
    return sum;
}

uint32_t cBufferSum::fuseSumReference(const uint8_t *data, size_t size, uint64_t firstAddress)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < size; ++i)
        if (data[i])
            sum += 1u << ((firstAddress + i) & 7);
    return sum;
}
