// Selecting a device reconfigures the document: buffer, record, ranges, layouts, file type;
// a selection that cannot be made leaves everything as it was.
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "doc/KCSelectDevice0x1Ctrl.h"
#include "doc/KCSelectDeviceCtrlBase.h"
#include "view/KCDataViewModel.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

DEVICE_KRLXDEF_ITEM device(const char *name, uint32_t kind, uint64_t size, uint32_t offset = 0)
{
    DEVICE_KRLXDEF_ITEM d;
    d.name = name;
    d.vendor = "Test";
    d.kind = kind;
    d.bufferSize = size;
    d.BEA = d.DEA = d.DMA = uint32_t(size - 1);
    d.addressOffset = offset;
    d.layout = kind == DEVICE_KIND_OFFSET   ? LAYOUT_BYTEVIEW_OFFSET
               : kind == DEVICE_KIND_PIC18F ? LAYOUT_BYTEVIEW_PIC18F
                                            : LAYOUT_BYTEVIEW;
    d.defaultFileType = "intel";
    d.numericKeys = {{"PGMFW", 1}};
    return d;
}

struct SelectDevice : testing::Test
{
    SelectDevice()
    {
        view.InitTextMetrics(8, 16);
        view.setViewportSize(80, 20);
        view.OnInitialUpdate();
        doc.viewItems().front().view = &view; // as the application's window is
    }
    // The text of the first body row, where the first address stands.
    std::string firstRow()
    {
        TAG_VIEW_ROW row;
        for (int line = view.topLineCount(); line < 20; ++line) {
            view.renderScreenLine(line, row);
            if (row.text.find_first_not_of(' ') != std::string::npos && row.text.find(':') == std::string::npos)
                return row.text;
        }
        return {};
    }
    KCTestHost host;
    KCDataDoc doc;
    KCDataViewModel view{&doc};
    TempDir dir;
};

} // namespace

TEST_F(SelectDevice, FlashFarUpIsShownAndLoadedAtItsOwnAddresses)
{
    ASSERT_EQ(doc.selectDevice(device("FAR64", DEVICE_KIND_OFFSET, 0x10000, 0x08000000)), 1);
    EXPECT_EQ(doc.GetBufferSize(), 0x10000u);
    EXPECT_EQ(doc.GetDeviceName(), "FAR64");
    EXPECT_EQ(doc.HasDeviceX(), 1);
    EXPECT_EQ(view.GetBufferLayoutName(), LAYOUT_BYTEVIEW_OFFSET);
    EXPECT_EQ(firstRow().rfind("08000000", 0), 0u) << firstRow();
    const TAG_DATADOC_VIEWITEM &main = doc.viewItems().front();
    EXPECT_EQ(main.number, KCSelectDevice0x1Ctrl::BufferOrganisationNumber);
    EXPECT_EQ(main.flags, KCSelectDevice0x1Ctrl::BufferOrganisationFlags);
    EXPECT_EQ(main.extra1, 0x08000000);
    EXPECT_EQ(main.extra2, 0x08000000);
    EXPECT_EQ(main.text1, "Buffer of FAR64");
    EXPECT_EQ(doc.mainBufferParam()->fileType, LS_INTELHEX);

    // Records at 0x08000010 land at buffer 0x10; a bin is the device's size; Intel HEX goes
    // back to the addresses it came from.
    const std::string in = dir.file("app.hex");
    std::ofstream(in) << ":0400100001020304E2\n:020000040800F2\n:040010001122334442\n:00000001FF\n";
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnOpenDocument(in.c_str())) << host.messages.back();
    EXPECT_EQ(doc.GetData(0x10), 0x11);
    EXPECT_EQ(doc.GetData(0x13), 0x44);
    EXPECT_EQ(doc.GetBufferSize(), 0x10000u);
    doc.mainBufferParam()->fileType = LS_BINARY;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("app.bin").c_str()));
    EXPECT_EQ(readFile(dir.file("app.bin")).size(), 0x10000u);
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("out.hex").c_str()));
    EXPECT_NE(readFile(dir.file("out.hex")).find(":020000040800F2"), std::string::npos) << readFile(dir.file("out.hex"));
}

