#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The 16-bit checksum of project and handler-job files that operators compare before a run:
// CRC-16 polynomial 0x1021, most significant bit first, register starting at 0xFFFF. The
// data byte is shifted into the register's low byte and the byte shifted out indexes the
// table (the "augmented" form), with no final XOR and no appended zero bytes. For the nine
// bytes "123456789" it is 0xA69D.
class cKrlCrc16
{
public:
    static constexpr uint16_t Polynomial = 0x1021;
    static constexpr uint16_t InitialValue = 0xFFFF;
    static constexpr uint16_t CheckValue = 0xA69D; // of "123456789"
    // How the CRC is named wherever it is shown, so anyone can reproduce it elsewhere.
    static const char *algorithmName();

    cKrlCrc16();

    const uint16_t *table() const { return m_table; }

    // Checksum of a whole byte sequence; 0 for an empty one.
    uint16_t compute(const uint8_t *data, size_t count) const;
    // Checksum of a file read in large blocks; 0 when it is empty or cannot be read.
    uint16_t computeFile(const std::string &path) const;

    // Incremental use: start from InitialValue and feed blocks in order.
    uint16_t update(uint16_t crc, const uint8_t *data, size_t count) const;

    // "0xA69D": how the checksum is written for people and read back by the checksum dialog.
    static std::string toText(uint16_t crc);
    // What an operator typed, read as hexadecimal: leading blanks skipped, an optional "0x",
    // then digits up to the first other character ("1A2Bxyz" is 0x1A2B, "xyz" is 0).
    static uint64_t parseEntry(const std::string &text);
    // True when the entry's low 16 bits are the checksum ("11A69D" matches 0xA69D).
    static bool entryMatches(const std::string &entry, uint16_t crc);

private:
    uint16_t m_table[256];
};
