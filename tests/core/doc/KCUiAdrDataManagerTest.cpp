#include "doc/KCUiAdrDataManager.h"
#include "doc/TAG_BUFFER_PARAM.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr uint32_t NA = 0xFFFFFFFFu;
const std::string Byte = "BYTEVIEW", Word = "WORDVIEW", Jed = "JEDVIEW", Off = "BYTEVIEWFUJITSU_0x1";

struct Fixture : testing::Test
{
    Fixture()
    {
        algo.BSA = 0x100;
        algo.BEA = 0x1FF;
        algo.DSA = 0x10;
        algo.DMA = 0x7FFF;
        algo.bufferSize = 0x8000;
        algo.dataWidth = 16;
        algo.addressOffset = 0x1000;
    }
    TAG_BUFFER_PARAM param;
    TAG_UI_ALGODATA_KRL3 algo{};
    KCUiAdrDataManager m{&param, &algo};
};

} // namespace

TEST(KCUiAdrDataManagerUnits, ConversionsAndInvalidResults)
{
    using M = KCUiAdrDataManager;
    EXPECT_EQ(M::CalcSize(4, 4), 1u);
    EXPECT_EQ(M::CalcByteBSA(0x10), 0x20u);
    EXPECT_EQ(M::CalcByteBEA(0x10), 0x21u);
    EXPECT_EQ(M::CalcWordBA(0x21), 0x10u);
    EXPECT_EQ(M::CalcDEA(8, 0x10, 4), 0x13u);
    EXPECT_EQ(M::CalcDEA(16, 0, 7), 2u); // an odd byte loses its last byte in words
    EXPECT_EQ(M::CalcDEA(32, 0, 8), 1u);
    EXPECT_EQ(M::CalcDEA(64, 0, 16), 1u);
    EXPECT_EQ(M::CalcDEA(12, 0, 16), NA);
    EXPECT_EQ(M::CalcDSZ(64, 3), 24u);
    EXPECT_EQ(M::CalcDSZ(7, 3), NA);
    EXPECT_EQ(M::CalcDispBEA(16, 4, 8), 7u);
    EXPECT_EQ(M::CalcDispBEA(32, 4, 8), NA);
    EXPECT_EQ(M::GetFileDisplayBA(1, 0x21), 0x10u);
    EXPECT_EQ(M::GetActualBSA(1, 0x10), 0x20u);
    EXPECT_EQ(M::GetActualBEA(1, 0x10), 0x21u);
    EXPECT_EQ(M::GetActualBEA(2, 0x10), NA);
    EXPECT_EQ(M::GetBufOrgLayout(Word), BUFORG_WORD);
    EXPECT_EQ(M::GetBufOrgLayout("wordview"), BUFORG_BYTE); // case-sensitive
}

TEST_F(Fixture, LoadAndSaveRangesWithOffsetFlags)
{
    m.SetActualLBSA(Word, 0x10, DISPLAY_PLAIN);
    m.SetActualLBEA(Word, 0x1F, DISPLAY_PLAIN);
    EXPECT_EQ(param.LBSA, 0x20u);
    EXPECT_EQ(param.LBEA, 0x3Fu);
    EXPECT_EQ(m.GetFileDisplayLBEA(Word, DISPLAY_PLAIN), 0x1Fu);

    m.SetActualSBSA(Off, 0x1010, DISPLAY_WITH_OFFSET);
    m.SetActualSBEA(Off, 0x10FF, DISPLAY_WITH_OFFSET);
    EXPECT_EQ(param.SBSA, 0x10u);
    EXPECT_EQ(param.SBEA, 0xFFu);
    EXPECT_EQ(m.GetFileDisplaySBSA(Off, DISPLAY_WITH_OFFSET), 0x1010u);
    EXPECT_EQ(m.GetFileDisplaySBSA(Off, DISPLAY_PLAIN), 0x10u);

    // With the offset flag but no device record nothing is stored.
    KCUiAdrDataManager noDevice(&param, nullptr);
    noDevice.SetActualLBSA(Byte, 0x5000, DISPLAY_WITH_OFFSET);
    EXPECT_EQ(param.LBSA, 0x20u);
    noDevice.SetActualLBSA(Byte, 0x5000, DISPLAY_PLAIN);
    EXPECT_EQ(param.LBSA, 0x5000u);
    EXPECT_EQ(KCUiAdrDataManager().GetFileDisplayLBSA(Byte, DISPLAY_PLAIN), NA);
}

