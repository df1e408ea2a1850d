#pragma once

#include <cstdint>

// A place of the caret or of a mark end in a layout's body: one character of one cell.
struct TAG_VIEW_POSITION
{
    int block = -1;
    int64_t line = -1;        // in the body's line numbering
    int64_t lineInBlock = -1;
    int cell = -1;            // index into the block's row template
    int column = -1;          // character column, from the layout's left edge
    int64_t address = -1;     // buffer address under the cell

    bool isValid() const { return cell >= 0; }
    bool operator==(const TAG_VIEW_POSITION &o) const
    {
        return block == o.block && line == o.line && cell == o.cell && column == o.column;
    }
    bool operator!=(const TAG_VIEW_POSITION &o) const { return !(*this == o); }
};
