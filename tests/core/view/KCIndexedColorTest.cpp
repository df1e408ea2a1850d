#include "view/KCIndexedColor.h"

#include <gtest/gtest.h>

TEST(KCIndexedColor, DefaultPairsLookupAndAppend)
{
    KCIndexedColor colors;
    uint32_t text = 1, back = 1;
    colors.GetColorOf(KCIndexedColor::WhiteOnBlue, text, back);
    EXPECT_EQ(text, 0xFFFFFFu);
    EXPECT_EQ(back, 0x0000FFu);
    colors.GetColorOf(KCIndexedColor::BlackOnLavender, text, back);
    EXPECT_EQ(back, 0xD3D4FFu);
    colors.GetColorOf(KCIndexedColor::BlackOnBrown, text, back);
    EXPECT_EQ(text, 0u);
    EXPECT_EQ(back, 0xC86432u);

    // A second object shares the table and registers nothing again.
    const int before = KCIndexedColor::count();
    KCIndexedColor again;
    EXPECT_EQ(KCIndexedColor::count(), before);
    EXPECT_EQ(again.GetIndexOf(0xFFFFFF, 0x0000FF), KCIndexedColor::WhiteOnBlue);
    const int added = again.GetIndexOf(0x123456, 0x654321);
    EXPECT_EQ(added, before);
    EXPECT_EQ(colors.GetIndexOf(0x123456, 0x654321), added);
    EXPECT_EQ(colors.GetIndexOf(0x123456, 0x000000), added + 1);

    colors.GetColorOf(-1, text, back);
    colors.GetColorOf(KCIndexedColor::count(), text, back);
    EXPECT_EQ(back, 0xC86432u);
}

TEST(KCIndexedColor, MixWithBlendsEachChannelAndTruncates)
{
    KCIndexedColor colors;
    // Pair 2 is white on blue.
    uint32_t text = 0x000000, back = 0xFF0000;
    colors.MixWith(KCIndexedColor::WhiteOnBlue, text, back, 0.5);
    EXPECT_EQ(text, 0x7F7F7Fu);
    EXPECT_EQ(back, 0x7F007Fu);

    text = 0x102030;
    back = 0x405060;
    colors.MixWith(KCIndexedColor::WhiteOnBlue, text, back, 0.0);
    EXPECT_EQ(text, 0x102030u);
    EXPECT_EQ(back, 0x405060u);
    colors.MixWith(KCIndexedColor::WhiteOnBlue, text, back, 1.0);
    EXPECT_EQ(text, 0xFFFFFFu);
    EXPECT_EQ(back, 0x0000FFu);
}
