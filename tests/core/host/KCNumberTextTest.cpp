#include "host/KCNumberText.h"

#include <gtest/gtest.h>

TEST(KCNumberText, ReadsWhatPeopleTypeAndRefusesTheRest)
{
    uint64_t v = 7;
    EXPECT_TRUE(KCNumberText::parse(" 0x1f ", v));
    EXPECT_EQ(v, 0x1Fu);
    EXPECT_TRUE(KCNumberText::parse("0XFFFFFFFF", v, 0xFFFFFFFF));
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_FALSE(KCNumberText::parse("0x100000000", v, 0xFFFFFFFF));
    EXPECT_TRUE(KCNumberText::parse("18446744073709551615", v));
    EXPECT_FALSE(KCNumberText::parse("18446744073709551616", v));
    EXPECT_TRUE(KCNumberText::parse("ff", v, 0xFF, 16)); // a field that shows hexadecimal
    EXPECT_EQ(v, 0xFFu);
    for (const char *bad : {"", " ", "0x", "1f", "12 3", "-1", "+1", "0x1g"})
        EXPECT_FALSE(KCNumberText::parse(bad, v)) << bad;
    EXPECT_EQ(v, 0xFFu); // untouched by a refusal

    uint64_t a = 0, b = 0;
    EXPECT_TRUE(KCNumberText::parseRange("0x80000000:0xFFFFFFFF", a, b, 0xFFFFFFFF));
    EXPECT_EQ(a, 0x80000000u);
    EXPECT_EQ(b, 0xFFFFFFFFu);
    EXPECT_TRUE(KCNumberText::parseRange("5:5", a, b));
    EXPECT_FALSE(KCNumberText::parseRange("6:5", a, b));
    EXPECT_FALSE(KCNumberText::parseRange("5", a, b));
    EXPECT_FALSE(KCNumberText::parseRange("0:0x100000000", a, b, 0xFFFFFFFF));
}
