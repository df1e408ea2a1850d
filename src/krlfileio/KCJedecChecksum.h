#pragma once

#include <cstddef>
#include <cstdint>

// The two sums of a JEDEC fuse map, and the fuse digits they are taken over.
class KCJedecChecksum
{
public:
    // Fuse checksum (C field) over one fuse per byte (non-zero = 1): fuses are packed eight
    // to a byte, fuse 8k in bit 0 of byte k, and the bytes are added modulo 2^16.
    static uint16_t fuses(const uint8_t *fuses, uint64_t count);

    // Transmission checksum: every byte added modulo 2^16, continuing from `sum`.
    static uint16_t transmission(const uint8_t *data, size_t size, uint16_t sum = 0);

    // The fuses as the digits of an L field: '0' for a zero byte, '1' for any other.
    static void fuseDigits(const uint8_t *fuses, size_t count, char *out);
};
