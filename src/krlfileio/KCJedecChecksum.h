#pragma once

#include <cstddef>
#include <cstdint>

// The two sums of a JEDEC fuse map.
class KCJedecChecksum
{
public:
    // Fuse checksum (C field) over one fuse per byte (non-zero = 1): fuses are packed eight
    // to a byte, fuse 8k in bit 0 of byte k, and the bytes are added modulo 2^16.
    static uint16_t fuses(const uint8_t *fuses, uint64_t count);

    // Transmission checksum: every byte added modulo 2^16, continuing from `sum`.
    static uint16_t transmission(const uint8_t *data, size_t size, uint16_t sum = 0);
};
