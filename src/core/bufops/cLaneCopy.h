#pragma once

#include <cstdint>

// The strided copies behind the lane engines' fast path: whole units between contiguous
// memory, with the unit sizes fixed at compile time for the usual widths.
class cLaneCopy
{
public:
    // dst[u*dstStride .. +unit-1] = src[u*unit .. +unit-1] for u < units.
    static void Scatter(uint8_t *dst, uint64_t dstStride, const uint8_t *src, uint32_t unit, uint64_t units);
    // dst[u*unit .. +unit-1] = src[u*srcStride .. +unit-1] for u < units.
    static void Gather(uint8_t *dst, const uint8_t *src, uint64_t srcStride, uint32_t unit, uint64_t units);
    // Every lane at once: dst[l][u*unit .. +unit-1] = src[u*srcStride + l*unit .. +unit-1] for
    // l < srcStride / unit and u < units, reading the source once.
    static void GatherLanes(uint8_t *const *dst, const uint8_t *src, uint32_t srcStride, uint32_t unit, uint64_t units);
};
