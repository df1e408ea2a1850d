#pragma once

#include "devopt/KCOptionBinding.h"

#include <cstdint>
#include <string>
#include <vector>

// One control of an option page: its id, kind, caption, what it binds to and, for a group
// box, the controls inside it.
struct cParamStcBase
{
    enum Kind { GroupBox, CheckBox, RadioButton, ComboBox, Edit, ListEdit, Static, Button };

    uint32_t id = 0;
    Kind kind = Static;
    std::string caption;
    KCOptionBinding binding;
    // Combo box: the item texts; with `values`, item i stands for values[i], otherwise for i.
    std::vector<std::string> items;
    std::vector<uint32_t> values;
    // Edit, list edit and bound statics: how the value shows ("%02X" when empty for edits).
    std::string format;
    // List edit: one edit per element; element i binds to the numeric key keyFormat % i.
    std::string keyFormat;
    uint32_t count = 0;
    std::vector<cParamStcBase> children;

    bool isGroup() const { return kind == GroupBox; }
    // The numeric key of a list edit's element.
    std::string elementKey(uint32_t element) const;
};
