#include "host/KCFormat.h"

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

#include "host/KCMessageMarks.h"

TEST(KCMessageMarks, SplitsMarksFromText)
{
    const auto p1 = KCMessageMarks::parse("\xA7" "EWFailed to read file: x");
    EXPECT_EQ(p1.marks, "EW");
    EXPECT_EQ(p1.text, "Failed to read file: x");
    EXPECT_EQ(p1.severity, KCMessageMarks::Error);
    const auto p2 = KCMessageMarks::parse("\xA7" "WWNo Device Selected.");
    EXPECT_EQ(p2.marks, "WW");
    EXPECT_EQ(p2.text, "No Device Selected.");
    const auto p3 = KCMessageMarks::parse(KCMessageMarks::prefix(KCMessageMarks::Warning) + "SVF b.svf");
    EXPECT_EQ(p3.marks, "W");
    EXPECT_EQ(p3.text, "SVF b.svf");
    EXPECT_EQ(KCMessageMarks::parse("\xA7" "Eb.hex : line 2").text, "b.hex : line 2");
    EXPECT_EQ(KCMessageMarks::parse("plain").severity, KCMessageMarks::Plain);
    EXPECT_EQ(KCMessageMarks::parse("\xA7").text, "");
}
