// The virtual device keeps the rules of flash and fails as often as it is told to.
#include "engine/KCVirtualDeviceEngine.h"
#include "KCTempDir.h"

#include <gtest/gtest.h>

namespace {
constexpr uint64_t Size = 4096;
constexpr int Devices = 100;

std::vector<uint8_t> pattern(uint8_t seed)
{
    std::vector<uint8_t> v(Size);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<uint8_t>(i * 7 + seed);
    return v;
}
} // namespace

TEST(KCVirtualDeviceEngine, ProgramsOnlyOverErasedBits)
{
    TempDir dir;
    KCVirtualDeviceEngine chip(dir.file("chip.bin"), Size);
    EXPECT_TRUE(chip.blankCheck().passed()); // a new device comes erased
    const std::vector<uint8_t> a = pattern(1), b = pattern(2);
    ASSERT_TRUE(chip.program(a).passed());
    EXPECT_TRUE(chip.verify(a).passed());
    EXPECT_FALSE(chip.blankCheck().passed());
    const KCEngineResult over = chip.program(b);
    EXPECT_FALSE(over.passed());
    EXPECT_NE(over.message.find("without an erase"), std::string::npos) << over.message;
    EXPECT_FALSE(chip.verify(b).passed());
    ASSERT_TRUE(chip.erase().passed());
    EXPECT_TRUE(chip.blankCheck().passed());
    EXPECT_TRUE(chip.autoProgram(b).passed());
    std::vector<uint8_t> back;
    ASSERT_TRUE(chip.read(&back).passed());
    EXPECT_EQ(back, b);
}

TEST(KCVirtualDeviceEngine, FaultRatesAreSeededAndOnlyVerifyFindsWeakCells)
{
    TempDir dir;
    std::string why;
    auto count = [&](const std::string &spec, int *programFails, int *verifyFails) {
        auto chip = KCVirtualDeviceEngine::fromSpec(dir.file("c.bin") + spec, Size, &why);
        ASSERT_TRUE(chip) << why;
        *programFails = *verifyFails = 0;
        for (int i = 0; i < Devices; ++i) {
            ASSERT_TRUE(chip->erase().passed());
            if (!chip->program(pattern(3)).passed())
                ++*programFails;
            else if (!chip->verify(pattern(3)).passed())
                ++*verifyFails;
        }
    };
    int p1, v1, p2, v2;
    count(",fail=0.2,verify-fault=0.1,seed=7", &p1, &v1);
    count(",fail=0.2,verify-fault=0.1,seed=7", &p2, &v2);
    EXPECT_EQ(p1, p2);
    EXPECT_EQ(v1, v2);
    EXPECT_GT(p1, Devices / 10);
    EXPECT_LT(p1, Devices * 3 / 10);
    EXPECT_GT(v1, 0);
    count(",seed=7", &p1, &v1);
    EXPECT_EQ(p1 + v1, 0);

    for (const char *bad : {"", ",fail=2", ",fail=x", ",speed=3", ",seed=-1"})
        EXPECT_FALSE(KCVirtualDeviceEngine::fromSpec(std::string(*bad == ',' ? "f" : "") + bad, Size, &why)) << bad;
}
