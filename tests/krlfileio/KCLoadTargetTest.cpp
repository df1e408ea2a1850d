#include "KCLoadTarget.h"
#include "KCFormatTestTools.h"

using namespace KCFormatTest;

namespace {

struct Fixture
{
    explicit Fixture(KCLoadOptions o, std::vector<uint8_t> initial = {}) : array(std::move(initial)), options(o) {}
    void put(uint64_t address, std::vector<uint8_t> bytes) { EXPECT_TRUE(target.put(address, bytes.data(), bytes.size())); }
    void finish() { target.finish(sink, "f"); }

    KCVectorByteArray array;
    KCLoadOptions options;
    KCLoadResult result;
    RecordingSink sink;
    KCLoadTarget target{array, options, result};
};

} // namespace

TEST(KCLoadTarget, RangeSkipsAndCountsOnce)
{
    KCLoadOptions o;
    o.rangeStart = 0x1000;
    o.rangeLength = 0x10;
    o.fill = 0x00;
    Fixture f(o);
    f.put(0x0FFE, {1, 2, 3, 4});
    f.put(0x100E, {5, 6, 7});
    f.put(0x2000, {8});
    f.finish();
    EXPECT_EQ(f.array.bytes(), (std::vector<uint8_t>{3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 6}));
    EXPECT_EQ(f.result.skipped, 4u);
    EXPECT_EQ(f.sink.messages.size(), 1u);
    EXPECT_EQ(f.result.ranges, (std::vector<std::pair<uint64_t, uint64_t>>{{0x1000, 0x1001}, {0x100E, 0x100F}}));
    EXPECT_EQ(f.result.lowest, 0u);
    EXPECT_EQ(f.result.highest, 15u);
}

TEST(KCLoadTarget, OverlapsMergeAndWarnOnlyWhenValuesDiffer)
{
    Fixture same{KCLoadOptions{}};
    same.put(0x20, {1, 2, 3, 4});
    same.put(0x00, {9, 9});
    same.put(0x22, {3, 4, 5});
    same.put(0x10, {7});
    same.put(0x02, {9});
    same.finish();
    EXPECT_TRUE(same.sink.messages.empty());
    EXPECT_EQ(same.result.ranges,
              (std::vector<std::pair<uint64_t, uint64_t>>{{0x00, 0x02}, {0x10, 0x10}, {0x20, 0x24}}));
    EXPECT_EQ(same.result.bytesLoaded, 9u);

    Fixture differ{KCLoadOptions{}};
    differ.put(0x00, {1, 2, 3, 4, 5, 6});
    differ.put(0x08, {1});
    differ.put(0x03, {0, 0, 0, 0, 0, 0});
    differ.put(0x01, {7});
    differ.finish();
    EXPECT_EQ(differ.array.bytes(), (std::vector<uint8_t>{1, 7, 3, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(differ.sink.count(KCFileMessage::Warning), 1u);
    EXPECT_EQ(differ.result.ranges.size(), 1u);
}

TEST(KCLoadTarget, GrowsWithFillAndKeepsAFixedBuffer)
{
    KCLoadOptions o;
    o.fill = 0xEE;
    Fixture grow(o, {1, 2});
    for (uint64_t a = 0; a < 3000000; a += 16)
        grow.put(a + 8, std::vector<uint8_t>(16, uint8_t(a)));
    grow.finish();
    EXPECT_EQ(grow.array.size(), 3000008u);
    EXPECT_EQ(slice(grow.array.bytes(), 0, 9), (std::vector<uint8_t>{1, 2, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0}));

    o.grow = false;
    Fixture fixed(o, std::vector<uint8_t>(4, 0));
    fixed.put(2, {1, 2, 3, 4});
    fixed.finish();
    EXPECT_EQ(fixed.array.bytes(), (std::vector<uint8_t>{0, 0, 1, 2}));
    EXPECT_EQ(fixed.result.skipped, 2u);
    EXPECT_TRUE(fixed.sink.contains(KCFileMessage::Warning, "beyond the end of the buffer"));
}
