#pragma once

#include <cstdint>
#include <string>

// One text element of a panel: where it stands, what it says and in which colour.
struct KCDrawText
{
    int x = 0;
    int y = 0;
    std::string text;
    uint32_t color = 0xFF000000; // 0xFF000000: the palette's text colour; else 0x00RRGGBB
    bool placed = false;         // elements not placed are not drawn
};
