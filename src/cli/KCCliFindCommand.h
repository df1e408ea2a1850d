#pragma once

#include "KCCliCommand.h"

#include <cstdint>
#include <vector>

// "krldv find IMAGE PATTERN": the addresses of a byte pattern in an image, found as the
// search dialog finds them. Like grep, the exit status says whether anything was found.
class KCCliFindCommand : public KCCliCommand
{
public:
    // Exit statuses: found, nothing found, a usage error or an unreadable input.
    enum : int { FindFound = 0, FindNothing = 1, FindTrouble = 2 };

    const char *name() const override { return "find"; }
    const char *summary() const override { return "find a byte pattern in an image"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;

    // "AA BB", "AABB" or "0xAA,0xBB": hexadecimal bytes; false when anything else is there.
    static bool parseHexBytes(const std::string &text, std::vector<uint8_t> &bytes);
};
