#include "doc/KCDataDoc.h"
#include "KCFakeDataView.h"
#include "host/KCHostStrings.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

namespace {

void setBytes(KCDataDoc &doc, uint32_t at, std::initializer_list<uint8_t> bytes)
{
    for (uint8_t b : bytes)
        doc.AlgoParam().buffer(0).SetAt(at++, b);
}

} // namespace

TEST(KCDataDoc, ConstructedWithoutHostEndsTheProcessWithZero)
{
    ASSERT_EQ(g_pMainProgDataExChange, nullptr);
    EXPECT_EXIT({ KCDataDoc doc; }, testing::ExitedWithCode(0), "");
}

TEST(KCDataDoc, BufferIdsGrowAcrossDocumentLifetimes)
{
    KCTestHost host;
    const uint32_t before = KCDataDoc::mDocBufferId;
    {
        KCDataDoc first;
        EXPECT_EQ(first.TF_GetMainBufferId(), int(before + 1));
        EXPECT_EQ(first.AlgoParam().bufferId(), before + 1);
    }
    KCDataDoc second;
    EXPECT_EQ(second.TF_GetMainBufferId(), int(before + 2));
}

TEST(KCDataDoc, SecondNewDocumentIsRefused)
{
    KCTestHost host;
    KCDataDoc doc;
    host.openDocuments = 1;
    EXPECT_TRUE(doc.OnNewDocument());
    EXPECT_TRUE(host.prompts.empty());

    host.openDocuments = 2;
    EXPECT_FALSE(doc.OnNewDocument());
    ASSERT_EQ(host.prompts.size(), 1u);
    EXPECT_EQ(host.prompts[0].text, host.GetHostString(KCHostStrings::OneBufferDocumentOnly));
    EXPECT_EQ(host.prompts[0].type, unsigned(KCPrompt::MB_OK));
}

TEST(KCDataDoc, CloseResetsTheOpenPresets)
{
    KCTestHost host;
    KCDataDoc doc;
    KCDataDoc::nOpenInitLoadFileType = LS_JEDEC;
    KCDataDoc::nOpenInitLoadFilterType = FILTER_JED;
    doc.OnCloseDocument();
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFileType, LS_BINARY);
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFilterType, FILTER_ALL);
}

TEST(KCDataDoc, WordsAreLittleEndianAndUnchangedWritesChangeNothing)
{
    KCTestHost host;
    KCDataDoc doc;
    doc.ComputeCheckSum(-1);
    const uint32_t sum = doc.mainBufferParam()->checksum;

    doc.SetData(0xFF, 3); // fill value already there
    doc.SetDataWord(0xFFFF, 7);
    EXPECT_FALSE(doc.IsModified());
    EXPECT_EQ(doc.mainBufferParam()->checksum, sum);

    doc.SetDataWord(0x1234, 5);
    EXPECT_EQ(doc.GetData(10), 0x34);
    EXPECT_EQ(doc.GetData(11), 0x12);
    EXPECT_EQ(doc.GetDataWord(5), 0x1234);
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(doc.mainBufferParam()->checksum, sum - 0xFF - 0xFF + 0x34 + 0x12);
}

TEST(KCDataDoc, FlipBytesSwapsPairsAndRefusesOddRanges)
{
    KCTestHost host;
    host.defaultBufferSize = 40;
    KCDataDoc doc;
    setBytes(doc, 0, {0x11, 0x22, 0x33, 0x44});
    EXPECT_EQ(doc.FlipBytes(0, 3), 1);
    EXPECT_EQ(doc.GetData(0), 0x22);
    EXPECT_EQ(doc.GetData(1), 0x11);
    EXPECT_EQ(doc.GetData(2), 0x44);
    EXPECT_EQ(doc.GetData(3), 0x33);
    EXPECT_FALSE(doc.IsModified());

    EXPECT_EQ(doc.FlipBytes(0, 2), 0); // three bytes
    EXPECT_EQ(doc.FlipBytes(2, 2), 0);
    EXPECT_EQ(doc.FlipBytes(3, 2), 0);
    EXPECT_EQ(doc.FlipBytes(0, 40), 0); // beyond the buffer
    EXPECT_EQ(doc.GetData(0), 0x22);

    // The vector path and the tail agree with a plain swap over a long range.
    for (uint32_t i = 0; i < 40; ++i)
        doc.AlgoParam().buffer(0).SetAt(i, uint8_t(i));
    EXPECT_EQ(doc.FlipBytes(1, 38), 1);
    EXPECT_EQ(doc.GetData(0), 0);
    for (uint32_t i = 1; i < 39; ++i)
        EXPECT_EQ(doc.GetData(i), (i % 2) ? i + 1 : i - 1) << i;
    EXPECT_EQ(doc.GetData(39), 39);
}

