#pragma once

#include <cstdint>

// What of a data view may scroll: body lines and layout columns, and the screen lines
// between which the body is drawn.
struct TAG_SCROLLBORDER
{
    int64_t lineBegin = 0;
    int64_t lineEnd = -1;  // inclusive
    int columnBegin = 0;
    int columnEnd = -1;    // inclusive
    int top = 0;           // first screen line of the body
    int bottom = -1;       // last whole screen line of the body
};
