#include "KCFormatTestTools.h"

using namespace KCFormatTest;

namespace {

const KCFileMessage::Severity Error = KCFileMessage::Error;
const KCFileMessage::Severity Warning = KCFileMessage::Warning;

const char *kTagged = "K0008KRL90100B4B52B4C44B5600B0102*FF7F7CBF\n:\n";

} // namespace

TEST(KCHexFileTI, DetectsTheVariantFromContent)
{
    for (const char *file : {"ti/krldv-txt.ti", "ti/krldv-tagged.ti"}) {
        const Loaded l = load("ti", dataFile(file));
        ASSERT_TRUE(l.result.ok) << file << l.sink.dump();
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
        EXPECT_EQ(slice(l.bytes, 0x100, 9), kKrldv) << file;
    }
    Loaded l = load("ti", dataFile("intel/krldv-start.hex"));
    EXPECT_FALSE(l.result.ok);
    EXPECT_TRUE(l.sink.contains(Error, "Intel HEX"));
    l = load("ti", dataFile("motorola/krldv-s1.srec"));
    EXPECT_TRUE(l.sink.contains(Error, "Motorola"));
    for (const char *empty : {"q\n", "  Q", ":\r\n"}) {
        l = load("ti", empty);
        EXPECT_TRUE(l.result.ok) << empty << l.sink.dump();
        EXPECT_TRUE(l.bytes.empty());
    }

    const KCFileFormatInfo *ti = KCFileFormatRegistry::byName("ti");
    for (const char *file : {"ti/krldv-txt.ti", "ti/krldv-tagged.ti", "ti/msp430.ti"}) {
        const std::string text = dataFile(file);
        EXPECT_EQ(KCFileFormatRegistry::detect(reinterpret_cast<const uint8_t *>(text.data()), text.size()), ti);
    }
}

TEST(KCHexFileTI, TextSectionsAndTolerances)
{
    const Loaded msp = load("ti", dataFile("ti/msp430.ti"));
    ASSERT_TRUE(msp.result.ok);
    EXPECT_EQ(msp.result.ranges, (std::vector<std::pair<uint64_t, uint64_t>>{{0xF000, 0xF01B}, {0xFFFE, 0xFFFF}}));
    EXPECT_EQ(msp.bytes[0xFFFF], 0xF0);

    // Odd section address, a 20-byte line, lowercase, several blanks, no 'q': one warning.
    std::string line20;
    for (int i = 0; i < 20; ++i)
        line20 += (i % 3 ? " " : " \t ") + std::string(1, "0123456789abcdef"[i % 16]) + "f";
    const Loaded l = load("ti", "@0101\r\naa bb cc\r\n@0200\n" + line20 + "\n");
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(slice(l.bytes, 0x101, 3), (std::vector<uint8_t>{0xAA, 0xBB, 0xCC}));
    EXPECT_EQ(l.bytes[0x213], 0x3F);
    EXPECT_EQ(l.sink.count(Warning), 1u) << l.sink.dump();

    const Loaded joined = load("ti", "@0000\n00F0 11\nq\n");
    EXPECT_EQ(slice(joined.bytes, 0, 3), (std::vector<uint8_t>{0x00, 0xF0, 0x11}));
    EXPECT_TRUE(joined.sink.contains(Warning, "split"));

    for (const char *bad : {"@0000\n0F0\nq\n", "@0000\nG1\nq\n", "00 11\nq\n", "@\nq\n", "@123456789\nq\n",
                            "@0000\n00 11 xyz\nq\n"}) {
        const Loaded b = load("ti", bad);
        EXPECT_FALSE(b.result.ok) << bad;
    }
}

TEST(KCHexFileTI, TaggedChecksumAndAddressing)
{
    std::string text = kTagged;
    text.replace(text.find("7F7CB"), 5, "7F7CC");
    Loaded l = load("ti", text);
    EXPECT_FALSE(l.result.ok);
    EXPECT_EQ(l.sink.first(Error)->line, 1u);

    text.replace(text.find("7F7CC"), 5, "80000");
    l = load("ti", "\n" + text);
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(slice(l.bytes, 0x100, 9), kKrldv);

    // Fields may be split over lines; the address is a word address on request.
    KCLoadOptions words;
    words.tiTaggedWordAddress = true;
    l = load("ti", "90080\nB4B52\r\nB4C44\nF\n", words);
    ASSERT_TRUE(l.result.ok);
    EXPECT_EQ(slice(l.bytes, 0x100, 4), (std::vector<uint8_t>{0x4B, 0x52, 0x4C, 0x44}));
    EXPECT_TRUE(l.sink.contains(Warning, "':'"));

    for (const char *bad : {"K0004\n:", "90100B4B5\n:", "90100A1234F\n:", "90100X\n:", "K0010KRL\n:"}) {
        l = load("ti", bad);
        EXPECT_FALSE(l.result.ok) << bad;
    }
}

// Content detection and extensions of the hex formats through the one format table.
TEST(KCHexFormatTable, DetectionAndExtensions)
{
    auto detect = [](const std::string &text) {
        const KCFileFormatInfo *f =
            KCFileFormatRegistry::detect(reinterpret_cast<const uint8_t *>(text.data()), text.size());
        return std::string(f ? f->name : "none");
    };
    EXPECT_EQ(detect(dataFile("intel/krldv-i16.hex")), "intel");
    EXPECT_EQ(detect("\xEF\xBB\xBF\r\n  " + dataFile("motorola/krldv-s3.srec")), "motorola");
    EXPECT_EQ(detect(dataFile("ti/krldv-tagged.ti")), "ti");
    EXPECT_EQ(detect(dataFile("bin/krldv.bin")), "none");
    EXPECT_EQ(detect("Hello"), "none");
    for (const char *ext : {"HEX", "ihx", "s19", "S37", "srec", "mot", "mhx", "ti", "bin"})
        EXPECT_NE(KCFileFormatRegistry::byExtension(ext), nullptr) << ext;
    EXPECT_EQ(KCFileFormatRegistry::byExtension("txt"), nullptr);
}
