#include "KCFormatTestTools.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

// Differential tests against srec_cat: on generated images our reader must see exactly the
// bytes srec_cat sees, and srec_cat must read our writers' output back as the original.
using namespace KCFormatTest;

namespace {

struct Chunk
{
    uint64_t address;
    std::vector<uint8_t> bytes;
};
using Image = std::vector<Chunk>;

bool haveSrecCat()
{
    return std::system("command -v srec_cat >/dev/null 2>&1") == 0;
}

std::string tempPath(const std::string &name)
{
    return ::testing::TempDir() + "krldv_diff_" + std::to_string(::getpid()) + "_" + name;
}

std::string hex(uint64_t v, int digits)
{
    char s[24];
    std::snprintf(s, sizeof s, "%0*llX", digits, (unsigned long long)v);
    return s;
}

// Non-overlapping chunks inside [base, base + span), in ascending order.
Image sparse(Random &rnd, uint64_t base, uint64_t span, int count, size_t maxLength)
{
    Image image;
    const uint64_t step = span / uint64_t(count);
    for (uint64_t at = base; image.size() < size_t(count); at += step)
        image.push_back({at + rnd.below(step / 2), rnd.bytes(1 + size_t(rnd.below(std::min<uint64_t>(maxLength, step / 2))))});
    return image;
}

// Calls emit(address, bytes) for records of 1..maxRecord bytes that never cross 64 KiB.
template <class Emit>
void records(Random &rnd, const Image &image, size_t maxRecord, Emit emit)
{
    for (const Chunk &c : image)
        for (size_t pos = 0, n = 0; pos < c.bytes.size(); pos += n) {
            const uint64_t address = c.address + pos;
            n = size_t(std::min<uint64_t>({1 + rnd.below(maxRecord), c.bytes.size() - pos, 0x10000 - address % 0x10000}));
            emit(address, std::vector<uint8_t>(c.bytes.begin() + long(pos), c.bytes.begin() + long(pos + n)));
        }
}

std::string intelText(Random &rnd, const Image &image, size_t maxRecord, bool segmented)
{
    std::string out;
    uint64_t base = 0;
    records(rnd, image, maxRecord, [&](uint64_t address, const std::vector<uint8_t> &data) {
        if (address < base || address + data.size() > base + 0x10000) {
            // Segment bases vary in 16-byte steps, so the same address has many spellings.
            uint64_t usba = segmented ? (address >> 4) - std::min<uint64_t>(address >> 4, rnd.below(0x800)) : address >> 16;
            if (segmented && (address - (usba << 4)) + data.size() > 0x10000)
                usba = address >> 4;
            base = segmented ? usba << 4 : usba << 16;
            out += intelRecord(segmented ? 2 : 4, 0, {uint8_t(usba >> 8), uint8_t(usba)}) + "\r\n";
        }
        out += intelRecord(0, uint16_t(address - base), data) + "\r\n";
    });
    return out + ":00000001FF\r\n";
}

// Each record takes the smallest type its addresses fit, so S1, S2 and S3 mix in one file.
std::string srecText(Random &rnd, const Image &image, size_t maxRecord)
{
    std::string out = "S00600004844521B\n";
    records(rnd, image, maxRecord, [&](uint64_t address, const std::vector<uint8_t> &data) {
        const uint64_t end = address + data.size();
        const int type = end <= 0x10000 ? 1 : end <= 0x1000000 ? 2 : 3;
        out += srecRecord(type, address, unsigned(type) + 1, data) + "\n";
    });
    return out;
}

std::string tiTxtText(Random &rnd, const Image &image)
{
    std::string out;
    for (const Chunk &c : image) {
        out += "@" + hex(c.address, c.address > 0xFFFF ? 5 : 4) + "\r\n";
        for (size_t i = 0; i < c.bytes.size(); ++i)
            out += hex(c.bytes[i], 2) + ((i + 1) % (1 + rnd.below(20)) == 0 || i + 1 == c.bytes.size() ? "\r\n" : " ");
    }
    return out + "q\r\n";
}

// Words and single bytes at random, records closed by a checksum at random points.
std::string tiTaggedText(Random &rnd, const Image &image)
{
    std::string out = "K0008KRL";
    size_t recordStart = 0;
    auto closeRecord = [&] {
        unsigned sum = '7';
        for (size_t i = recordStart; i < out.size(); ++i)
            sum += uint8_t(out[i]);
        out += "7" + hex((0x10000 - (sum & 0xFFFF)) & 0xFFFF, 4) + "F\n";
        recordStart = out.size();
    };
    for (const Chunk &c : image) {
        out += "9" + hex(c.address, 4);
        for (size_t i = 0; i < c.bytes.size();) {
            const bool word = i + 1 < c.bytes.size() && rnd.below(4);
            out += word ? "B" + hex(c.bytes[i], 2) + hex(c.bytes[i + 1], 2) : "*" + hex(c.bytes[i], 2);
            i += word ? 2 : 1;
            if (rnd.below(8) == 0)
                closeRecord();
        }
    }
    closeRecord();
    return out + ":\n";
}

struct Span
{
    uint64_t lo, hi; // [lo, hi)
};

Span spanOf(const Image &image)
{
    Span s{UINT64_MAX, 0};
    for (const Chunk &c : image) {
        s.lo = std::min(s.lo, c.address);
        s.hi = std::max(s.hi, c.address + c.bytes.size());
    }
    return s;
}

// srec_cat's view of `file` over [lo, hi), unset bytes 0xFF. The file is first read on its
// own and rewritten as S-records: srec_cat's TI-Tagged reader trips over the line end after
// ':' when a fill filter makes it read again.
std::vector<uint8_t> srecCatFlat(const std::string &file, const char *format, Span s)
{
    const std::string out = tempPath("flat.bin");
    const std::string mid = tempPath("mid.srec");
    const std::string cmd = "(srec_cat '" + file + "' " + format + " -o '" + mid + "' -motorola && srec_cat '" + mid +
                            "' -motorola -crop " + std::to_string(s.lo) + " " + std::to_string(s.hi) + " -offset -" +
                            std::to_string(s.lo) + " -fill 0xFF 0 " + std::to_string(s.hi - s.lo) + " -o '" + out +
                            "' -binary) 2>/dev/null";
    EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
    const std::string flat = readFile(out);
    std::remove(out.c_str());
    std::remove(mid.c_str());
    return std::vector<uint8_t>(flat.begin(), flat.end());
}

std::vector<uint8_t> flatten(const Image &image, Span s)
{
    std::vector<uint8_t> flat(size_t(s.hi - s.lo), 0xFF);
    for (const Chunk &c : image)
        std::copy(c.bytes.begin(), c.bytes.end(), flat.begin() + long(c.address - s.lo));
    return flat;
}

void expectSameAsSrecCat(const char *format, const char *srecFormat, const std::string &text, const Image &image)
{
    const Span s = spanOf(image);
    const std::string file = tempPath("in.txt");
    writeFile(file, text);
    KCLoadOptions o;
    o.rangeStart = s.lo;
    const Loaded l = load(format, text, o);
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_EQ(l.bytes.size(), s.hi - s.lo);
    EXPECT_EQ(l.result.skipped, 0u);
    const std::vector<uint8_t> theirs = srecCatFlat(file, srecFormat, s);
    EXPECT_TRUE(l.bytes == theirs) << format << " differs from srec_cat " << srecFormat;
    EXPECT_TRUE(l.bytes == flatten(image, s));
    std::remove(file.c_str());
}

class KCSrecCatDiff : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!haveSrecCat())
            GTEST_SKIP() << "srec_cat is not installed";
    }
    Random rnd{2024};
};

} // namespace

