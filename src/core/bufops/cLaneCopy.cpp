#include "bufops/cLaneCopy.h"

#include <cstring>
#include <emmintrin.h>

namespace {

template <unsigned Unit, unsigned Stride>
void scatterFixed(uint8_t *dst, const uint8_t *src, uint64_t units)
{
    for (uint64_t u = 0; u < units; ++u)
        std::memcpy(dst + u * Stride, src + u * Unit, Unit);
}

template <unsigned Unit, unsigned Stride>
void gatherFixed(uint8_t *dst, const uint8_t *src, uint64_t units)
{
    for (uint64_t u = 0; u < units; ++u)
        std::memcpy(dst + u * Unit, src + u * Stride, Unit);
}

template <unsigned Unit, unsigned Stride>
void gatherLanesFixed(uint8_t *const *dst, const uint8_t *src, uint64_t first, uint64_t units)
{
    for (uint64_t u = first; u < units; ++u)
        for (unsigned l = 0; l < Stride / Unit; ++l)
            std::memcpy(dst[l] + u * Unit, src + u * Stride + l * Unit, Unit);
}

__m128i load(const uint8_t *p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

void store(uint8_t *p, __m128i v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(p), v);
}

// The vector kernels below take 16 destination bytes per lane at a time and return how many
// units they did; the loops of gatherLanesFixed finish the rest.
uint64_t bytesOf16(uint8_t *const *dst, const uint8_t *src, uint64_t units)
{
    const __m128i low = _mm_set1_epi16(0x00FF);
    uint64_t u = 0;
    for (; u + 16 <= units; u += 16) {
        const __m128i a = load(src + 2 * u), b = load(src + 2 * u + 16);
        store(dst[0] + u, _mm_packus_epi16(_mm_and_si128(a, low), _mm_and_si128(b, low)));
        store(dst[1] + u, _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8)));
    }
    return u;
}

uint64_t bytesOf32(uint8_t *const *dst, const uint8_t *src, uint64_t units)
{
    const __m128i low = _mm_set1_epi32(0xFF);
    uint64_t u = 0;
    for (; u + 16 <= units; u += 16) {
        const uint8_t *p = src + 4 * u;
        const __m128i a = load(p), b = load(p + 16), c = load(p + 32), d = load(p + 48);
        auto lane = [&](int shift) {
            // Each 32-bit value holds one byte of the lane, so the signed pack cannot clip it.
            const __m128i ab = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(a, shift), low),
                                               _mm_and_si128(_mm_srli_epi32(b, shift), low));
            const __m128i cd = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(c, shift), low),
                                               _mm_and_si128(_mm_srli_epi32(d, shift), low));
            return _mm_packus_epi16(ab, cd);
        };
        store(dst[0] + u, lane(0));
        store(dst[1] + u, lane(8));
        store(dst[2] + u, lane(16));
        store(dst[3] + u, lane(24));
    }
    return u;
}

uint64_t wordsOf32(uint8_t *const *dst, const uint8_t *src, uint64_t units)
{
    uint64_t u = 0;
    for (; u + 8 <= units; u += 8) {
        const __m128i a = load(src + 4 * u), b = load(src + 4 * u + 16);
        // Sign-extended halves pack back to themselves.
        store(dst[0] + 2 * u, _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(a, 16), 16),
                                              _mm_srai_epi32(_mm_slli_epi32(b, 16), 16)));
        store(dst[1] + 2 * u, _mm_packs_epi32(_mm_srai_epi32(a, 16), _mm_srai_epi32(b, 16)));
    }
    return u;
}

uint64_t halvesOf64(uint8_t *const *dst, const uint8_t *src, uint64_t units)
{
    uint64_t u = 0;
    for (; u + 4 <= units; u += 4) {
        const __m128 a = _mm_castsi128_ps(load(src + 8 * u)), b = _mm_castsi128_ps(load(src + 8 * u + 16));
        store(dst[0] + 4 * u, _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))));
        store(dst[1] + 4 * u, _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))));
    }
    return u;
}

// The unit sizes and strides of 8-, 16-, 32- and 64-bit lanes, as one key.
constexpr unsigned key(uint64_t unit, uint64_t stride)
{
    return unsigned(unit * 100 + stride);
}

} // namespace

void cLaneCopy::Scatter(uint8_t *dst, uint64_t dstStride, const uint8_t *src, uint32_t unit, uint64_t units)
{
    switch (key(unit, dstStride)) {
    case key(1, 2): return scatterFixed<1, 2>(dst, src, units);
    case key(1, 4): return scatterFixed<1, 4>(dst, src, units);
    case key(1, 8): return scatterFixed<1, 8>(dst, src, units);
    case key(2, 4): return scatterFixed<2, 4>(dst, src, units);
    case key(2, 8): return scatterFixed<2, 8>(dst, src, units);
    case key(4, 8): return scatterFixed<4, 8>(dst, src, units);
    default: break;
    }
    if (unit == dstStride) {
        std::memcpy(dst, src, unit * units);
        return;
    }
    for (uint64_t u = 0; u < units; ++u)
        std::memcpy(dst + u * dstStride, src + u * unit, unit);
}

void cLaneCopy::Gather(uint8_t *dst, const uint8_t *src, uint64_t srcStride, uint32_t unit, uint64_t units)
{
    switch (key(unit, srcStride)) {
    case key(1, 2): return gatherFixed<1, 2>(dst, src, units);
    case key(1, 4): return gatherFixed<1, 4>(dst, src, units);
    case key(1, 8): return gatherFixed<1, 8>(dst, src, units);
    case key(2, 4): return gatherFixed<2, 4>(dst, src, units);
    case key(2, 8): return gatherFixed<2, 8>(dst, src, units);
    case key(4, 8): return gatherFixed<4, 8>(dst, src, units);
    default: break;
    }
    for (uint64_t u = 0; u < units; ++u)
        std::memcpy(dst + u * unit, src + u * srcStride, unit);
}

void cLaneCopy::GatherLanes(uint8_t *const *dst, const uint8_t *src, uint32_t srcStride, uint32_t unit, uint64_t units)
{
    switch (key(unit, srcStride)) {
    case key(1, 2): return gatherLanesFixed<1, 2>(dst, src, bytesOf16(dst, src, units), units);
    case key(1, 4): return gatherLanesFixed<1, 4>(dst, src, bytesOf32(dst, src, units), units);
    case key(1, 8): return gatherLanesFixed<1, 8>(dst, src, 0, units);
    case key(2, 4): return gatherLanesFixed<2, 4>(dst, src, wordsOf32(dst, src, units), units);
    case key(2, 8): return gatherLanesFixed<2, 8>(dst, src, 0, units);
    case key(4, 8): return gatherLanesFixed<4, 8>(dst, src, halvesOf64(dst, src, units), units);
    default: break;
    }
    for (uint64_t u = 0; u < units; ++u)
        for (uint32_t l = 0; l < srcStride / unit; ++l)
            std::memcpy(dst[l] + u * unit, src + u * srcStride + l * unit, unit);
}
