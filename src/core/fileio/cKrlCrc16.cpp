#include "fileio/cKrlCrc16.h"

#include <cstdio>
#include <memory>

namespace {

// Large enough that a job file of several megabytes takes a handful of reads.
constexpr size_t ReadBlockBytes = 64 * 1024;

} // namespace

const char *cKrlCrc16::algorithmName()
{
    return "CRC-16/0x1021 MSB-first, init 0xFFFF, data shifted in, no final XOR";
}

cKrlCrc16::cKrlCrc16()
{
    for (unsigned i = 0; i < 256; ++i) {
        uint16_t value = static_cast<uint16_t>(i << 8);
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x8000) ? static_cast<uint16_t>((value << 1) ^ Polynomial) : static_cast<uint16_t>(value << 1);
        m_table[i] = value;
    }
}

uint16_t cKrlCrc16::update(uint16_t crc, const uint8_t *data, size_t count) const
{
    for (size_t k = 0; k < count; ++k) {
        const unsigned index = crc >> 8;
        crc = static_cast<uint16_t>(((crc << 8) | data[k]) ^ m_table[index]);
    }
    return crc;
}

uint16_t cKrlCrc16::compute(const uint8_t *data, size_t count) const
{
    return count ? update(InitialValue, data, count) : 0;
}

uint16_t cKrlCrc16::computeFile(const std::string &path) const
{
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (!file)
        return 0;
    std::unique_ptr<uint8_t[]> block(new uint8_t[ReadBlockBytes]);
    uint16_t crc = InitialValue;
    bool any = false;
    size_t got;
    while ((got = std::fread(block.get(), 1, ReadBlockBytes, file)) > 0) {
        crc = update(crc, block.get(), got);
        any = true;
    }
    // Like a byte-by-byte read, whatever could be read counts; nothing read gives 0.
    std::fclose(file);
    return any ? crc : 0;
}

std::string cKrlCrc16::toText(uint16_t crc)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%04X", crc);
    return text;
}

uint64_t cKrlCrc16::parseEntry(const std::string &text)
{
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    // The "0x" the checksum is shown with may be typed along.
    if (text.compare(i, 2, "0x") == 0 || text.compare(i, 2, "0X") == 0)
        i += 2;
    uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            break;
        value = (value << 4) | static_cast<uint64_t>(digit);
    }
    return value;
}

bool cKrlCrc16::entryMatches(const std::string &entry, uint16_t crc)
{
    return static_cast<uint16_t>(parseEntry(entry) & 0xFFFF) == crc;
}
