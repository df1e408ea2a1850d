#include "devopt/KCOptionPageLibrary.h"
#include "devopt/KCOptionPageListener.h"
#include "devopt/KCOptionPageModel.h"
#include "doc/KCAlgoKeys.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// Control ids of the universal action-options page.
constexpr uint32_t IdCompareId = 0x49E;   // byte 75, 0x40
constexpr uint32_t IdFirmware = 0x49F;    // key "PGMFW"
constexpr uint32_t IdSendData = 0x4A0;    // key "SNDDTA"
constexpr uint32_t IdChipErase = 0x453;   // byte 76, 0x10
constexpr uint32_t IdBlankCheck = 0x46D;  // byte 74, 0x01
constexpr uint32_t IdProtect = 0x7AE;     // byte 74, 0x10
constexpr uint32_t IdSequential = 0x440;  // byte 74, 0x20 clear
constexpr uint32_t IdParallel = 0x441;    // byte 74, 0x20 set
constexpr uint32_t IdDetails = 0x469;
constexpr uint32_t IdModeText = 0x442;

const KCOptionPageDesc &page(const char *name)
{
    const KCOptionPageDesc *p = KCOptionPageLibrary::shared().find(name);
    EXPECT_NE(p, nullptr) << name;
    return *p;
}

uint8_t &byteAt(TAG_UI_ALGODATA_KRL3 &r, size_t offset)
{
    return reinterpret_cast<uint8_t *>(&r)[offset];
}

// Records every state shown and, like a real widget, echoes it back as a notification.
struct EchoingView : KCOptionPageListener
{
    KCOptionPageModel *model = nullptr;
    std::map<uint32_t, KCControlState> shown;
    void controlRefreshed(const cParamStcBase &c, const KCControlState &s) override
    {
        shown[c.id] = s;
        model->setChecked(c.id, !s.checked);
        model->setIndex(c.id, s.index + 1);
        model->editChanged(c.id, "77");
    }
};

} // namespace

TEST(KCOptionPageModel, UniversalActionPageShowsAndWritesItsBitsAndKeys)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"PGMFW", 1}}, {}));
    byteAt(r, 74) = 0x25; // blank check, verify, parallel
    byteAt(r, 75) = 0x40;
    KCOptionPageModel m(page("KCActOptDlg_ActOptions_UNIV2"), r);
    m.Refresh();
    EXPECT_TRUE(m.state(IdBlankCheck).checked);
    EXPECT_FALSE(m.state(IdProtect).checked);
    EXPECT_TRUE(m.state(IdParallel).checked);
    EXPECT_FALSE(m.state(IdSequential).checked);
    EXPECT_TRUE(m.state(IdCompareId).checked);
    EXPECT_FALSE(m.state(IdChipErase).checked);
    EXPECT_TRUE(m.state(IdFirmware).checked);
    EXPECT_FALSE(m.state(IdSendData).checked) << "a key the record lacks shows cleared";

    m.setChecked(IdSequential, true);
    EXPECT_EQ(byteAt(r, 74), 0x05);
    EXPECT_TRUE(m.state(IdSequential).checked);
    EXPECT_FALSE(m.state(IdParallel).checked) << "the refresh after a change lets the others follow";
    m.setChecked(IdParallel, false); // unchecking a radio writes nothing
    EXPECT_EQ(byteAt(r, 74), 0x05);
    m.setChecked(IdProtect, true);
    m.setChecked(IdChipErase, true);
    m.setChecked(IdCompareId, false);
    EXPECT_EQ(byteAt(r, 74), 0x15);
    EXPECT_EQ(byteAt(r, 76), 0x10);
    EXPECT_EQ(byteAt(r, 75), 0x00);

    m.setChecked(IdFirmware, false);
    EXPECT_EQ(KCAlgoKeys(r).numeric("PGMFW"), 0u);
    const TAG_UI_ALGODATA_KRL3 before = r;
    m.setChecked(IdSendData, true); // a missing key stays missing
    EXPECT_EQ(std::memcmp(&before, &r, sizeof r), 0);
    EXPECT_FALSE(m.state(IdSendData).checked);

    // The bound controls without a bit keep what they show.
    EXPECT_EQ(m.state(IdModeText).text, "Mode of the channels");
    EXPECT_EQ(m.state(IdDetails).text, "");
}

TEST(KCOptionPageModel, NotificationsDuringRefreshAreIgnored)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"PGMFW", 1}, {"SNDDTA", 0}}, {}));
    byteAt(r, 74) = 0x0A;
    const TAG_UI_ALGODATA_KRL3 before = r;
    KCOptionPageModel m(page("KCActOptDlg_ActOptions_UNIV2"), r);
    EchoingView view;
    view.model = &m;
    m.setListener(&view);
    m.Refresh();
    EXPECT_EQ(std::memcmp(&before, &r, sizeof r), 0);
    EXPECT_FALSE(m.filling());
    EXPECT_TRUE(view.shown.at(0x46E).checked);
    EXPECT_FALSE(view.shown.at(0x46D).checked);
}

