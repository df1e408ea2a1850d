// A CALC series that would wrap is told before it does; LAST ends the series instead.
#include "serial/KCSerialDefCtrl.h"
#include "KCSerialTestHost.h"
#include "KCTempDir.h"

#include <gtest/gtest.h>

namespace {
const unsigned HexBin = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagBin;

// Takes the next number; -1 when none is handed out.
int take(KCSerialDefCtrl &ctrl)
{
    unsigned flags = HexBin, length = 0, value = 0;
    std::string text;
    return ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, nullptr, &text, 1, 1) ? int(value) : -1;
}

bool told(const KCTestHost &host, const std::string &part)
{
    for (const std::string &m : host.messages)
        if (m.find(part) != std::string::npos)
            return true;
    return false;
}
} // namespace

TEST(KCSerialDefCtrlLast, WrapIsToldAndLastStopsTheSeries)
{
    KCSerialTestHost host;
    const std::string path = host.dir + "/w.ser";
    writeFile(path, "S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0xFE\r\nSTEP=0x1\r\n}\r\n");
    KCSerialDefCtrl wraps(&host, path);
    EXPECT_EQ(take(wraps), 0xFE);
    EXPECT_FALSE(told(host, "wraps"));
    EXPECT_EQ(take(wraps), 0xFF);
    EXPECT_TRUE(told(host, "0xFF is the last number before the series wraps at LENGTH=1"));
    EXPECT_EQ(take(wraps), 0); // without LAST it still wraps, as it always did

    // LAST at the top of the width and below it: each number once, then a clear refusal
    // that survives re-reading the file.
    for (const char *last : {"0xFF", "0x7F"}) {
        host.messages.clear();
        writeFile(path, std::string("S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0x7E\r\nSTEP=0x1\r\nLAST=") + last
                            + "\r\n}\r\n");
        KCSerialDefCtrl ctrl(&host, path);
        const int end = std::stoi(last, nullptr, 16);
        for (int n = 0x7E; n <= end; ++n)
            ASSERT_EQ(take(ctrl), n) << last;
        EXPECT_EQ(take(ctrl), -1) << last;
        EXPECT_EQ(take(ctrl), -1) << last;
        EXPECT_TRUE(told(host, "is used up")) << last;
        EXPECT_FALSE(told(host, "wraps")) << last;
    }
}
