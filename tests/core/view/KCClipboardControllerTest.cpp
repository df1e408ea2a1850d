#include "doc/KCDataDoc.h"
#include "view/KCClipboardController.h"
#include "view/KCClipboardPort.h"
#include "view/KCCopyAs.h"
#include "view/KCDataViewModel.h"
#include "view/KCKrlBinary.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

namespace {

// A clipboard holding one block of either format, as the system's would.
struct MemoryClipboard : KCClipboardPort
{
    int put(const uint8_t *bytes, uint64_t count, int asText) override
    {
        binary = asText == 0;
        block = asText ? KCKrlBinary::encodeText(bytes, count) : KCKrlBinary::encode(bytes, count);
        return 1;
    }
    uint64_t get(std::vector<uint8_t> &bytes) override
    {
        bytes = binary ? KCKrlBinary::decode(block) : KCKrlBinary::decodeText(block);
        return bytes.size();
    }
    int isEmpty() override { return block.empty() ? 1 : 0; }
    std::string block;
    bool binary = true;
};

struct Clipboard : testing::Test
{
    Clipboard()
    {
        host.defaultBufferSize = 16;
        host.fillByte = 0xEE;
        doc = std::make_unique<KCDataDoc>();
        for (uint32_t i = 0; i < 16; ++i)
            doc->SetData(uint8_t(i), i);
        view = std::make_unique<KCDataViewModel>(doc.get());
        view->setViewportSize(80, 10);
        view->OnInitialUpdate();
        doc->undoHistory().clear();
    }
    std::string bytes() const
    {
        std::string s;
        for (uint32_t i = 0; i < 16; ++i)
            s += char('a' + doc->GetData(i));
        return s;
    }
    KCTestHost host;
    std::unique_ptr<KCDataDoc> doc;
    std::unique_ptr<KCDataViewModel> view;
    MemoryClipboard clipboard;
};

} // namespace

TEST_F(Clipboard, CopyPutsTheMarkAsKrlBinaryAndNothingWithoutAMark)
{
    KCClipboardController c(*view, clipboard);
    EXPECT_EQ(c.OnEditCopy(), 0u);
    EXPECT_TRUE(clipboard.block.empty());
    EXPECT_FALSE(c.OnEditPasteUI());
    ASSERT_TRUE(view->setMarkRange(5, 5));
    EXPECT_EQ(c.OnEditCopy(), 1u);
    EXPECT_EQ(clipboard.block, std::string("\x01\x00\x00\x00\x05", 5)); // count, then the byte
    EXPECT_TRUE(c.OnEditPasteUI());
}

TEST_F(Clipboard, CutMovesTheTailDownAndFillsTheTopAsOneUndoStep)
{
    KCClipboardController c(*view, clipboard);
    ASSERT_TRUE(view->setMarkRange(6, 9));
    EXPECT_EQ(c.OnEditCut(), 4u);
    EXPECT_EQ(bytes(), std::string("abcdef") + "klmnop" + std::string(4, char('a' + 0xEE)));
    EXPECT_EQ(view->caret().address, 6);
    int64_t low, high;
    EXPECT_FALSE(view->markRange(low, high));
    EXPECT_EQ(doc->mainBufferParam()->checksum, doc->ComputeCheckSum(-1));
    ASSERT_TRUE(doc->Undo());
    EXPECT_EQ(bytes(), "abcdefghijklmnop");
}

TEST_F(Clipboard, PasteInsertsOrOverwritesAndIsCutAtTheBlocksEnd)
{
    KCClipboardController c(*view, clipboard);
    const uint8_t two[] = {'A', 'B', 0, 'C'};
    clipboard.put(two, 4, 1); // text from another program stops at its zero byte
    view->setCaretAddress(2);
    EXPECT_EQ(c.OnEditPaste(false), 2u);
    EXPECT_EQ(doc->GetData(2), 'A');
    EXPECT_EQ(doc->GetData(3), 'B');
    EXPECT_EQ(doc->GetData(4), 4);
    int64_t low, high;
    ASSERT_TRUE(view->markRange(low, high));
    EXPECT_EQ(low, 2);
    EXPECT_EQ(high, 3);

    const uint8_t three[] = {0x21, 0x22, 0x23};
    clipboard.put(three, 3, 0);
    view->dropMark();
    view->setCaretAddress(10);
    EXPECT_EQ(c.OnEditPaste(true), 3u); // inserted: 10..12 move up to 13..15, 13..15 are lost
    EXPECT_EQ(doc->GetData(10), 0x21);
    EXPECT_EQ(doc->GetData(13), 10);
    EXPECT_EQ(doc->GetData(15), 12);

    std::vector<uint8_t> ten(10, 0x77);
    clipboard.put(ten.data(), ten.size(), 0);
    view->dropMark();
    view->setCaretAddress(13);
    EXPECT_EQ(c.OnEditPaste(true), 3u); // no room for ten: three written, nothing moved
    EXPECT_EQ(doc->GetData(12), 0x23);
    EXPECT_EQ(doc->GetData(13), 0x77);
    EXPECT_EQ(doc->GetData(15), 0x77);
    EXPECT_EQ(doc->mainBufferParam()->checksum, doc->ComputeCheckSum(-1));
}

TEST(KCCopyAs, WritesHexTextCArraysAndIntelRecords)
{
    const uint8_t bytes[] = {0xA5, 0x5A, 0x00};
    EXPECT_EQ(KCCopyAs::hexText(bytes, 3), "A5 5A 00\n");
    EXPECT_EQ(KCCopyAs::cArray(bytes, 3, 0x100), "/* 0x00000100 */\nconst unsigned char data[3] = {\n    0xA5, 0x5A, 0x00\n};\n");
    EXPECT_EQ(KCCopyAs::intelHex(bytes, 3, 0x100), ":03010000A55A00FD\n:00000001FF\n");
}
