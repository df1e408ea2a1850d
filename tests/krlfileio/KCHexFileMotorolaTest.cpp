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

const char *kS1 = "S00600004844521B\nS10C01004B524C4456000102FF6D\nS5030001FB\nS9030100FB\n";

} // namespace

// The writer reproduces the reference files exactly, and the reader loads them back.
TEST(KCHexFileMotorola, GoldenFilesForS1S2S3)
{
    for (uint64_t address : {0x100ull, 0x123456ull, 0x12345678ull}) {
        const std::string file = address == 0x100 ? "motorola/krldv-s1.srec"
                                 : address == 0x123456 ? "motorola/krldv-s2.srec"
                                                       : "motorola/krldv-s3.srec";
        const std::string golden = dataFile(file);
        KCSaveOptions o;
        o.startAddress = address;
        o.hasEntryPoint = true;
        o.entryPoint = uint32_t(address);
        EXPECT_EQ(save("motorola", kKrldv, o), golden) << file;

        const Loaded l = load("motorola", golden, rangeFrom(address));
        ASSERT_TRUE(l.result.ok) << l.sink.dump();
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
        EXPECT_EQ(l.bytes, kKrldv);
        EXPECT_EQ(l.result.startAddress, address);
    }
}

TEST(KCHexFileMotorola, TerminationChecksumAndCount)
{
    const std::string s1 = kS1;
    Loaded l = load("motorola", s1.substr(0, s1.rfind("S9")));
    EXPECT_TRUE(l.result.ok);
    EXPECT_TRUE(l.sink.contains(Warning, "termination")) << l.sink.dump();

    l = load("motorola", s1.substr(0, s1.rfind("S9")) + "S804000000FB\n");
    EXPECT_TRUE(l.result.ok);
    EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();

    struct Bad
    {
        std::string from, to;
        uint64_t line;
    };
    for (const Bad &b : {Bad{"FF6D", "FF6C", 2}, Bad{"0001FB", "0001FA", 3}, Bad{"S9030100FB", "S4030100FB", 4},
                         Bad{"S5030001FB", "S50200FD", 3}}) {
        std::string text = s1;
        text.replace(text.find(b.from), b.from.size(), b.to);
        l = load("motorola", text);
        EXPECT_FALSE(l.result.ok) << b.to;
        ASSERT_NE(l.sink.first(Error), nullptr);
        EXPECT_EQ(l.sink.first(Error)->line, b.line) << b.to << l.sink.dump();
    }

    std::string text = s1;
    text.replace(text.find("S5030001FB"), 10, "S5030002FA");
    text.replace(text.find("4B524C4456000102FF6D"), 20, "4b524c4456000102ff6d");
    l = load("motorola", text);
    EXPECT_TRUE(l.result.ok);
    EXPECT_EQ(slice(l.bytes, 0x100, 9), kKrldv);
    EXPECT_EQ(l.sink.count(Warning), 1u) << l.sink.dump();
}

TEST(KCHexFileMotorola, ToleratedOddities)
{
    // Lowercase mark, an S1 record running past 0xFFFF, data after the terminator.
    const Loaded l = load("motorola", "s1050000AABB95\nS113FFF8000102030405060708090A0B0C0D0E0F7D\n"
                                      "S9030000FC\nS1040010EEFD\n");
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(l.bytes.size(), 0x10008u);
    EXPECT_EQ(l.bytes[0], 0xAA);
    EXPECT_EQ(l.bytes[0x10007], 0x0F);
    EXPECT_EQ(l.bytes[0x10], 0xFF);
    EXPECT_TRUE(l.sink.contains(Warning, "lowercase"));
    EXPECT_TRUE(l.sink.contains(Warning, "past the address range"));
    EXPECT_TRUE(l.sink.contains(Warning, "after the termination"));
}

// The data record type follows the highest address: S1, S2 or S3.
TEST(KCHexFileMotorola, RoundTripChoosesTheDataType)
{
    Random rnd(11);
    for (uint64_t start : {0x0ull, 0xFFF0ull, 0xFFFFF0ull, 0xFFFFFF00ull}) {
        const std::vector<uint8_t> image = rnd.bytes(start ? 0x100 : 0x10000);
        KCSaveOptions o;
        o.startAddress = start;
        const std::string text = save("motorola", image, o);
        const uint64_t highest = start + image.size() - 1;
        const char type = highest <= 0xFFFF ? '1' : highest <= 0xFFFFFF ? '2' : '3';
        const size_t firstData = text.find("\r\nS") + 3;
        EXPECT_EQ(text[firstData], type) << std::hex << start;
        EXPECT_EQ(text[text.rfind("\r\nS") + 3], char('0' + 10 - (type - '0')));
        const Loaded l = load("motorola", text, rangeFrom(start));
        ASSERT_TRUE(l.result.ok) << l.sink.dump();
        EXPECT_EQ(l.bytes, image);
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
    }
}
