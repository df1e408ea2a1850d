#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What a control shows after a refresh: check state, selected item, text, or the texts of
// a list edit's elements.
struct KCControlState
{
    bool checked = false;
    int index = -1;     // combo box: -1 when the value is none of its items
    uint32_t value = 0; // the bound value as the record holds it
    bool valid = true;  // false: the record holds a value the control cannot show
    bool differs = false; // the value is not the device's default
    std::string text;
    std::vector<std::string> elements;
};
