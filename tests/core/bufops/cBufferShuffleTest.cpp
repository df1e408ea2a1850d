#include "bufops/cBufferShuffle.h"
#include "bufops/cLaneError.h"
#include "doc/cByteBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
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

TEST(cBufferShuffle, ConstructorChecksWidthsInOrder)
{
    cByteBuffer a(16), b(16);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 0, b, 12); }), cLaneError::SourceWidthZero);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 12, b, 0); }), cLaneError::SourceWidthNotBytes);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 8, b, 0); }), cLaneError::DestWidthZero);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 8, b, 12); }), cLaneError::DestWidthNotBytes);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 48, b, 16); }), cLaneError::DestNotMultipleOfSource);
    EXPECT_EQ(codeOf([&] { cBufferShuffle(a, 16, b, 8); }), cLaneError::DestNotMultipleOfSource);
    EXPECT_EQ(cBufferShuffle(a, 16, b, 48).GetLaneCount(), 3u);
}

TEST(cBufferShuffle, MapsIntoTheLaneAndChecksTheLaneAgainstTheUnitBytes)
{
    cByteBuffer narrow(0x100), wide(0x200);
    for (int i = 0; i < 0x100; ++i)
        narrow.SetAt(i, uint8_t(i));
    cBufferShuffle odd(narrow, 8, wide, 16);
    EXPECT_EQ(odd.MapAddress(0x7F, 1), 0xFFu);
    EXPECT_EQ(odd.GetDestStart(0), 0u);
    EXPECT_EQ(odd.GetDestEnd(0xFF), 0x1FFu);
    odd.Run(0, 0xFF, 1);
    for (int a = 0; a < 0x100; ++a) {
        ASSERT_EQ(wide.GetAt(2 * a + 1), a);
        ASSERT_EQ(wide.GetAt(2 * a), 0xFF);
    }

    // 16 into 32: lanes 2 and 3 are below D = 4 and land in the next unit; 4 is not.
    cBufferShuffle words(narrow, 16, wide, 32);
    EXPECT_EQ(words.MapAddress(5, 1), 8u + 2 + 1);  // unit 8..11
    EXPECT_EQ(words.MapAddress(5, 3), 12u + 2 + 1); // the unit after it
    EXPECT_EQ(codeOf([&] { words.MapAddress(5, 4); }), cLaneError::LaneOutsideUnit);
    EXPECT_EQ(codeOf([&] { words.Run(0, 3, 4); }), cLaneError::LaneOutsideUnit);

    // Equal widths: an identity copy over the range only.
    cByteBuffer same(0x100, 0);
    cBufferShuffle identity(narrow, 8, same, 8);
    identity.Run(0x10, 0x1F, 0);
    EXPECT_EQ(same.GetAt(0x0F), 0);
    EXPECT_EQ(same.GetAt(0x10), 0x10);
    EXPECT_EQ(same.GetAt(0x1F), 0x1F);
    EXPECT_EQ(same.GetAt(0x20), 0);
}

TEST(cBufferShuffle, RefusesAtTheFirstByteThatDoesNotFitKeepingThoseBefore)
{
    cByteBuffer narrow(8, 0x11), wide(9, 0);
    cBufferShuffle shuffle(narrow, 8, wide, 16);
    EXPECT_EQ(codeOf([&] { shuffle.Run(0, 7, 0); }), cLaneError::ByteRefused);
    // Addresses 0..4 map to 0, 2, 4, 6, 8; address 5 to 10, past the end.
    for (int a = 0; a <= 8; a += 2)
        EXPECT_EQ(wide.GetAt(a), 0x11);
    EXPECT_EQ(wide.GetAt(7), 0);
}

TEST(cBufferShuffle, FastCopyGivesTheBytesOfThePerByteCopy)
{
    std::mt19937 rng(7);
    const uint32_t widths[] = {8, 16, 32, 64};
    cByteBuffer narrow(4096);
    for (uint64_t i = 0; i < narrow.size(); ++i)
        narrow.SetAt(i, uint8_t(rng()));
    for (uint32_t n : widths) {
        for (uint32_t w : widths) {
            if (w < n)
                continue;
            for (uint32_t lane = 0; lane < w / 8; ++lane) {
                const uint64_t first = rng() % 200, last = first + rng() % 300;
                cByteBuffer fast(8 * 4096, 0xFF), slow(8 * 4096, 0xFF);
                cBufferShuffle(narrow, n, fast, w).Run(first, last, lane);
                cBufferShuffle(narrow, n, slow, w).RunPerByte(first, last, lane);
                ASSERT_EQ(0, std::memcmp(fast.data(), slow.data(), fast.size())) << n << "->" << w << " lane " << lane;
            }
        }
    }
}
