// The record writers lay out and encode records in blocks, in two threads for large
// images; these tests hold them to a record-by-record encoder built from the test tools.
#include "KCFdOutputStream.h"
#include "KCFormatTestTools.h"

#include <fcntl.h>
#include <unistd.h>

using namespace KCFormatTest;

namespace {

constexpr uint64_t kSegment = 0x10000;
constexpr uint64_t kAddressSpace = uint64_t(1) << 32;

std::string lineEnd(const KCSaveOptions &o) { return o.crlf ? "\r\n" : "\n"; }

std::vector<uint8_t> bytesAt(const std::vector<uint8_t> &data, uint64_t pos, uint64_t n)
{
    return std::vector<uint8_t>(data.begin() + long(pos), data.begin() + long(pos + n));
}

std::string referenceIntel(const std::vector<uint8_t> &data, const KCSaveOptions &o)
{
    std::string s;
    uint64_t upper = 0;
    for (const auto &run : o.runs(data.size())) {
        for (uint64_t pos = run.first; pos <= run.second;) {
            const uint64_t address = o.startAddress + pos;
            if (address >> 16 != upper) {
                upper = address >> 16;
                s += intelRecord(4, 0, {uint8_t(upper >> 8), uint8_t(upper)}) + lineEnd(o);
            }
            const uint64_t n = std::min<uint64_t>({o.bytesPerRecord, run.second + 1 - pos, kSegment - (address & 0xFFFF)});
            s += intelRecord(0, uint16_t(address), bytesAt(data, pos, n)) + lineEnd(o);
            pos += n;
        }
    }
    const uint32_t e = o.entryPoint;
    if (o.hasEntryPoint)
        s += intelRecord(5, 0, {uint8_t(e >> 24), uint8_t(e >> 16), uint8_t(e >> 8), uint8_t(e)}) + lineEnd(o);
    return s + intelRecord(1, 0, {}) + lineEnd(o);
}

std::string referenceMotorola(const std::vector<uint8_t> &data, const KCSaveOptions &o)
{
    const auto runs = o.runs(data.size());
    uint64_t highest = o.hasEntryPoint ? o.entryPoint : 0;
    if (!runs.empty())
        highest = std::max(highest, o.startAddress + runs.back().second);
    const int type = highest <= 0xFFFF ? 1 : highest <= 0xFFFFFF ? 2 : 3;
    std::string s = srecRecord(0, 0, 2, {'H', 'D', 'R'}) + lineEnd(o);
    uint64_t records = 0;
    for (const auto &run : runs) {
        for (uint64_t pos = run.first; pos <= run.second; ++records) {
            const uint64_t n = std::min<uint64_t>(o.bytesPerRecord, run.second + 1 - pos);
            s += srecRecord(type, o.startAddress + pos, unsigned(type + 1), bytesAt(data, pos, n)) + lineEnd(o);
            pos += n;
        }
    }
    s += srecRecord(records <= 0xFFFF ? 5 : 6, records, records <= 0xFFFF ? 2 : 3, {}) + lineEnd(o);
    return s + srecRecord(10 - type, o.hasEntryPoint ? o.entryPoint : 0, unsigned(type + 1), {}) + lineEnd(o);
}

// Random options for an image of `size` bytes: record sizes from 1 to the most a record
// holds, address bases on and around 64 KiB, 16 MiB and the top of the 32-bit space.
KCSaveOptions randomOptions(Random &r, uint64_t size)
{
    KCSaveOptions o;
    const uint64_t bases[] = {0,
                              r.below(kSegment),
                              kSegment - 1 - r.below(64),
                              r.below(uint64_t(1) << 24),
                              (uint64_t(1) << 24) - 1 - r.below(size + 64),
                              r.below(kAddressSpace - size),
                              kAddressSpace - size - r.below(64)};
    o.startAddress = std::min(bases[r.below(std::size(bases))], kAddressSpace - size);
    const unsigned sizes[] = {16, 32, 1, 250, unsigned(1 + r.below(250))};
    o.bytesPerRecord = sizes[r.below(std::size(sizes))];
    o.crlf = r.below(2);
    o.hasEntryPoint = r.below(3) == 0;
    o.entryPoint = uint32_t(r.next());
    if (r.below(2)) {
        for (uint64_t pos = r.below(300); pos < size; pos += 1 + r.below(kSegment)) {
            const uint64_t last = std::min(size - 1, pos + r.below(3 * kSegment));
            o.segments.emplace_back(pos, last);
            pos = last + 1;
        }
    }
    return o;
}

std::string saveThroughFile(const char *format, const std::vector<uint8_t> &data, const KCSaveOptions &o,
                            const std::string &before)
{
    char path[] = "/tmp/krldv-plan-XXXXXX";
    const int fd = ::mkstemp(path);
    EXPECT_GE(fd, 0);
    KCFdOutputStream out(fd);
    RecordingSink sink;
    out.write(before.data(), before.size());
    EXPECT_TRUE(KCFileFormatRegistry::byName(format)->create(sink)->Save(out, "out", data.data(), data.size(), o))
        << sink.dump();
    out.write("end", 3);
    EXPECT_TRUE(out.flush());
    ::close(fd);
    const std::string text = readFile(path);
    ::unlink(path);
    return text;
}

} // namespace

TEST(KCHexRecordPlan, RandomImagesMatchARecordByRecordEncoder)
{
    Random r(16);
    for (int round = 0; round < 300; ++round) {
        const uint64_t size = 1 + r.below(round % 10 == 0 ? 4 * kSegment : 2000);
        const std::vector<uint8_t> data = r.bytes(size);
        const KCSaveOptions o = randomOptions(r, size);
        SCOPED_TRACE(testing::Message() << "round " << round << " base " << o.startAddress << " size " << size
                                        << " per " << o.bytesPerRecord << " segments " << o.segments.size());
        ASSERT_EQ(save("intel", data, o), referenceIntel(data, o));
        ASSERT_EQ(save("motorola", data, o), referenceMotorola(data, o));
    }
}

// Large images go to a file as blocks from two threads, placed after what the stream
// already holds; text written after them must follow on.
TEST(KCHexRecordPlan, LargeImagesWrittenInParallelMatchTheEncoder)
{
    Random r(17);
    for (int round = 0; round < 4; ++round) {
        const uint64_t size = (uint64_t(3) << 20) + r.below(kSegment);
        const std::vector<uint8_t> data = r.bytes(size);
        const KCSaveOptions o = randomOptions(r, size);
        SCOPED_TRACE(testing::Message() << "round " << round << " base " << o.startAddress << " per "
                                        << o.bytesPerRecord << " segments " << o.segments.size());
        EXPECT_EQ(saveThroughFile("intel", data, o, "head"), "head" + referenceIntel(data, o) + "end");
        EXPECT_EQ(saveThroughFile("motorola", data, o, ""), referenceMotorola(data, o) + "end");
    }
}
