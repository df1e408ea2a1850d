#include "KCDeviceOptions.h"
#include "KCOptionPage.h"
#include "KCOptionsDialogCtrl.h"
#include "KCTestHost.h"
#include "doc/KCAlgoKeys.h"
#include "doc/KCDataDoc.h"
#include "host/KCFormat.h"
#include "host/KCHostStrings.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The universal action-options page and its controls.
constexpr uint32_t UniversalType = 705;
constexpr uint32_t IdCompareId = 0x49E;
constexpr uint32_t IdFirmware = 0x49F;
constexpr uint32_t IdSendData = 0x4A0;
constexpr uint32_t IdChipErase = 0x453;
constexpr uint32_t IdBlankCheck = 0x46D;
constexpr uint32_t IdProtect = 0x7AE;
constexpr uint32_t IdSequential = 0x440;
constexpr uint32_t IdParallel = 0x441;
constexpr uint32_t IdIdCodes = 0x665;
constexpr uint8_t DefaultActions = 0x24; // verify, parallel

struct OptionsView
{
    KCTestHost host;
    KCDataDoc doc;
    DEVICE_KRLXDEF_ITEM device;
    std::unique_ptr<KCDeviceOptions> view;

    explicit OptionsView(uint32_t optionType)
    {
        device.name = "UNI-32";
        device.optionType = optionType;
        device.optionBytes = {{74, DefaultActions}};
        device.numericKeys = {{"PGMFW", 1}, {"IDC0", 0x12}};
        doc.SetDeviceItemX(&device);
        doc.AlgoParam().setDeviceName(device.name);
        record().deviceRangeValid = 1;
        record().optionFields[74 - ALGODATA_OPTION_FIELDS] = DefaultActions;
        KCAlgoKeys(record()).build(device.numericKeys, device.textKeys);
        view = std::make_unique<KCDeviceOptions>(&doc);
        view->OnInitialUpdate();
        view->show();
    }
    TAG_UI_ALGODATA_KRL3 &record() { return doc.AlgoParam().algoUiData(); }
    uint8_t byte(size_t offset) { return reinterpret_cast<uint8_t *>(&record())[offset]; }
    KCOptionPage *shownPage()
    {
        for (const auto &p : view->optionsCtrl()->pages())
            if (p.page->isVisible())
                return p.page;
        return nullptr;
    }
    QAbstractButton *button(uint32_t id) { return qobject_cast<QAbstractButton *>(shownPage()->control(id)); }
    void click(uint32_t id)
    {
        QAbstractButton *b = button(id);
        ASSERT_NE(b, nullptr) << id;
        QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(4, b->height() / 2));
    }
};

} // namespace

TEST(KCDeviceOptions, UniversalActionPageWritesTheRecordOnClicks)
{
    OptionsView v(UniversalType);
    ASSERT_EQ(v.view->tabBar()->count(), 6);
    EXPECT_EQ(v.view->tabBar()->tabText(0).toStdString(), v.host.GetHostString(KCHostStrings::OptionPageDevice));
    EXPECT_EQ(v.shownPage(), v.view->optionsCtrl()->page(0)) << "the first page shows first";
    QSize largest;
    for (const auto &p : v.view->optionsCtrl()->pages())
        largest = largest.expandedTo(p.page->pageSize());
    EXPECT_EQ(v.view->optionsCtrl()->size(), largest);
    QTest::mouseClick(v.view->tabBar(), Qt::LeftButton, {}, v.view->tabBar()->tabRect(1).center());
    ASSERT_EQ(v.shownPage()->className(), "KCActOptDlg_ActOptions_UNIV2");
    EXPECT_TRUE(v.shownPage()->control(IdCompareId)->property(KCOptionPage::ControlIdProperty).isValid());

    EXPECT_TRUE(v.button(IdParallel)->isChecked());
    EXPECT_FALSE(v.button(IdSequential)->isChecked());
    EXPECT_TRUE(v.button(IdFirmware)->isChecked());
    EXPECT_FALSE(v.button(IdSendData)->isChecked()) << "a key the device lacks shows cleared";

    v.click(IdBlankCheck);
    v.click(IdProtect);
    EXPECT_EQ(v.byte(74), DefaultActions | 0x11);
    EXPECT_TRUE(v.button(IdBlankCheck)->font().bold()) << "changed from the device's default";
    EXPECT_FALSE(v.button(IdFirmware)->font().bold());
    v.click(IdSequential);
    EXPECT_EQ(v.byte(74), 0x15);
    EXPECT_FALSE(v.button(IdParallel)->isChecked());
    v.click(IdSequential); // clicking the checked radio keeps it
    EXPECT_TRUE(v.button(IdSequential)->isChecked());
    EXPECT_EQ(v.byte(74), 0x15);
    v.click(IdCompareId);
    v.click(IdChipErase);
    EXPECT_EQ(v.byte(75), 0x40);
    EXPECT_EQ(v.byte(76), 0x10);
    v.click(IdFirmware);
    EXPECT_EQ(KCAlgoKeys(v.record()).numeric("PGMFW"), 0u);
    v.click(IdSendData);
    EXPECT_FALSE(v.button(IdSendData)->isChecked());
    bool found = true;
    KCAlgoKeys(v.record()).numeric("SNDDTA", &found);
    EXPECT_FALSE(found);

    QTest::mouseClick(v.view->defaultButton(), Qt::LeftButton);
    EXPECT_EQ(v.byte(74), DefaultActions);
    EXPECT_EQ(v.byte(75), 0);
    EXPECT_EQ(KCAlgoKeys(v.record()).numeric("PGMFW"), 1u);
    EXPECT_TRUE(v.button(IdParallel)->isChecked());
    EXPECT_TRUE(v.button(IdFirmware)->isChecked());
    EXPECT_FALSE(v.button(IdBlankCheck)->font().bold());
}

