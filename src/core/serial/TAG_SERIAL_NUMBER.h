#pragma once

#include "serial/TAG_ELEMENT_OF_LIST.h"

#include <cstdint>
#include <string>
#include <vector>

// One block of a serial definition file, as read from the file.
struct TAG_SERIAL_NUMBER
{
    static constexpr uint16_t TypeNone = 0;
    static constexpr uint16_t TypeCalc = 1;
    static constexpr uint16_t TypeList = 2;
    // Line number of a parameter line the block does not have.
    static constexpr int NoLine = -1;

    // Parse cursor: indices into the file text.
    uint32_t blockStart = 0; // where the block's text (its name) begins
    uint32_t braceOpen = 0;  // the opening "{"
    uint32_t textEnd = 0;    // end of the file text
    uint32_t readPos = 0;    // current read position; once parsed, just past the closing "}"

    uint16_t type = TypeNone;
    uint16_t length = 0; // bytes of a CALC number, valid 1..4
    std::string lengthText; // value text of the LENGTH line as read
    uint32_t next = 0;
    uint32_t step = 0;
    uint32_t last = 0;      // LAST: the series' last number, when it has one
    bool hasLast = false;
    std::string name;
    std::string nextText;    // value text of the NEXT line as read
    int nextLine = NoLine;   // 0-based line of the NEXT line
    uint32_t nextIndex = 0;  // LIST element handed out next
    int nextIndexLine = NoLine;
    std::vector<TAG_ELEMENT_OF_LIST> elements;
    uint32_t elementCount = 0;
};