TEST(KCDataDoc, SwapBytesAsksFirstAndKeepsTheChecksum)
{
    KCTestHost host;
    host.defaultBufferSize = 4;
    KCDataDoc doc;
    KCFakeDataView view("BYTEVIEW");
    doc.AddView(&view);
    setBytes(doc, 0, {1, 2, 3, 4});
    doc.ComputeCheckSum(-1);

    host.scriptAnswers({KCPrompt::IDCANCEL, KCPrompt::IDOK});
    doc.OnSwapbytes();
    EXPECT_EQ(doc.GetData(0), 1);
    EXPECT_FALSE(doc.IsModified());

    doc.OnSwapbytes();
    EXPECT_EQ(doc.GetData(0), 2);
    EXPECT_EQ(doc.GetData(3), 3);
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(view.lastHint, DOCHINT_ALL);
    EXPECT_EQ(host.prompts[0].text, host.GetHostString(KCHostStrings::SwapBytesPrompt));
    EXPECT_EQ(host.prompts[0].type, unsigned(KCPrompt::MB_OKCANCEL | KCPrompt::MB_ICONEXCLAMATION));
    EXPECT_EQ(doc.mainBufferParam()->checksum, 10u);
}

TEST(KCDataDoc, ViewItemLookupFollowsTheSelectedTab)
{
    KCTestHost host;
    KCDataDoc doc;
    TAG_BUFFER_PARAM second;
    TAG_DATADOC_VIEWITEM item;
    item.bufferId = 77;
    item.kind = VIEWITEM_KIND_BUFFERVIEW;
    item.bufferParam = &second;
    doc.viewItems().push_back(item);
    TAG_DATADOC_VIEWITEM help; // a tab that is no buffer view
    help.kind = 5;
    doc.viewItems().push_back(help);

    int id = 0, index = 0;
    TAG_DATADOC_VIEWITEM copy;
    // No window: item 0.
    EXPECT_EQ(doc.TF_GetBufferParam(&id, &copy, &index, -1), doc.mainBufferParam());
    EXPECT_EQ(index, 0);
    EXPECT_EQ(id, doc.TF_GetMainBufferId());

    doc.TF_SetSelectIndex(1);
    EXPECT_EQ(doc.TF_GetBufferParam(&id, &copy, &index, -1), &second);
    EXPECT_EQ(id, 77);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(copy.bufferParam, &second);

    // A tab without buffer parameters, or out of range, falls back to item 0.
    doc.TF_SetSelectIndex(2);
    EXPECT_EQ(doc.TF_GetBufferParam(nullptr, nullptr, &index, -1), doc.mainBufferParam());
    EXPECT_EQ(index, 0);
    EXPECT_EQ(doc.TF_GetBufferParam(nullptr, nullptr, &index, 9), doc.mainBufferParam());

    // Item 0 is taken without the kind test.
    doc.viewItems()[0].kind = 0;
    EXPECT_EQ(doc.TF_GetBufferParam(nullptr, nullptr, nullptr, 2), doc.mainBufferParam());

    doc.viewItems().clear();
    EXPECT_EQ(doc.TF_GetBufferParam(nullptr, nullptr, nullptr, -1), nullptr);
    EXPECT_EQ(doc.TF_GetMainBufferId(), -1);
}

TEST(KCDataDoc, FileNameAndPath)
{
    KCTestHost host;
    KCDataDoc doc;
    EXPECT_EQ(doc.GetFileName(), host.GetHostString(KCHostStrings::Untitled));
    EXPECT_EQ(doc.GetFilePath(), "");

    doc.SetPathName("/data/dir\\sub/image.hex", true);
    EXPECT_EQ(doc.GetFileName(), "image.hex");
    EXPECT_EQ(doc.GetFilePath(), "/data/dir\\sub/");
    EXPECT_EQ(doc.GetTitle(), "image.hex");
    doc.SetPathName("c:\\dir/x\\y.bin", false);
    EXPECT_EQ(doc.GetFileName(), "y.bin");

    // A project document keeps its own path.
    doc.SetKPFFileFlag(LS_KPF2);
    doc.SetPathName("/p/project.kpf2", true);
    EXPECT_EQ(doc.getPathName(), "c:\\dir/x\\y.bin");
    EXPECT_EQ(doc.GetPathName(), "/p/project.kpf2");
}

TEST(KCDataDoc, DeviceBinding)
{
    KCTestHost host;
    KCDataDoc doc;
    EXPECT_EQ(doc.HasDeviceX(), 0);
    doc.AlgoParam().setDeviceName("AT27C512");
    EXPECT_EQ(doc.HasDeviceX(), 0); // range not valid
    doc.AlgoParam().algoUiData().deviceRangeValid = 1;
    EXPECT_EQ(doc.HasDeviceX(), 1);

    DEVICE_KRLXDEF_ITEM item;
    item.name = "AT27C512";
    item.type = 0x42;
    doc.SetDeviceItemX(&item);
    EXPECT_EQ(doc.GetDeviceItemX(), item);
    EXPECT_EQ(doc.GetDeviceType(), 0x42u);
    doc.ResetDeviceItemX();
    EXPECT_EQ(doc.GetDeviceItemX(), DEVICE_KRLXDEF_ITEM());
}
