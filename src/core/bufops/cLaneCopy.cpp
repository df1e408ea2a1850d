#include "bufops/cLaneCopy.h"

#include <cstring>

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