TEST_F(Fixture, DisplayQueriesByLayout)
{
    EXPECT_EQ(m.DOGetDisplayBSA(Off), 0x1100u);
    EXPECT_EQ(m.DOGetDisplayBSA(Jed), 0x100u);
    EXPECT_EQ(m.DOGetDisplayBSA(Word), 0x80u);
    EXPECT_EQ(m.DOGetDisplayBEA(Word), 0xFFu);
    EXPECT_EQ(m.DOGetDisplayBMA(Byte), 0x7FFFu);
    EXPECT_EQ(m.DOGetDisplayBMA(Word), 0x3FFFu);
    EXPECT_EQ(m.DOGetDisplayDSA(8, Off), 0x1010u);
    EXPECT_EQ(m.DOGetDisplayDSA(32, Off), 0x10u);
    EXPECT_EQ(m.DOGetDisplayDSA(64, Byte), NA); // 64 is known to CalcDEA but not here
    EXPECT_EQ(m.DOGetDisplayDEA(16, Word), 0x10u + 0x80 - 1);
    EXPECT_EQ(m.DOGetDisplayDEA(64, Word), NA);
    EXPECT_EQ(m.DOGetDisplayDMA(99, Off), 0x8FFFu);

    EXPECT_EQ(m.DOGetControlBSZ(0x10, 0x1F, Word), 0x20u);
    EXPECT_EQ(m.DOGetControlBSZ(0x0FFF, 0x1FFF, Off), NA);
    EXPECT_EQ(m.DOGetDisplayDEA(8, 0x1000, 0x10FF, 0x0FFF, Off), NA);
    EXPECT_EQ(m.DOGetDisplayDEA(8, 0x1000, 0x10FF, 0x1000, Off), 0x10FFu);
    EXPECT_EQ(m.DOGetDisplayDEA(16, 5, 4, 0, Byte), NA); // empty range
    EXPECT_EQ(m.DOGetDisplayBEA(16, 0, 3, 0x20, Word), 0x23u);
    EXPECT_EQ(m.DOGetDisplayBEA(8, 0, 3, 0x20, Off), 0x23u);

    for (const std::string bad : {"", "byteview", "BYTEVIEWFUJITSU", "BYTEVIEW_PIC18F_0x2"}) {
        EXPECT_EQ(m.DOGetDisplayBSA(bad), NA) << bad;
        EXPECT_EQ(m.DOGetDisplayBEA(bad), NA) << bad;
        EXPECT_EQ(m.DOGetDisplayBMA(bad), NA) << bad;
        EXPECT_EQ(m.DOGetDisplayBEA(8, 0, 3, 0, bad), NA) << bad;
    }
}

TEST_F(Fixture, SaveTypedRangesIntoTheDeviceRecord)
{
    m.DOSaveABI(0x10, 0x1F, 0, 7, Word);
    EXPECT_EQ(algo.BSA, 0x20u);
    EXPECT_EQ(algo.BEA, 0x3Fu);
    EXPECT_EQ(algo.DEA, 7u);

    m.DOSaveABI(0x1000, 0x10FF, 0x1000, 0x10FF, Off);
    EXPECT_EQ(algo.BSA, 0u);
    EXPECT_EQ(algo.BEA, 0xFFu);
    EXPECT_EQ(m.DOGetDisplayBSA(Off), 0x1000u);

    const TAG_UI_ALGODATA_KRL3 before = algo;
    m.DOSaveABI(1, 2, 3, 4, "BYTEVIEW ");
    EXPECT_EQ(std::memcmp(&before, &algo, sizeof algo), 0);
}

TEST_F(Fixture, ConfigurationSteps)
{
    param.LBSA = 0x40;
    param.LBEA = 0x7F;
    m.CfgOnLoadFile(); // flag clear: nothing
    EXPECT_EQ(algo.BSA, 0x100u);

    param.loadRangeFromDevice = 1;
    m.CfgOnLoadFile();
    EXPECT_EQ(algo.BSA, 0x40u);
    EXPECT_EQ(algo.DEA, 0x10u + 0x20 - 1); // words of the device width

    algo.dataWidth = 12; // no DEA for an unknown width
    algo.DEA = 0x55;
    m.CfgOnLoadFile();
    EXPECT_EQ(algo.DEA, 0x55u);

    m.CfgSelectConditionFile(); // always bytes
    EXPECT_EQ(algo.DEA, 0x10u + 0x40 - 1);

    algo.BSA = 0x200;
    algo.BEA = 0x2FF;
    param.saveRangeFromDevice = 1;
    m.CfgSelectConditionDevice(); // range not valid: nothing
    EXPECT_EQ(param.LBSA, 0x40u);
    algo.deviceRangeValid = 1;
    param.loadRangeFromDevice = 0;
    m.CfgOnDeviceOptionEdit();
    EXPECT_EQ(param.LBSA, 0x40u);
    EXPECT_EQ(param.SBSA, 0x200u);
    EXPECT_EQ(param.SBEA, 0x2FFu);
}
