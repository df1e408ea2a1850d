#include "KCStaplCrc.h"

#include <array>

namespace {

constexpr uint16_t kReflectedPolynomial = 0x8408;

constexpr std::array<uint16_t, 256> makeTable()
{
    std::array<uint16_t, 256> t{};
    for (unsigned i = 0; i < 256; ++i) {
        uint16_t reg = uint16_t(i);
        for (int bit = 0; bit < 8; ++bit)
            reg = (reg & 1) ? uint16_t((reg >> 1) ^ kReflectedPolynomial) : uint16_t(reg >> 1);
        t[i] = reg;
    }
    return t;
}

constexpr std::array<uint16_t, 256> kTable = makeTable();

} // namespace

const uint16_t *KCStaplCrc::table()
{
    return kTable.data();
}

uint16_t KCStaplCrc::compute(const uint8_t *data, size_t size)
{
    uint16_t reg = kInitial;
    for (size_t i = 0; i < size; ++i)
        reg = update(kTable.data(), reg, data[i]);
    return result(reg);
}
