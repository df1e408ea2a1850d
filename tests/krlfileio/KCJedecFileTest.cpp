#include "KCFormatTestTools.h"
#include "KCJedecChecksum.h"
#include "KCJedecFile.h"

#include <string>
#include <vector>

using namespace KCFormatTest;
using namespace std::string_literals;

namespace {

std::vector<uint8_t> fuses(const std::string &states)
{
    std::vector<uint8_t> v;
    for (char c : states)
        v.push_back(uint8_t(c - '0'));
    return v;
}

const std::string kStx = "\x02";
const std::string kEtx = "\x03";

} // namespace

TEST(KCJedecFile, TinyExampleLoadsWithBothChecksums)
{
    const Loaded l = load("jedec", dataFile("jedec/tiny-crlf.jed"));
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(l.sink.count(KCFileMessage::Warning) + l.sink.count(KCFileMessage::Error), 0u) << l.sink.dump();
    EXPECT_EQ(l.bytes, fuses("101100001111111100001001"));
    EXPECT_EQ(l.result.fuseCount, 24u);
    EXPECT_TRUE(l.result.hasFuseChecksum);
    EXPECT_EQ(l.result.statedFuseChecksum, 0x019C);
    EXPECT_EQ(l.result.computedFuseChecksum, 0x019C);
    EXPECT_TRUE(l.result.hasTransmissionChecksum);
    EXPECT_EQ(l.result.computedTransmissionChecksum, 0x1C5E);

    // The buffer's fuse-map checksum (1 << (offset & 7) per set byte) must equal C.
    uint32_t viewSum = 0;
    for (size_t a = 0; a < l.bytes.size(); ++a)
        viewSum += l.bytes[a] ? 1u << (a & 7) : 0;
    EXPECT_EQ(viewSum & 0xFFFF, l.result.statedFuseChecksum);
}

TEST(KCJedecFile, TransmissionChecksumFollowsTheStoredLineEnds)
{
    const Loaded wrong = load("jedec", dataFile("jedec/tiny-lf-wrong-checksum.jed"));
    EXPECT_FALSE(wrong.result.ok);
    const Message *e = wrong.sink.first(KCFileMessage::Error);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->text, "transmission checksum is 0x1BE9, expected 0x1C5E");
    EXPECT_EQ(e->file, kFileName);
    EXPECT_EQ(e->line, 10u);
    EXPECT_EQ(wrong.bytes.size(), 24u) << "a checksum error keeps the fuses for a load-anyway";

    for (const char *name : {"jedec/tiny-lf.jed", "jedec/tiny-lf-dummy.jed"}) {
        const Loaded l = load("jedec", dataFile(name));
        EXPECT_TRUE(l.result.ok) << name << l.sink.dump();
    }

    KCLoadOptions anyway;
    anyway.ignoreChecksums = true;
    const Loaded forced = load("jedec", dataFile("jedec/tiny-lf-wrong-checksum.jed"), anyway);
    EXPECT_TRUE(forced.result.ok);
    EXPECT_TRUE(forced.sink.contains(KCFileMessage::Warning, "expected 0x1C5E"));

    const Loaded classic = load("jedec", dataFile("jedec/jesd3-example.jed"));
    EXPECT_TRUE(classic.result.ok) << classic.sink.dump();
    EXPECT_EQ(classic.result.computedTransmissionChecksum, 0x05C4);
    EXPECT_TRUE(classic.sink.contains(KCFileMessage::Warning, "fuse checksum not present"));
}

