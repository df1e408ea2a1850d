#pragma once

#include <cstdint>

// The buffer addresses a search covers, both inclusive; last < first is an empty range.
struct TAG_SEARCH_RANGE
{
    int64_t first = 0;
    int64_t last = -1;
};
