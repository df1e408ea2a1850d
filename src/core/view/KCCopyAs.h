#pragma once

#include <cstdint>
#include <string>

// Marked bytes as text for other programs: "Copy As" of the data view.
class KCCopyAs
{
public:
    // "A5 5A 00", sixteen bytes to a line.
    static std::string hexText(const uint8_t *bytes, uint64_t count);
    // A C array definition, sixteen bytes to a line, its address in a comment.
    static std::string cArray(const uint8_t *bytes, uint64_t count, uint64_t address);
    // Intel HEX records of the bytes at their address, with the end record.
    static std::string intelHex(const uint8_t *bytes, uint64_t count, uint64_t address);
};
