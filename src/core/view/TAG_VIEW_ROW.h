#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What one cell column of a painted row shows; the widget maps these to colour pairs.
enum VIEW_CELL_STATE : uint8_t {
    VCS_EMPTY = 0,  // nothing drawn
    VCS_TEXT = 1,   // address, header or text
    VCS_DATA = 2,   // a buffer byte
    VCS_MARKED = 3, // a buffer byte inside the mark
    VCS_MODIFIED = 4, // a buffer byte typed since the buffer last matched its file
    VCS_GAP = 5,    // a byte of fill between the image's data
    VCS_HIT = 6,    // a buffer byte of a hit of the last find-all
};

// One row as the view paints it: a character and a state per layout column. Character cells
// hold the raw byte; the widget decides how to draw control characters.
struct TAG_VIEW_ROW
{
    std::string text;
    std::vector<uint8_t> state;
    bool present = false; // false when the line maps to no block
};