TEST(KCJedecFile, FuseChecksumExamplesAndPatching)
{
    const Loaded a = load("jedec", "*QF500* F0* L0000 01001110 00001000 11110000 11111111 01010001* C021A*");
    EXPECT_TRUE(a.result.ok) << a.sink.dump();
    EXPECT_EQ(a.bytes.size(), 500u);

    // Binary and hex fuse lists give the same fuses; lowercase hex and blanks before '*' too.
    const Loaded b = load("jedec", "*QF1004* F0* L0 01010101* L0008 01010111* L1000 0101* C019E*");
    const Loaded k = load("jedec", "*QF1004* F0* K0 55* K0008 57* K1000 5 * C019e *");
    EXPECT_TRUE(b.result.ok) << b.sink.dump();
    EXPECT_TRUE(k.result.ok) << k.sink.dump();
    EXPECT_EQ(b.bytes, k.bytes);

    const Loaded p = load("jedec", "*QF8* F0* L0 1111* L2 0* C000B*");
    EXPECT_TRUE(p.result.ok) << p.sink.dump();
    EXPECT_EQ(p.bytes, fuses("11010000"));

    const Loaded bad = load("jedec", "*QF8*\nF0*\nL0 1111*\nC000C*");
    EXPECT_FALSE(bad.result.ok);
    ASSERT_NE(bad.sink.first(KCFileMessage::Error), nullptr);
    EXPECT_EQ(bad.sink.first(KCFileMessage::Error)->text, "fuse checksum is 0x000F, expected 0x000C");
    EXPECT_EQ(bad.sink.first(KCFileMessage::Error)->line, 4u);

    // Without F every fuse must be set; the rest read as 0 with a warning.
    const Loaded noDefault = load("jedec", "*QF8* L0 11*");
    EXPECT_TRUE(noDefault.result.ok);
    EXPECT_EQ(noDefault.bytes, fuses("11000000"));
    EXPECT_TRUE(noDefault.sink.contains(KCFileMessage::Warning, "6 fuses have no state"));
}

TEST(KCJedecFile, FramingVariantsAreTolerated)
{
    const std::string body = "QF8*\r\nF0*\r\nB reserved*\r\nN note*\r\nK0 A*\r\nC0005*\r\n";
    for (const std::string &text : {"random text" + kStx + "design*\r\n" + body + kEtx + "0000 trailing",
                                    "design*\r\n" + body, kStx + "*" + body + kEtx, kStx + "*\t" + body + kEtx + "12"}) {
        const Loaded l = load("jedec", text);
        EXPECT_TRUE(l.result.ok) << l.sink.dump();
        EXPECT_EQ(l.bytes, fuses("10100000"));
    }
}

TEST(KCJedecFile, MalformedFilesAreRejectedWithTheirLine)
{
    struct Case
    {
        std::string text;
        uint64_t line;
        const char *part;
    };
    const Case cases[] = {
        {kStx + "no star at all\r\nQF8", 1, "no '*' after the header text"},
        {"*\nL0 1*\nQF8*", 2, "L field before QF"},
        {"*\nQF8*\nF0*\nL0 10201*", 4, "not a fuse state"},
        {"*\nQF8*\nF0*\nL8 1*", 4, "not below QF8"},
        {"*\nQF8*\nF0*\nL6 1\n11*", 5, "runs past the last fuse 7"},
        {"*\nQF8*\nF0*\nK0 F0F*", 4, "past the last fuse"},
        {"*\nQF8*\nF0*\nK0 G*", 4, "not a hex digit"},
        {"*\nQF8*\nF2*", 3, "F field must be 0 or 1"},
        {"*\nQF8*\nG01*", 3, "G field must be 0 or 1"},
        {"*\nQF8*\nC12*", 3, "C field needs exactly 4 hex digits"},
        {"*\nQF8*\nQF9*", 3, "contradicts"},
        {"*\nQF8*\nF0*\nL0 1", 4, "not ended by '*'"},
        {"*\nQF8*\nN bad\x01*", 3, "control character 0x01"},
        {"*\nQF8*\nN nul\0*"s, 3, "control character 0x00"},
        {"*\nQF999999999*", 2, "beyond any device"},
    };
    for (const Case &c : cases) {
        const Loaded l = load("jedec", c.text);
        EXPECT_FALSE(l.result.ok) << c.text;
        const Message *e = l.sink.first(KCFileMessage::Error);
        ASSERT_NE(e, nullptr) << c.text;
        EXPECT_NE(e->text.find(c.part), std::string::npos) << e->text;
        EXPECT_EQ(e->line, c.line) << e->text;
        EXPECT_TRUE(l.bytes.empty()) << "a structural error loads nothing: " << c.text;
    }

    KCLoadOptions device;
    device.rangeLength = 16;
    const Loaded tooBig = load("jedec", "*QF24* F0*", device);
    EXPECT_FALSE(tooBig.result.ok);
    EXPECT_TRUE(tooBig.sink.contains(KCFileMessage::Error, "24 fuses, the device only 16"));
}