TEST(KCOptionPageModel, WriteBackMessageRestoresWhatThePageShows)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"PGMFW", 1}}, {}));
    byteAt(r, 74) = 0x21;
    KCOptionPageModel m(page("KCActOptDlg_ActOptions_UNIV2"), r);
    m.Refresh();
    byteAt(r, 74) = 0x00;
    byteAt(r, 75) = 0xBF; // bits the page does not own stay
    KCAlgoKeys(r).setNumeric("PGMFW", 0);
    EXPECT_TRUE(m.message(KCOptionPageModel::WM_IGNORED));
    EXPECT_EQ(byteAt(r, 74), 0x00);
    EXPECT_TRUE(m.message(KCOptionPageModel::WM_WRITE_BACK));
    EXPECT_EQ(byteAt(r, 74), 0x21);
    EXPECT_EQ(byteAt(r, 75), 0xBF);
    EXPECT_EQ(KCAlgoKeys(r).numeric("PGMFW"), 1u);
    EXPECT_FALSE(m.message(0x8000));
}

TEST(KCOptionPageModel, CombosMapFieldsAndKeyValuesOntoItems)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"COM_BDR", 19200}, {"WCT", 3}}, {}));
    constexpr uint32_t IdBaud = 0x4C0;
    KCOptionPageModel isp(page("KCActOptDlg_ID137_ISP"), r);
    isp.Refresh();
    EXPECT_EQ(isp.state(IdBaud).index, 5);
    isp.setIndex(IdBaud, 0);
    EXPECT_EQ(KCAlgoKeys(r).numeric("COM_BDR"), 0u);

    // A write-cycle time outside the list shows no item and is marked invalid.
    constexpr uint32_t IdClock = 0x4C2, IdWriteCycle = 0x4C3;
    KCOptionPageModel clock(page("KCActOptDlg_ID162_ISP"), r);
    clock.Refresh();
    EXPECT_EQ(clock.state(IdWriteCycle).index, -1);
    EXPECT_FALSE(clock.state(IdWriteCycle).valid);
    clock.setIndex(IdWriteCycle, 2);
    EXPECT_EQ(KCAlgoKeys(r).numeric("WCT"), 5u);
    EXPECT_TRUE(clock.state(IdWriteCycle).valid);
    byteAt(r, 44) = 0xF3; // field value 3: past the three clocks
    clock.Refresh();
    EXPECT_EQ(clock.state(IdClock).index, -1);
    clock.setIndex(IdClock, 1);
    EXPECT_EQ(byteAt(r, 44), 0xF1);
}

TEST(KCOptionPageModel, EditsAndListEditsWriteKeysAndFormatOnFocusLoss)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"IDCADR", 0x1000}, {"IDC0", 0x11}, {"IDC1", 0x22}}, {{"MCU_T", "X51"}}));
    constexpr uint32_t IdAddress = 0x663, IdCodes = 0x665;
    KCOptionPageModel m(page("KCDevOptIDCode_UNIV02"), r);
    m.Refresh();
    EXPECT_EQ(m.state(IdAddress).text, "00001000");
    ASSERT_EQ(m.state(IdCodes).elements.size(), 16u);
    EXPECT_EQ(m.state(IdCodes).elements[1], "22");
    EXPECT_EQ(m.state(IdCodes).elements[2], "") << "a missing element key shows empty";

    m.editFocusIn(IdCodes, 1);
    m.editChanged(IdCodes, "a", 1);
    EXPECT_EQ(KCAlgoKeys(r).numeric("IDC1"), 0xAu);
    EXPECT_EQ(m.focusedElement(IdCodes), 1);
    m.editFocusLost(IdCodes, 1);
    EXPECT_EQ(m.state(IdCodes).elements[1], "0A");
    m.editChanged(IdAddress, "2000");
    EXPECT_EQ(KCAlgoKeys(r).numeric("IDCADR"), 0x2000u);

    // A text key feeds a bound static through its format.
    KCOptionPageModel dev(page("KCDevOptDlg_ID0"), r);
    dev.Refresh();
    EXPECT_EQ(dev.state(0x700).text, "Device: X51");
}

TEST(KCOptionPageModel, ValuesOtherThanTheDevicesDefaultsAreMarked)
{
    TAG_UI_ALGODATA_KRL3 r{};
    ASSERT_TRUE(KCAlgoKeys(r).build({{"PGMFW", 1}, {"IDC0", 1}}, {}));
    KCOptionPageModel m(page("KCActOptDlg_ActOptions_UNIV2"), r);
    m.setDefaults(r);
    m.Refresh();
    EXPECT_FALSE(m.state(IdBlankCheck).differs);
    m.setChecked(IdBlankCheck, true);
    m.setChecked(IdFirmware, false);
    EXPECT_TRUE(m.state(IdBlankCheck).differs);
    EXPECT_TRUE(m.state(IdFirmware).differs);
    EXPECT_FALSE(m.state(IdProtect).differs);

    constexpr uint32_t IdCodes = 0x665;
    KCOptionPageModel codes(page("KCDevOptIDCode_UNIV02"), r);
    codes.setDefaults(r);
    codes.Refresh();
    codes.editChanged(IdCodes, "2");
    codes.editFocusLost(IdCodes);
    EXPECT_TRUE(codes.state(IdCodes).differs);
}
