#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>

// Reading the option tables' JSON: numbers may be written in hex as strings ("0x49E"),
// since JSON has none.
class KCOptionJson
{
public:
    // Throws std::runtime_error naming the value when it is no number.
    static uint32_t number(const nlohmann::json &j);
};
