#include "bufops/cLaneNames.h"

std::vector<std::string> cLaneNames::Get(uint32_t narrowBits, uint32_t wideBits)
{
    if (narrowBits == 8 && wideBits == 16)
        return {"Even Byte", "Odd  Byte"};
    if (narrowBits == 8 && wideBits == 32)
        return {"Low  Word - Even Byte", "Low  Word - Odd  Byte", "High Word - Even Byte", "High Word - Odd  Byte"};
    if (narrowBits == 8 && wideBits == 64)
        return {"Low  Word1 - Even Byte", "Low  Word1 - Odd  Byte", "High Word1 - Even Byte", "High Word1 - Odd  Byte",
                "Low  Word2 - Even Byte", "Low  Word2 - Odd  Byte", "High Word2 - Even Byte", "High Word2 - Odd  Byte"};
    if (narrowBits == 16 && wideBits == 32)
        return {"Low  Word", "High Word"};
    if (narrowBits == 16 && wideBits == 64)
        return {"Low  Word1", "High Word1", "Low  Word2", "High Word2"};
    if (narrowBits == 32 && wideBits == 64)
        return {"Low  32Bit", "High 32Bit"};
    return {};
}

std::string cLaneNames::NameOf(uint32_t narrowBits, uint32_t wideBits, uint32_t lane)
{
    const std::vector<std::string> names = Get(narrowBits, wideBits);
    return lane < names.size() ? names[lane] : "Lane " + std::to_string(lane);
}
