#include "panels/KCDeviceCountModel.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

TEST(KCDeviceCountModel, UnknownCountsThenTheHostsAndTheRawTotal)
{
    KCTestHost host;
    KCDeviceCountModel model(&host);
    EXPECT_EQ(model.GetTE(TE_PASS)->text, "-------");
    EXPECT_EQ(model.GetTE(TE_FAIL)->text, "-------");
    EXPECT_EQ(model.GetTE(TE_TOTAL)->text, "-------");
    EXPECT_EQ(model.GetTE(TE_PASS_LABEL)->text, host.GetHostString(2068));
    EXPECT_EQ(model.GetTE(TE_YIELD_LABEL)->text, host.GetHostString(2071));
    EXPECT_EQ(model.GetTE(TE_PASS)->color, 0x00AF00u);
    EXPECT_EQ(model.GetTE(TE_FAIL)->color, 0xFF0000u);
    EXPECT_EQ(model.GetTE(-1), nullptr);
    EXPECT_EQ(model.GetTE(10), nullptr);

    // A negative count keeps its text; the total comes from the raw values.
    model.CfgCountInfo(5, -1);
    EXPECT_EQ(model.passText(), "5");
    EXPECT_EQ(model.failText(), "-------");
    EXPECT_EQ(model.totalText(), "4");
    model.CfgCountInfo(-3, -1);
    EXPECT_EQ(model.totalText(), "4");
}

TEST(KCDeviceCountModel, YieldTargetRateAndReset)
{
    KCTestHost host;
    KCDeviceCountModel model(&host);
    host.SetCounts(0, 0);
    host.SetTargetCount(100);
    model.DrawCountInfo(1000.0);
    EXPECT_EQ(model.GetTE(TE_YIELD)->text, "-------");
    EXPECT_EQ(model.GetTE(TE_RATE)->text, ""); // too early for a rate
    host.SetCounts(97, 3);
    model.DrawCountInfo(1000.0 + 1800.0); // 100 devices in half an hour
    EXPECT_EQ(model.GetTE(TE_PASS)->text, "97");
    EXPECT_EQ(model.GetTE(TE_TOTAL)->text, "100");
    EXPECT_EQ(model.GetTE(TE_YIELD)->text, "97.0 %");
    EXPECT_EQ(model.GetTE(TE_TARGET)->text, "Target 100: 3 left");
    EXPECT_EQ(model.GetTE(TE_RATE)->text, "200 devices per hour");

    model.resetCounts("12:00:00");
    EXPECT_EQ(host.GetPassCount(), 0);
    EXPECT_EQ(host.GetFailCount(), 0);
    ASSERT_FALSE(host.messages.empty());
    EXPECT_EQ(host.messages.back(), "Counters reset at 12:00:00: 97 passed, 3 failed.");
}
