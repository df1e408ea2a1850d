#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The names the dialogs give the lanes of a (narrow, wide) width pair, lane 0 first.
class cLaneNames
{
public:
    // Empty for a pair without names.
    static std::vector<std::string> Get(uint32_t narrowBits, uint32_t wideBits);
    // The lane's name, or "Lane N" for a lane without one.
    static std::string NameOf(uint32_t narrowBits, uint32_t wideBits, uint32_t lane);
};
