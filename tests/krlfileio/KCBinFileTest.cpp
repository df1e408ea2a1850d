#include "KCFormatTestTools.h"

using namespace KCFormatTest;

namespace {

std::string tenBytes()
{
    std::string s;
    for (int i = 0; i < 10; ++i)
        s += char(0xA0 + i);
    return s;
}

} // namespace

TEST(KCBinFile, LoadsAtBufferOffsetWithFileOffsetAndLimits)
{
    KCLoadOptions o;
    o.bufferOffset = 0x100;
    o.grow = false;
    Loaded l = load("bin", tenBytes(), o, std::vector<uint8_t>(0x200, 0xFF));
    ASSERT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes.size(), 0x200u);
    EXPECT_EQ(l.bytes[0xFF], 0xFF);
    EXPECT_EQ(l.bytes[0x100], 0xA0);
    EXPECT_EQ(l.bytes[0x109], 0xA9);
    EXPECT_EQ(l.bytes[0x10A], 0xFF);
    EXPECT_EQ(l.sink.count(KCFileMessage::Info), 1u);

    o = {};
    o.fileOffset = 4;
    o.rangeLength = 4;
    l = load("bin", tenBytes(), o);
    EXPECT_EQ(l.bytes, (std::vector<uint8_t>{0xA4, 0xA5, 0xA6, 0xA7}));
    EXPECT_TRUE(l.sink.contains(KCFileMessage::Warning, "truncated to 4 bytes"));

    o = {};
    o.grow = false;
    l = load("bin", tenBytes(), o, std::vector<uint8_t>(6, 0));
    EXPECT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes.size(), 6u);
    EXPECT_TRUE(l.sink.contains(KCFileMessage::Warning, "truncated to 6 bytes"));

    o = {};
    o.fileOffset = 11;
    l = load("bin", tenBytes(), o);
    EXPECT_FALSE(l.result.ok);
    EXPECT_NE(l.sink.first(KCFileMessage::Error), nullptr);
}

TEST(KCBinFile, SaveWritesTheBytesUnchanged)
{
    const std::vector<uint8_t> image = Random(3).bytes(100000);
    const std::string text = save("bin", image);
    EXPECT_EQ(std::vector<uint8_t>(text.begin(), text.end()), image);
    EXPECT_EQ(load("bin", dataFile("bin/krldv.bin")).bytes, kKrldv);
}