TEST_F(KCSrecCatDiff, IntelReader)
{
    const Image dense = {{0, rnd.bytes(0x10000)}};
    expectSameAsSrecCat("intel", "-intel", intelText(rnd, dense, 16, false), dense);
    const Image above64k = sparse(rnd, 0x10000, 0x80000, 40, 5000);
    expectSameAsSrecCat("intel", "-intel", intelText(rnd, above64k, 32, false), above64k);
    const Image above16m = sparse(rnd, 0xFF0000, 0x40000, 30, 3000);
    expectSameAsSrecCat("intel", "-intel", intelText(rnd, above16m, 255, false), above16m);
    const Image segmented = sparse(rnd, 0x100, 0xFFE00, 60, 4000);
    expectSameAsSrecCat("intel", "-intel", intelText(rnd, segmented, 64, true), segmented);
}

TEST_F(KCSrecCatDiff, MotorolaReaderWithMixedTypes)
{
    for (uint64_t base : {0x8000ull, 0xFF8000ull, 0xFFFE0000ull}) {
        const Image image = sparse(rnd, base, 0x1FFFF, 20, 3000);
        expectSameAsSrecCat("motorola", "-motorola", srecText(rnd, image, 40), image);
    }
}

TEST_F(KCSrecCatDiff, TiReaders)
{
    const Image txt = sparse(rnd, 0x0, 0x30000, 25, 2000);
    expectSameAsSrecCat("ti", "-ti-txt", tiTxtText(rnd, txt), txt);
    const Image tagged = sparse(rnd, 0x0, 0x10000, 25, 1000);
    expectSameAsSrecCat("ti", "-ti-tagged", tiTaggedText(rnd, tagged), tagged);
}

TEST_F(KCSrecCatDiff, SrecCatReadsOurOutputBack)
{
    struct Case
    {
        const char *format;
        const char *srecFormat;
        uint64_t address;
        size_t size;
        unsigned perRecord;
    };
    for (const Case &c : {Case{"intel", "-intel", 0xFFF00, 0x30000, 16}, Case{"intel", "-intel", 0xFFFF0005, 0xF000, 32},
                          Case{"motorola", "-motorola", 0x10, 0xF000, 16},
                          Case{"motorola", "-motorola", 0xFFF0, 0x30000, 32},
                          Case{"motorola", "-motorola", 0xFFFFF0, 0x30000, 16}}) {
        const Image image = {{c.address, rnd.bytes(c.size)}};
        KCSaveOptions o;
        o.startAddress = c.address;
        o.bytesPerRecord = c.perRecord;
        const std::string file = tempPath("ours.txt");
        writeFile(file, save(c.format, image[0].bytes, o));
        EXPECT_TRUE(srecCatFlat(file, c.srecFormat, spanOf(image)) == image[0].bytes)
            << c.format << " at 0x" << std::hex << c.address;
        std::remove(file.c_str());
    }
}
