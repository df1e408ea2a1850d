#pragma once

#include <cstdint>

// Column arithmetic of the pattern fields, rounding towards minus infinity so negative
// columns (before the base offset) map like the others.
class KCEditColumns
{
public:
    static int64_t floorDiv(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }
    static int floorMod(int64_t a, int64_t b) { return static_cast<int>(a - floorDiv(a, b) * b); }
};
