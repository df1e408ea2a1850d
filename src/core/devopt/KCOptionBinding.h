#pragma once

#include <cstdint>
#include <string>

// What one option control edits in the device parameter record: a field of a fixed flag
// byte or word (by record offset, mask and shift), a numeric key or a text key.
struct KCOptionBinding
{
    enum Kind { None, Field, NumericKey, TextKey };

    Kind kind = None;
    uint32_t offset = 0; // Field: record offset of the flag byte or word
    uint32_t width = 1;  // Field: bytes of the flag, little endian (1, 2 or 4)
    uint32_t mask = 0;   // Field: the bits the control owns
    uint32_t shift = 0;  // Field: where the value starts within the mask
    std::string key;     // NumericKey, TextKey: the key's exact name
    // Radio buttons: the value their field or key takes when they are checked.
    uint32_t value = 1;
};
