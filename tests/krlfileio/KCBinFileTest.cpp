#include "KCBinFile.h"
#include "KCFormatTestTools.h"
#include "KCVectorByteArray.h"

#include <unistd.h>

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
    EXPECT_TRUE(l.sink.contains(KCFileMessage::Warning, "only the first 4 of the file's 6 bytes are read"));

    o = {};
    o.grow = false;
    l = load("bin", tenBytes(), o, std::vector<uint8_t>(6, 0));
    EXPECT_TRUE(l.result.ok);
    EXPECT_EQ(l.bytes.size(), 6u);
    EXPECT_TRUE(l.sink.contains(KCFileMessage::Warning, "only the first 6 of the file's 10 bytes are read"));

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

// Read straight from the descriptor (in two halves for a large image), the load must give
// what the mapped bytes give, at every offset.
TEST(KCBinFile, DescriptorReadMatchesMappedRead)
{
    char path[] = "/tmp/krldv-binfd-XXXXXX";
    const int fd = ::mkstemp(path);
    ASSERT_GE(fd, 0);
    std::string image(size_t(70) << 20, '\0');
    for (size_t i = 0; i < image.size(); i += 4093)
        image[i] = char(i / 4093);
    ASSERT_EQ(::write(fd, image.data(), image.size()), ssize_t(image.size()));

    for (const auto &[fileOffset, bufferOffset] : {std::pair<uint64_t, uint64_t>{0, 0}, {3, 0x11}, {4093 * 9, 5}}) {
        KCLoadOptions o;
        o.fileOffset = fileOffset;
        o.bufferOffset = bufferOffset;
        KCInputFile direct{path, reinterpret_cast<const uint8_t *>(image.data()), image.size(), fd};
        KCInputFile mapped = direct;
        mapped.fd = -1;
        KCVectorByteArray a, b;
        RecordingSink sa, sb;
        const KCLoadResult ra = KCBinFile(sa).Load(direct, a, o);
        const KCLoadResult rb = KCBinFile(sb).Load(mapped, b, o);
        ASSERT_TRUE(ra.ok && rb.ok);
        EXPECT_TRUE(a.bytes() == b.bytes()) << fileOffset;
        EXPECT_EQ(ra.ranges, rb.ranges);
        EXPECT_EQ(ra.highest, rb.highest);
        EXPECT_EQ(ra.bytesLoaded, image.size() - fileOffset);
    }

    // A file that shrinks under the reader is an error, not a crash or stale bytes.
    KCInputFile shrunk{path, reinterpret_cast<const uint8_t *>(image.data()), image.size(), fd};
    ASSERT_EQ(::ftruncate(fd, 100), 0);
    KCVectorByteArray c;
    RecordingSink sc;
    EXPECT_FALSE(KCBinFile(sc).Load(shrunk, c, KCLoadOptions()).ok);
    EXPECT_TRUE(sc.contains(KCFileMessage::Error, "became shorter"));
    ::close(fd);
    ::unlink(path);
}
