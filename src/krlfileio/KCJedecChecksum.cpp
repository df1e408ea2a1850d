#include "KCJedecChecksum.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr size_t Block = 16;

} // namespace

uint16_t KCJedecChecksum::fuses(const uint8_t *fuses, uint64_t count)
{
    // Sixteen fuses make two packed bytes at once: the mask of the non-zero ones. The sum is
    // taken modulo 2^16 only at the end, which gives the same low 16 bits.
    uint64_t sum = 0;
    uint64_t i = 0;
#ifdef __SSE2__
    const __m128i zero = _mm_setzero_si128();
    for (; i + Block <= count; i += Block) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(fuses + i));
        const unsigned set = ~unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(v, zero))) & 0xFFFFu;
        sum += (set & 0xFFu) + (set >> 8);
    }
#endif
    for (; i + 8 <= count; i += 8) {
        const uint8_t *f = fuses + i;
        sum += unsigned(f[0] != 0) | unsigned(f[1] != 0) << 1 | unsigned(f[2] != 0) << 2 |
               unsigned(f[3] != 0) << 3 | unsigned(f[4] != 0) << 4 | unsigned(f[5] != 0) << 5 |
               unsigned(f[6] != 0) << 6 | unsigned(f[7] != 0) << 7;
    }
    for (unsigned bit = 0; i < count; ++i, ++bit)
        sum += unsigned(fuses[i] != 0) << bit;
    return uint16_t(sum);
}

uint16_t KCJedecChecksum::transmission(const uint8_t *data, size_t size, uint16_t sum)
{
    uint64_t total = sum;
    size_t i = 0;
#ifdef __SSE2__
    __m128i sums = _mm_setzero_si128();
    for (; i + Block <= size; i += Block)
        sums = _mm_add_epi64(sums, _mm_sad_epu8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(data + i)),
                                                _mm_setzero_si128()));
    total += uint64_t(_mm_cvtsi128_si64(sums)) + uint64_t(_mm_cvtsi128_si64(_mm_srli_si128(sums, 8)));
#endif
    for (; i < size; ++i)
        total += data[i];
    return uint16_t(total);
}

void KCJedecChecksum::fuseDigits(const uint8_t *fuses, size_t count, char *out)
{
    size_t i = 0;
#ifdef __SSE2__
    const __m128i zero = _mm_setzero_si128();
    const __m128i one = _mm_set1_epi8(1);
    const __m128i digitOne = _mm_set1_epi8('1');
    for (; i + Block <= count; i += Block) {
        const __m128i isZero = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(fuses + i)), zero);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_sub_epi8(digitOne, _mm_and_si128(isZero, one)));
    }
#endif
    for (; i < count; ++i)
        out[i] = fuses[i] ? '1' : '0';
}