TEST(KCDeviceOptions, ListEditRewritesItsElementWhenTheFocusLeaves)
{
    OptionsView v(UniversalType);
    QTest::mouseClick(v.view->tabBar(), Qt::LeftButton, {}, v.view->tabBar()->tabRect(4).center());
    auto *first = qobject_cast<QLineEdit *>(v.shownPage()->control(IdIdCodes, 0));
    auto *second = qobject_cast<QLineEdit *>(v.shownPage()->control(IdIdCodes, 1));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->text(), "12");
    QApplication::setActiveWindow(v.view.get());
    first->setFocus();
    first->selectAll();
    QTest::keyClicks(first, "a");
    EXPECT_EQ(KCAlgoKeys(v.record()).numeric("IDC0"), 0xAu);
    EXPECT_EQ(v.shownPage()->model().focusedElement(IdIdCodes), 0);
    second->setFocus();
    EXPECT_EQ(first->text(), "0A");
    EXPECT_EQ(v.shownPage()->model().focusedElement(IdIdCodes), 1);
}

TEST(KCDeviceOptions, TypesWithoutABuilderAndDocumentsWithoutADeviceShowNoPages)
{
    OptionsView unregistered(47);
    ASSERT_NE(unregistered.view->optionsCtrl(), nullptr);
    EXPECT_TRUE(unregistered.view->optionsCtrl()->pages().empty());
    EXPECT_EQ(unregistered.view->tabBar()->count(), 0);
    EXPECT_FALSE(unregistered.view->defaultButton()->isEnabled());

    OptionsView gone(0);
    EXPECT_EQ(gone.view->tabBar()->count(), 2);
    gone.record().deviceRangeValid = 0;
    gone.view->CreateOptions();
    EXPECT_EQ(gone.view->optionsCtrl(), nullptr);
    EXPECT_EQ(gone.view->tabBar()->count(), 0);
}

TEST(KCDeviceOptions, AValueOutsideAListShowsAsInvalid)
{
    constexpr uint32_t BootAreaType = 162, IdWriteCycle = 0x4C3, BadWriteCycle = 3;
    OptionsView v(BootAreaType);
    KCAlgoKeys(v.record()).build({{"WCT", BadWriteCycle}}, {});
    v.view->OnUpdate(nullptr, 0);
    KCOptionPage *isp = nullptr;
    for (const auto &p : v.view->optionsCtrl()->pages())
        if (p.page->className() == "KCActOptDlg_ID162_ISP")
            isp = p.page;
    ASSERT_NE(isp, nullptr);
    auto *combo = qobject_cast<QComboBox *>(isp->control(IdWriteCycle));
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(combo->currentIndex(), -1);
    EXPECT_EQ(combo->placeholderText().toStdString(),
              KCFormat::format(v.host.GetHostString(KCHostStrings::OptionValueInvalid), {BadWriteCycle}));
}
