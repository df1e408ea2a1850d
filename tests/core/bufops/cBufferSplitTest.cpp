#include "bufops/cBufferSplit.h"
#include "bufops/cLaneError.h"
#include "doc/cByteBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <random>

namespace {

int codeOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (int code) {
        return code;
    }
    return 0;
}

} // namespace

TEST(cBufferSplit, ConstructorAndRangeChecksInOrder)
{
    cByteBuffer a(16), b(16);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 0, b, 12); }), cLaneError::SourceWidthZero);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 12, b, 0); }), cLaneError::SourceWidthNotBytes);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 8, b, 0); }), cLaneError::DestWidthZero);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 8, b, 12); }), cLaneError::DestWidthNotBytes);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 8, b, 8); }), cLaneError::SourceNotWider);
    EXPECT_EQ(codeOf([&] { cBufferSplit(a, 48, b, 32); }), cLaneError::SourceNotMultipleOfDest);
    cBufferSplit split(a, 16, b, 8);
    EXPECT_EQ(codeOf([&] { split.Run(0, 0, 0); }), cLaneError::RangeNotWholeUnits);
    EXPECT_EQ(codeOf([&] { split.Run(2, 6, 0); }), cLaneError::RangeNotWholeUnits);
}

TEST(cBufferSplit, TakesTheLaneOfEveryUnit)
{
    cByteBuffer wide(16), narrow(16, 0);
    for (int i = 0; i < 16; ++i)
        wide.SetAt(i, uint8_t(0xA0 + i));
    cBufferSplit bytes(wide, 16, narrow, 8);
    bytes.Run(0, 7, 1);
    EXPECT_EQ(std::vector<uint8_t>(narrow.data(), narrow.data() + 5), (std::vector<uint8_t>{0xA1, 0xA3, 0xA5, 0xA7, 0}));
    bytes.Run(0, 7, 0);
    EXPECT_EQ(std::vector<uint8_t>(narrow.data(), narrow.data() + 4), (std::vector<uint8_t>{0xA0, 0xA2, 0xA4, 0xA6}));

    // 32 into 16, "High Word": bytes 2 and 3 of each unit, from (first / 4) * 2 on.
    cByteBuffer high(16, 0);
    cBufferSplit words(wide, 32, high, 16);
    EXPECT_EQ(words.GetDestStart(8), 4u);
    EXPECT_EQ(words.GetDestEnd(15), 7u);
    words.Run(8, 15, 1);
    EXPECT_EQ(std::vector<uint8_t>(high.data(), high.data() + 9),
              (std::vector<uint8_t>{0, 0, 0, 0, 0xAA, 0xAB, 0xAE, 0xAF, 0}));
}

TEST(cBufferSplit, RefusesAtTheFirstByteThatDoesNotFitKeepingThoseBefore)
{
    cByteBuffer wide(16, 0x22), narrow(3, 0);
    cBufferSplit split(wide, 32, narrow, 16);
    EXPECT_EQ(codeOf([&] { split.Run(0, 15, 0); }), cLaneError::ByteRefused);
    EXPECT_EQ(std::vector<uint8_t>(narrow.data(), narrow.data() + 3), (std::vector<uint8_t>{0x22, 0x22, 0x22}));
}

TEST(cBufferSplit, FastCopyGivesTheBytesOfThePerByteCopy)
{
    std::mt19937 rng(11);
    const uint32_t widths[] = {8, 16, 32, 64};
    cByteBuffer wide(8192);
    for (uint64_t i = 0; i < wide.size(); ++i)
        wide.SetAt(i, uint8_t(rng()));
    for (uint32_t w : widths) {
        for (uint32_t n : widths) {
            if (n >= w)
                continue;
            for (uint32_t lane = 0; lane < w / n; ++lane) {
                const uint64_t first = rng() % 300, last = first + (1 + rng() % 500) * (w / 8) - 1;
                cByteBuffer fast(4096, 0xFF), slow(4096, 0xFF);
                cBufferSplit(wide, w, fast, n).Run(first, last, lane);
                cBufferSplit(wide, w, slow, n).RunPerByte(first, last, lane);
                ASSERT_EQ(0, std::memcmp(fast.data(), slow.data(), fast.size())) << w << "->" << n << " lane " << lane;
            }
        }
    }
}

TEST(cBufferSplit, AllLanesInOnePassGiveTheBytesOfOneLaneAfterTheOther)
{
    std::mt19937 rng(13);
    const uint32_t widths[] = {8, 16, 32, 64};
    cByteBuffer wide(8192);
    for (uint64_t i = 0; i < wide.size(); ++i)
        wide.SetAt(i, uint8_t(rng()));
    for (uint32_t w : widths) {
        for (uint32_t n : widths) {
            if (n >= w)
                continue;
            // Long enough for the vector loops, with a tail after them.
            const uint64_t first = 8 * (rng() % 40), last = first + (100 + rng() % 400) * (w / 8) - 1;
            std::vector<std::unique_ptr<cByteBuffer>> fast, slow;
            std::vector<KCByteArray *> lanes;
            for (uint32_t lane = 0; lane < w / n; ++lane) {
                fast.push_back(std::make_unique<cByteBuffer>(4096, 0xFF));
                slow.push_back(std::make_unique<cByteBuffer>(4096, 0xFF));
                lanes.push_back(fast.back().get());
                cBufferSplit(wide, w, *slow.back(), n).RunPerByte(first, last, lane);
            }
            cBufferSplit::RunAllLanes(wide, w, lanes, n, first, last);
            for (uint32_t lane = 0; lane < w / n; ++lane)
                ASSERT_EQ(0, std::memcmp(fast[lane]->data(), slow[lane]->data(), 4096)) << w << "->" << n << " lane " << lane;
        }
    }
}