TEST(KCJedecFile, WrittenMapReadsBackWithValidChecksums)
{
    Random random(7);
    std::vector<uint8_t> map(1000);
    for (auto &f : map)
        f = uint8_t(random.below(2));
    map[999] = 0xFF; // any non-zero buffer byte is a blown fuse

    for (bool crlf : {true, false}) {
        KCSaveOptions options;
        options.crlf = crlf;
        options.header = "PALCE16V8";
        const std::string text = save("jedec", map, options);
        ASSERT_EQ(text.substr(0, 1), kStx);
        EXPECT_NE(text.find("2.06.23 PALCE16V8*"), std::string::npos);
        EXPECT_NE(text.find(crlf ? "\r\nL000 " : "\nL000 "), std::string::npos);
        EXPECT_EQ(text.find(crlf ? "\n\n" : "\r"), std::string::npos);

        const Loaded l = load("jedec", text);
        ASSERT_TRUE(l.result.ok) << l.sink.dump();
        EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
        ASSERT_EQ(l.bytes.size(), map.size());
        for (size_t i = 0; i < map.size(); ++i)
            ASSERT_EQ(l.bytes[i], map[i] ? 1 : 0) << "fuse " << i;
        EXPECT_TRUE(l.result.hasTransmissionChecksum);
        EXPECT_NE(l.result.statedTransmissionChecksum, 0);
    }

    RecordingSink sink;
    KCSaveOptions starred;
    starred.header = "bad*name";
    StringOutputStream out;
    EXPECT_FALSE(KCFileFormatRegistry::byName("jedec")->create(sink)->Save(out, "out", map.data(), map.size(), starred));
    EXPECT_EQ(sink.count(KCFileMessage::Error), 1u);
}

// The sums and digits are taken sixteen bytes at a time; every length and starting offset
// around those blocks gives what the definitions give byte by byte.
TEST(KCJedecFile, BlockwiseSumsAndDigitsMatchTheDefinitions)
{
    Random random(11);
    std::vector<uint8_t> data(300);
    for (auto &b : data)
        b = random.below(3) ? 0 : uint8_t(1 + random.below(255));
    for (size_t start : {0, 1, 7}) {
        for (size_t n = 0; n + start <= data.size(); n += (n < 40 ? 1 : 37)) {
            const uint8_t *f = data.data() + start;
            unsigned packed = 0, transmission = 0;
            std::string digits;
            for (size_t i = 0; i < n; ++i) {
                packed += unsigned(f[i] != 0) << (i % 8);
                transmission += f[i];
                digits += f[i] ? '1' : '0';
            }
            EXPECT_EQ(KCJedecChecksum::fuses(f, n), uint16_t(packed)) << start << "+" << n;
            EXPECT_EQ(KCJedecChecksum::transmission(f, n, 0xFFF0), uint16_t(transmission + 0xFFF0)) << n;
            std::string out(n, '?');
            KCJedecChecksum::fuseDigits(f, n, out.data());
            EXPECT_EQ(out, digits) << n;
        }
    }
}

TEST(KCJedecFile, DetectionNeedsAJedecFirstField)
{
    const std::string framed = "junk" + kStx + "design*\r\n";
    EXPECT_TRUE(KCJedecFile::detect(reinterpret_cast<const uint8_t *>(framed.data()), framed.size()));
    const std::string bare = "design by me*\nQF24*";
    EXPECT_TRUE(KCJedecFile::detect(reinterpret_cast<const uint8_t *>(bare.data()), bare.size()));
    const std::string notJedec = "hello*\nworld";
    EXPECT_FALSE(KCJedecFile::detect(reinterpret_cast<const uint8_t *>(notJedec.data()), notJedec.size()));
    const uint8_t binary[] = {0x02, 0x00, 0x2A, 0x51, 0x46};
    EXPECT_FALSE(KCJedecFile::detect(binary, sizeof binary));
}
