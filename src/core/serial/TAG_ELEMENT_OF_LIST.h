#pragma once

#include <string>

// One entry of a LIST block: the value text as written in the file, a quoted text or
// "0x" hexadecimal bytes.
struct TAG_ELEMENT_OF_LIST
{
    std::string value;
};
