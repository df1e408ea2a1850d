#include "view/KCKrlBinary.h"

#include <algorithm>
#include <cstring>

std::string KCKrlBinary::encode(const uint8_t *bytes, uint64_t count)
{
    // The count field is 32 bits: the clipboard takes at most 4 GiB - 1 bytes.
    count = std::min<uint64_t>(count, UINT32_MAX);
    std::string block(count + CountBytes, '\0');
    for (size_t i = 0; i < CountBytes; ++i)
        block[i] = static_cast<char>((count >> (8 * i)) & 0xFF);
    if (count)
        std::memcpy(&block[CountBytes], bytes, count);
    return block;
}

std::string KCKrlBinary::encodeText(const uint8_t *bytes, uint64_t count)
{
    std::string block(count + CountBytes, '\0');
    if (count)
        std::memcpy(&block[0], bytes, count);
    return block;
}

std::vector<uint8_t> KCKrlBinary::decode(const std::string &block)
{
    if (block.size() < CountBytes)
        return {};
    uint64_t count = 0;
    for (size_t i = 0; i < CountBytes; ++i)
        count |= uint64_t(static_cast<uint8_t>(block[i])) << (8 * i);
    count = std::min<uint64_t>(count, block.size() - CountBytes);
    const auto *p = reinterpret_cast<const uint8_t *>(block.data()) + CountBytes;
    return std::vector<uint8_t>(p, p + count);
}

std::vector<uint8_t> KCKrlBinary::decodeText(const std::string &block)
{
    const size_t end = block.find('\0');
    const auto *p = reinterpret_cast<const uint8_t *>(block.data());
    return std::vector<uint8_t>(p, p + (end == std::string::npos ? block.size() : end));
}