TEST_F(SelectDevice, AreasOfOneBufferAndFuseMaps)
{
    ASSERT_EQ(doc.selectDevice(device("PIC", DEVICE_KIND_PIC18F, 0x7100)), 1);
    EXPECT_FALSE(doc.IsModified()); // a fresh buffer had nothing to cut
    EXPECT_EQ(doc.dataMap().countIn(0, UINT64_MAX), 0x7100u);
    EXPECT_EQ(view.GetBufferLayoutName(), LAYOUT_BYTEVIEW_PIC18F);
    EXPECT_EQ(doc.GetBufferSize(), 0x7100u);

    DEVICE_KRLXDEF_ITEM pld = device("PLD", DEVICE_KIND_STANDARD, 2194);
    pld.fuseCount = 2194;
    pld.layout = LAYOUT_JEDVIEW;
    pld.defaultFileType = "jedec";
    ASSERT_EQ(doc.selectDevice(pld), 1);
    EXPECT_EQ(view.GetBufferLayoutName(), LAYOUT_JEDVIEW);
    EXPECT_EQ(doc.mainBufferParam()->checksumKind, CHECKSUM_KIND_FUSEMAP);
    EXPECT_EQ(doc.mainBufferParam()->fileType, LS_JEDEC);

    ASSERT_EQ(doc.deselectDeviceItem(), 1);
    EXPECT_EQ(doc.HasDeviceX(), 0);
    EXPECT_EQ(doc.GetDeviceName(), host.noDeviceName);
    EXPECT_EQ(doc.viewItems().front().text1, "Buffer");
    EXPECT_EQ(view.GetBufferLayoutName(), LAYOUT_BYTEVIEW);
    EXPECT_EQ(doc.GetBufferSize(), 2194u); // the bytes stay
}

TEST_F(SelectDevice, AFailedSelectionKeepsThePreviousConfiguration)
{
    ASSERT_EQ(doc.selectDevice(device("FIRST", DEVICE_KIND_STANDARD, 0x100)), 1);
    const TAG_DATADOC_VIEWITEM before = doc.viewItems().front();
    const TAG_BUFFER_PARAM param = *doc.mainBufferParam();

    host.deviceSelectWindow = false;
    EXPECT_EQ(doc.selectDevice(device("SECOND", DEVICE_KIND_OFFSET, 0x200, 0x1000)), 0);
    host.deviceSelectWindow = true;
    EXPECT_EQ(doc.selectDevice(device("", DEVICE_KIND_STANDARD, 0x200)), 0);
    EXPECT_EQ(doc.selectDevice(device("ODD", 7, 0x200)), 0);
    DEVICE_KRLXDEF_ITEM tooManyKeys = device("KEYS", DEVICE_KIND_STANDARD, 0x200);
    for (int i = 0; i < 500; ++i)
        tooManyKeys.numericKeys.emplace_back("K" + std::to_string(i), i);
    EXPECT_EQ(doc.selectDevice(tooManyKeys), 0);

    EXPECT_EQ(doc.GetDeviceName(), "FIRST");
    EXPECT_EQ(doc.GetBufferSize(), 0x100u);
    EXPECT_EQ(doc.viewItems().front().text1, before.text1);
    EXPECT_EQ(doc.mainBufferParam()->LBEA, param.LBEA);
    EXPECT_EQ(doc.AlgoParam().algoUiData().BEA, 0xFFu);
    EXPECT_EQ(view.GetBufferLayoutName(), LAYOUT_BYTEVIEW);
}

// With the host building its tabs itself the main item is left alone, and the selection holds.
TEST_F(SelectDevice, TheHostMayKeepItsTabs)
{
    host.deviceTabStepSkipped = true;
    const std::string caption = doc.viewItems().front().text1;
    ASSERT_EQ(doc.selectDevice(device("QUIET", DEVICE_KIND_STANDARD, 0x400)), 1);
    EXPECT_EQ(doc.viewItems().front().text1, caption);
    EXPECT_EQ(doc.GetBufferSize(), 0x400u);
}
