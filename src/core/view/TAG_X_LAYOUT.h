#pragma once

#include <cstdint>
#include <string>

// What a cell of a row template shows.
enum XLAYOUT_KIND : int {
    XL_HEXBYTE = 0,    // "%02X" of the byte
    XL_CHAR = 1,       // the byte as a character, unfiltered
    XL_BIT = 2,        // bit 0 of the byte (one fuse per byte)
    XL_ADDRESS_HEX = 3,
    XL_ADDRESS_DEC = 4,
    XL_COLUMN_NUMBER = 5, // header cell: a column's number, hexadecimal, zero-padded to the width
    XL_TEXT = 6,
    XL_CURSOR_ADJUST = 7, // shows nothing, moves the row's byte cursor
};

// Cell flags.
enum XLAYOUT_FLAGS : int {
    XLF_CARET_STOP = 1,  // the caret may stand here
    XLF_EDITABLE = 2,    // editable and selectable
    XLF_GROUP_FIRST = 4,
    XLF_GROUP_LAST = 8,
};
constexpr int XLF_GROUP_START = XLF_EDITABLE | XLF_GROUP_FIRST;  // 6
constexpr int XLF_GROUP_END = XLF_EDITABLE | XLF_GROUP_LAST;     // 10
constexpr int XLF_CARET_MASK = XLF_CARET_STOP | XLF_EDITABLE;

// One cell of a row template.
struct TAG_X_LAYOUT
{
    int kind = XL_TEXT;
    int x = 0;         // character column from the layout's left edge
    int width = 0;     // in characters
    int step = 0;      // how far the row's byte cursor moves after this cell
    int flags = 0;
    float scale = 1.0f;          // address cells: multiplies the row's first address
    int32_t displayOffset = 0;   // address cells: added after scaling; column cells: the number
    int digits = 0;              // address cells
    std::string text;            // text cells
    // Where the row's byte cursor stands at this cell, relative to the row's first address;
    // filled in when the cell is added to a block.
    int byteOffset = 0;

    bool isData() const { return kind == XL_HEXBYTE || kind == XL_CHAR || kind == XL_BIT; }
    bool isCaretStop() const { return isData() && (flags & XLF_CARET_MASK) != 0; }
};
