#include "KCFormat.h"

#include <gtest/gtest.h>

TEST(KCFormat, FormatsLikePrintfAndNeverCrashes)
{
    EXPECT_EQ(KCFormat::format("%08X-%02X", {0x1234, 0xA}), "00001234-0A");
    EXPECT_EQ(KCFormat::format("%s: %d%%", {"a.hex", -5}), "a.hex: -5%");
    EXPECT_EQ(KCFormat::format("%-4s|", {"ab"}), "ab  |");
    // missing argument, unknown conversion, dangling percent
    EXPECT_EQ(KCFormat::format("%d and %s", {1}), "1 and ");
    EXPECT_EQ(KCFormat::format("%q %", {1}), "%q %");
    EXPECT_EQ(KCFormat::format("%X", {-1}), "FFFFFFFF");
    EXPECT_EQ(KCFormat::argumentCount("%08X %% %s %q"), 2);
}
