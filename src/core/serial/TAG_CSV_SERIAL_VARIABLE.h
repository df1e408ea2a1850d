#pragma once

#include <cstdint>
#include <string>

// One variable of a CSV serial variables file: a column and where its value goes.
struct TAG_CSV_SERIAL_VARIABLE
{
    enum Representation { Ascii, Hex };

    std::string name;
    uint32_t address = 0;
    uint32_t byteCount = 0;
    Representation representation = Ascii;
    int column = -1; // in the header row
    int line = 0;    // of its #var line
};
