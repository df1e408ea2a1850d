#pragma once

#include "view/TAG_X_LAYOUT.h"

#include <cstdint>
#include <vector>

// One block of a layout: a row template repeated over a buffer range (a data block), or a
// single row of text (a text block). Addresses and lines are 64-bit so a 4 GiB buffer fits.
struct TAG_VIEW_BUFFER_LAYOUT_ITEM
{
    std::vector<TAG_X_LAYOUT> cells;
    int64_t firstAddress = 0;
    int64_t lastAddress = -1; // inclusive
    int64_t firstLine = 0;    // in the numbering of the block's list
    int64_t lastLine = -1;    // inclusive
    int32_t state[2] = {0, 0};
    int bytesPerRow = 0;      // 0 for a text block
    // Smallest byte offset of a caret-stop cell; rows whose address plus this lies past the
    // block hold no caret stop. Filled in when the block is finished.
    int firstStopOffset = 0;
    bool hasCaretStops = false;

    bool isText() const { return bytesPerRow == 0; }
    int64_t lineCount() const { return lastLine - firstLine + 1; }
    int64_t rowAddress(int64_t lineInBlock) const { return firstAddress + lineInBlock * bytesPerRow; }
};
