#pragma once

#include <cstddef>
#include <cstdint>

// CRC-16 of STAPL text files: polynomial 0x1021 processed least significant bit first
// (reflected 0x8408), register preset to 0xFFFF, result complemented. The STAPL reader
// decides which bytes are fed.
class KCStaplCrc
{
public:
    static constexpr uint16_t kInitial = 0xFFFF;

    // The lookup table; fetch it once and pass it to update() in loops.
    static const uint16_t *table();
    static uint16_t update(const uint16_t *table, uint16_t reg, uint8_t byte)
    {
        return uint16_t((reg >> 8) ^ table[(reg ^ byte) & 0xFF]);
    }
    static uint16_t result(uint16_t reg) { return uint16_t(~reg); }
    // CRC of a byte block, every byte fed.
    static uint16_t compute(const uint8_t *data, size_t size);
};
