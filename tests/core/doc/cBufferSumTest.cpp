#include "doc/cBufferSum.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

// The vector kernels must agree with the plain loops at every start alignment and length,
// including tails and addresses whose weights start mid-group.
TEST(cBufferSum, KernelsAgreeWithReferenceLoops)
{
    std::mt19937 rng(11);
    std::vector<uint8_t> data(5000);
    for (auto &b : data)
        b = (rng() % 4 == 0) ? 0 : uint8_t(rng());
    for (size_t offset = 0; offset < 40; ++offset) {
        for (size_t len : {0, 1, 7, 8, 15, 16, 31, 63, 64, 127, 128, 129, 1000, 4900}) {
            ASSERT_EQ(cBufferSum::byteSum(data.data() + offset, len),
                      cBufferSum::byteSumReference(data.data() + offset, len));
            for (uint64_t first : {uint64_t(0), uint64_t(offset), uint64_t(0xFFFFFFF3)})
                ASSERT_EQ(cBufferSum::fuseSum(data.data() + offset, len, first),
                          cBufferSum::fuseSumReference(data.data() + offset, len, first))
                    << offset << " " << len << " " << first;
        }
    }
}

TEST(cBufferSum, ByteSumWrapsModulo32Bits)
{
    std::vector<uint8_t> data(17000000, 0xFF); // 0xFF * 17e6 > 2^32
    EXPECT_EQ(cBufferSum::byteSum(data.data(), data.size()), uint32_t(uint64_t(0xFF) * data.size()));
}
