#include "bufops/KCShuffleBufferInitData.h"
#include "bufops/cLaneNames.h"

#include <gtest/gtest.h>

TEST(cLaneNames, NamesEveryLaneOfTheKnownPairsAndNoneOfOthers)
{
    using Names = std::vector<std::string>;
    EXPECT_EQ(cLaneNames::Get(8, 16), (Names{"Even Byte", "Odd  Byte"}));
    EXPECT_EQ(cLaneNames::Get(8, 32), (Names{"Low  Word - Even Byte", "Low  Word - Odd  Byte", "High Word - Even Byte",
                                             "High Word - Odd  Byte"}));
    const Names of64 = cLaneNames::Get(8, 64);
    ASSERT_EQ(of64.size(), 8u);
    EXPECT_EQ(of64[1], "Low  Word1 - Odd  Byte");
    EXPECT_EQ(of64[6], "High Word2 - Even Byte");
    EXPECT_EQ(cLaneNames::Get(16, 32), (Names{"Low  Word", "High Word"}));
    EXPECT_EQ(cLaneNames::Get(16, 64), (Names{"Low  Word1", "High Word1", "Low  Word2", "High Word2"}));
    EXPECT_EQ(cLaneNames::Get(32, 64), (Names{"Low  32Bit", "High 32Bit"}));
    EXPECT_TRUE(cLaneNames::Get(8, 8).empty());
    EXPECT_TRUE(cLaneNames::Get(16, 8).empty());
    EXPECT_TRUE(cLaneNames::Get(8, 128).empty());
    EXPECT_EQ(cLaneNames::NameOf(16, 48, 2), "Lane 2");
}

TEST(KCShuffleBufferInitData, StartsAtZeroAndCopiesEveryField)
{
    KCShuffleBufferInitData a;
    EXPECT_EQ(a.m_sourceWidth | a.m_destWidth | a.m_lane | a.m_firstAddress | a.m_lastAddress | a.m_destDocIndex, 0u);
    a.m_sourceWidth = 8, a.m_destWidth = 32, a.m_lane = 3, a.m_firstAddress = 4, a.m_lastAddress = 5, a.m_destDocIndex = 6;
    KCShuffleBufferInitData b(a), c;
    c = a;
    for (const KCShuffleBufferInitData *d : {&b, &c})
        EXPECT_EQ(std::vector<uint32_t>({d->m_sourceWidth, d->m_destWidth, d->m_lane, d->m_firstAddress,
                                         d->m_lastAddress, d->m_destDocIndex}),
                  (std::vector<uint32_t>{8, 32, 3, 4, 5, 6}));
}
