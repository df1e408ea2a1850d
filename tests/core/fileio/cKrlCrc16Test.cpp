#include "fileio/cKrlCrc16.h"
#include "KCTempDir.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

// Bit by bit, straight from the definition: each data bit is shifted into the register from
// the right, and the polynomial is applied whenever a one drops out at the top.
uint16_t bitwiseCrc(const std::vector<uint8_t> &bytes)
{
    if (bytes.empty())
        return 0;
    uint16_t reg = 0xFFFF;
    for (uint8_t b : bytes)
        for (int bit = 7; bit >= 0; --bit) {
            const bool top = reg & 0x8000;
            reg = static_cast<uint16_t>((reg << 1) | ((b >> bit) & 1));
            if (top)
                reg ^= 0x1021;
        }
    return reg;
}

std::vector<uint8_t> bytesOf(const std::string &s)
{
    return std::vector<uint8_t>(s.begin(), s.end());
}

} // namespace

TEST(cKrlCrc16, TableAndCheckValue)
{
    const cKrlCrc16 crc;
    EXPECT_EQ(crc.table()[1], 0x1021);
    EXPECT_EQ(crc.table()[2], 0x2042);
    EXPECT_EQ(crc.table()[3], 0x3063);
    const auto check = bytesOf("123456789");
    EXPECT_EQ(crc.compute(check.data(), check.size()), 0xA69D);
    EXPECT_EQ(bitwiseCrc(check), 0xA69D);
    EXPECT_EQ(crc.compute(nullptr, 0), 0);
}

TEST(cKrlCrc16, AgreesWithTheBitwiseFormOnRandomDataAndAcrossBlocks)
{
    const cKrlCrc16 crc;
    std::mt19937 rng(14);
    TempDir dir;
    // Sizes around the read block, so a file is read in more than one block.
    for (size_t size : {1u, 2u, 255u, 65535u, 65536u, 65537u, 200000u}) {
        std::vector<uint8_t> data(size);
        for (auto &b : data)
            b = static_cast<uint8_t>(rng());
        const uint16_t expected = bitwiseCrc(data);
        EXPECT_EQ(crc.compute(data.data(), data.size()), expected) << size;
        writeFile(dir.file("f.bin"), std::string(data.begin(), data.end()));
        EXPECT_EQ(crc.computeFile(dir.file("f.bin")), expected) << size;
    }
}

TEST(cKrlCrc16, EmptyOrUnreadableFilesGiveZero)
{
    const cKrlCrc16 crc;
    TempDir dir;
    writeFile(dir.file("empty"), "");
    EXPECT_EQ(crc.computeFile(dir.file("empty")), 0);
    EXPECT_EQ(crc.computeFile(dir.file("missing")), 0);
    EXPECT_EQ(crc.computeFile(dir.path), 0); // a directory opens but cannot be read
}

TEST(cKrlCrc16, EntriesAreReadAsHexUpToTheFirstOtherCharacter)
{
    EXPECT_EQ(cKrlCrc16::parseEntry("1a2b"), 0x1A2Bu);
    EXPECT_EQ(cKrlCrc16::parseEntry("1A2Bxyz"), 0x1A2Bu);
    EXPECT_EQ(cKrlCrc16::parseEntry("   0xA69D"), 0xA69Du);
    EXPECT_EQ(cKrlCrc16::parseEntry("xyz"), 0u);
    EXPECT_EQ(cKrlCrc16::parseEntry(""), 0u);
    // Only the low 16 bits are compared.
    EXPECT_TRUE(cKrlCrc16::entryMatches("11A69D", 0xA69D));
    EXPECT_FALSE(cKrlCrc16::entryMatches("A69C", 0xA69D));
    // A non-hex entry is 0: it passes only for an empty or unreadable file.
    EXPECT_TRUE(cKrlCrc16::entryMatches("zz", 0));
    // The mismatch text left in the entry starts with a hex digit: it reads as 0xC.
    EXPECT_EQ(cKrlCrc16::parseEntry("Checksum Wrong."), 0xCu);
    EXPECT_EQ(cKrlCrc16::toText(0xA69D), "0xA69D");
    EXPECT_TRUE(cKrlCrc16::entryMatches(cKrlCrc16::toText(0x00AB), 0x00AB));
}
