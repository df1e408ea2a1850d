#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The program's own clipboard format "KrlBinary": a 32-bit little-endian byte count and the
// bytes, in a zero-filled block 4 bytes longer than the data; and the text format, which
// carries the bytes up to their first zero.
class KCKrlBinary
{
public:
    static constexpr const char *FormatName = "KrlBinary";
    static constexpr size_t CountBytes = 4;

    static std::string encode(const uint8_t *bytes, uint64_t count);
    // The text block: the bytes, then the four zero bytes the block is longer by.
    static std::string encodeText(const uint8_t *bytes, uint64_t count);
    // The bytes of a block; a count larger than the block holds is cut to what it holds.
    static std::vector<uint8_t> decode(const std::string &block);
    static std::vector<uint8_t> decodeText(const std::string &block);
};
