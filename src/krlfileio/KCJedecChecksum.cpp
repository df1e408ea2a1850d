#include "KCJedecChecksum.h"

uint16_t KCJedecChecksum::fuses(const uint8_t *fuses, uint64_t count)
{
    uint32_t sum = 0;
    uint64_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const uint8_t *f = fuses + i;
        sum += unsigned(f[0] != 0) | unsigned(f[1] != 0) << 1 | unsigned(f[2] != 0) << 2 |
               unsigned(f[3] != 0) << 3 | unsigned(f[4] != 0) << 4 | unsigned(f[5] != 0) << 5 |
               unsigned(f[6] != 0) << 6 | unsigned(f[7] != 0) << 7;
        sum &= 0xFFFF;
    }
    for (unsigned bit = 0; i < count; ++i, ++bit)
        sum += unsigned(fuses[i] != 0) << bit;
    return uint16_t(sum);
}

uint16_t KCJedecChecksum::transmission(const uint8_t *data, size_t size, uint16_t sum)
{
    uint64_t total = sum;
    for (size_t i = 0; i < size; ++i)
        total += data[i];
    return uint16_t(total);
}
