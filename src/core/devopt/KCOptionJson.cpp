#include "devopt/KCOptionJson.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

uint32_t KCOptionJson::number(const nlohmann::json &j)
{
    if (j.is_number_unsigned() || (j.is_number_integer() && j.get<int64_t>() >= 0)) {
        const uint64_t v = j.get<uint64_t>();
        if (v <= UINT32_MAX)
            return uint32_t(v);
    } else if (j.is_string()) {
        const std::string s = j.get<std::string>();
        char *end = nullptr;
        errno = 0;
        const unsigned long long v = std::strtoull(s.c_str(), &end, 0);
        if (!s.empty() && s[0] != '-' && *end == '\0' && errno == 0 && v <= UINT32_MAX)
            return uint32_t(v);
        throw std::runtime_error("not a number: \"" + s + "\"");
    }
    throw std::runtime_error("expected a number, got " + j.dump());
}
