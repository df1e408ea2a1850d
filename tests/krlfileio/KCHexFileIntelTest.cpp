#include "KCFormatTestTools.h"

using namespace KCFormatTest;

namespace {

const KCFileMessage::Severity Error = KCFileMessage::Error;
const KCFileMessage::Severity Warning = KCFileMessage::Warning;

KCLoadOptions rangeFrom(uint64_t start)
{
    KCLoadOptions o;
    o.rangeStart = start;
    return o;
}

} // namespace

TEST(KCHexFileIntel, GoldenFilesOfAllThreeVariants)
{
    struct Case
    {
        const char *file;
        uint64_t address;
        bool hasStart;
    };
    for (const Case &c : {Case{"intel/krldv-start.hex", 0x100, true}, Case{"intel/krldv-i32.hex", 0x12345678, false},
                          Case{"intel/krldv-i16.hex", 0x12345, false}}) {
        const uint64_t base = c.address & ~uint64_t(0xFFF);
        const Loaded l = load("intel", dataFile(c.file), rangeFrom(base));
        ASSERT_TRUE(l.result.ok) << c.file << l.sink.dump();
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
        EXPECT_EQ(slice(l.bytes, c.address - base, 9), kKrldv) << c.file;
        EXPECT_EQ(l.bytes.size(), c.address - base + 9);
        ASSERT_EQ(l.result.ranges.size(), 1u);
        EXPECT_EQ(l.result.ranges[0], std::make_pair(c.address, c.address + 8));
        EXPECT_EQ(l.result.hasStartAddress, c.hasStart);
        if (c.hasStart) {
            EXPECT_EQ(l.result.startAddress, 0x100u);
        }
    }
}

TEST(KCHexFileIntel, ChecksumCaseAndLineHandling)
{
    const std::string good = ":10010000000102030405060708090a0b0c0d0e0f77\r\n\r\n:00000001ff\r\n";
    Loaded l = load("intel", good);
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(l.bytes[0x100 + i], i);

    std::string bad = good;
    bad[42] = '6';
    l = load("intel", bad);
    EXPECT_FALSE(l.result.ok);
    ASSERT_NE(l.sink.first(Error), nullptr);
    EXPECT_EQ(l.sink.first(Error)->line, 1u);
    EXPECT_EQ(l.sink.first(Error)->file, kFileName);

    KCLoadOptions anyway;
    anyway.ignoreChecksums = true;
    l = load("intel", bad + bad, anyway);
    EXPECT_TRUE(l.result.ok);
    EXPECT_EQ(l.sink.count(Warning), 1u) << l.sink.dump();

    // BOM, CR alone, LF alone, trailing blanks and tabs, an indented record, 0x1A at the end:
    // the error on the last record must still name line 6.
    const std::string mixed = "\xEF\xBB\xBF:0100000011EE \t\r:0100010022DC\n\n  :0100020033CA\r\n\r"
                              ":0100030044B8\n:0100040055A6\x1A";
    l = load("intel", mixed);
    EXPECT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(slice(l.bytes, 0, 4), (std::vector<uint8_t>{0x11, 0x22, 0x33, 0x44}));
    EXPECT_TRUE(l.sink.contains(Warning, "indented"));
    EXPECT_TRUE(l.sink.contains(Warning, "no end-of-file"));
    l = load("intel", mixed.substr(0, mixed.size() - 1) + "1\n");
    EXPECT_FALSE(l.result.ok);
    EXPECT_EQ(l.sink.first(Error)->line, 7u) << l.sink.dump();
}

