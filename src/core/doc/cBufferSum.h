#pragma once

#include <cstddef>
#include <cstdint>

// The two buffer checksums over raw memory, at memory speed (SIMD, chosen at run time).
class cBufferSum
{
public:
    // Sum of all byte values, modulo 2^32.
    static uint32_t byteSum(const uint8_t *data, size_t size);

    // Fuse-map bit sum: for each nonzero byte at buffer address a, 1 << (a & 7).
    // `firstAddress` is the buffer address of data[0].
    static uint32_t fuseSum(const uint8_t *data, size_t size, uint64_t firstAddress);

    // Plain loops, the reference the fast paths are tested against.
    static uint32_t byteSumReference(const uint8_t *data, size_t size);
    static uint32_t fuseSumReference(const uint8_t *data, size_t size, uint64_t firstAddress);
};