TEST(KCHexFileIntel, BoundaryCrossingFollowsTheAddressMode)
{
    const std::string data = ":10FFF800000102030405060708090A0B0C0D0E0F81\n:00000001FF\n";
    Loaded l = load("intel", ":020000040001F9\n" + data, rangeFrom(0x10000));
    ASSERT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes[0xFFF8], 0x00);
    EXPECT_EQ(l.bytes[0x10007], 0x0F);
    EXPECT_EQ(l.sink.count(Warning), 0u) << l.sink.dump();

    l = load("intel", ":020000021000EC\n" + data, rangeFrom(0x10000));
    ASSERT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes.size(), 0x10000u);
    EXPECT_EQ(l.bytes[0xFFF8], 0x00);
    EXPECT_EQ(slice(l.bytes, 0, 8), (std::vector<uint8_t>{8, 9, 10, 11, 12, 13, 14, 15}));

    l = load("intel", data);
    ASSERT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes.size(), 0x10008u);
    EXPECT_EQ(l.bytes[0x10007], 0x0F);
    EXPECT_TRUE(l.sink.contains(Warning, "64 KiB")) << l.sink.dump();
}

TEST(KCHexFileIntel, StructureRules)
{
    struct Case
    {
        const char *text;
        bool ok;
        uint64_t errorLine;
    };
    for (const Case &c : {
             Case{":0400000400000000F8\n:00000001FF\n", false, 1},         // 04 with LL = 4
             Case{":0100000100FE\n", false, 1},                            // EOF with data
             Case{":0100000011EE\n:00000001FF\ngarbage after the end\n", true, 0},
             Case{":0000000000\n:00010001FE\n", true, 0},                  // zero-length data, EOF offset
         }) {
        const Loaded l = load("intel", c.text);
        EXPECT_EQ(l.result.ok, c.ok) << c.text << l.sink.dump();
        if (!c.ok) {
            EXPECT_EQ(l.sink.first(Error)->line, c.errorLine) << c.text << l.sink.dump();
        }
    }
    // What was loaded before the error stays in the target.
    const Loaded l = load("intel", ":0100000011EE\n:0100010022DC\n:01000200\n");
    EXPECT_FALSE(l.result.ok);
    EXPECT_EQ(slice(l.bytes, 0, 2), (std::vector<uint8_t>{0x11, 0x22}));

    const Loaded starts = load("intel", ":0400000312340100B2\n:0400000500000100F6\n:00000001FF\n");
    EXPECT_TRUE(starts.result.ok);
    EXPECT_EQ(starts.result.startAddress, 0x100u);
    EXPECT_TRUE(starts.sink.contains(Warning, "several start"));
}

TEST(KCHexFileIntel, WriterOutputIsExact)
{
    KCSaveOptions o;
    o.startAddress = 0x100;
    o.hasEntryPoint = true;
    o.entryPoint = 0x100;
    EXPECT_EQ(save("intel", kKrldv, o), ":090100004B524C4456000102FF71\r\n:0400000500000100F6\r\n:00000001FF\r\n");

    o = {};
    o.startAddress = 0x1FFF8;
    o.crlf = false;
    o.bytesPerRecord = 32;
    std::vector<uint8_t> sixteen(16);
    for (int i = 0; i < 16; ++i)
        sixteen[i] = uint8_t(i);
    EXPECT_EQ(save("intel", sixteen, o), ":020000040001F9\n:08FFF8000001020304050607E5\n:020000040002F8\n"
                                         ":0800000008090A0B0C0D0E0F9C\n:00000001FF\n");
}

TEST(KCHexFileIntel, RoundTripsAt16And32BytesPerRecord)
{
    Random rnd(7);
    for (unsigned perRecord : {16u, 32u, 255u}) {
        const std::vector<uint8_t> image = rnd.bytes(200000 + perRecord);
        KCSaveOptions o;
        o.startAddress = 0x7FFF0;
        o.bytesPerRecord = perRecord;
        const std::string text = save("intel", image, o);
        const Loaded l = load("intel", text, rangeFrom(o.startAddress));
        ASSERT_TRUE(l.result.ok) << l.sink.dump();
        EXPECT_EQ(l.bytes, image);
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
    }
}
