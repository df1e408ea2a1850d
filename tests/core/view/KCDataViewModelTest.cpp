#include "doc/KCDataDoc.h"
#include "view/KCDataViewModel.h"
#include "KCFakeDataView.h"
#include "host/KCHostStrings.h"
#include "doc/KCLayoutNames.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

namespace {

constexpr int CharWidth = 8;
constexpr int LinePitch = 16;
constexpr int BodyLines = 20;
constexpr int ByteTopLines = 3;
constexpr int64_t Line = 16; // bytes per row of the byte and word views

struct DataView : testing::Test
{
    DataView()
    {
        host.fillByte = 0;
        doc = std::make_unique<KCDataDoc>();
        view = std::make_unique<KCDataViewModel>(doc.get());
        view->InitTextMetrics(CharWidth, LinePitch);
        view->setViewportSize(80, ByteTopLines + BodyLines);
        view->OnInitialUpdate();
        view->OnSetFocus();
    }
    void type(const char *text)
    {
        for (; *text; ++text)
            view->OnChar(static_cast<unsigned char>(*text));
    }
    void keys(KCDataViewModel::Key key, int times, unsigned modifiers = KCDataViewModel::NoModifier)
    {
        for (int i = 0; i < times; ++i)
            view->OnKeyDown(key, modifiers);
    }
    // Pixel point of the character at `column` of body line `line` in the window.
    void click(int column, int64_t line)
    {
        const int y = static_cast<int>((ByteTopLines + line - view->firstVisibleLine()) * LinePitch) + 1;
        view->OnLButtonDown(column * CharWidth + 1, y);
    }
    int64_t caretAddress() const { return view->caret().address; }

    KCTestHost host;
    std::unique_ptr<KCDataDoc> doc;
    std::unique_ptr<KCDataViewModel> view;
};

} // namespace

TEST_F(DataView, HexTypingReplacesNibblesAndMovesOn)
{
    ASSERT_EQ(caretAddress(), 0);
    ASSERT_EQ(view->caret().column, 10);
    type("A");
    EXPECT_EQ(doc->GetData(0), 0xA0);
    EXPECT_EQ(view->caret().column, 11);
    type("5");
    EXPECT_EQ(doc->GetData(0), 0xA5);
    EXPECT_EQ(caretAddress(), 1);
    EXPECT_EQ(view->caret().column, 13);

    const TAG_VIEW_POSITION before = view->caret();
    EXPECT_FALSE(view->OnChar('G'));
    host.actionRunning = true;
    EXPECT_FALSE(view->OnChar('7'));
    host.actionRunning = false;
    EXPECT_EQ(doc->GetData(1), 0x00);
    EXPECT_EQ(view->caret(), before);

    view->setCaretAddress(0);
    keys(KCDataViewModel::KeyTab, 2); // to the character column of byte 0
    ASSERT_EQ(view->caret().column, 60);
    EXPECT_FALSE(view->OnChar(0x09));
    type("z");
    EXPECT_EQ(doc->GetData(0), 'z');
    EXPECT_EQ(view->caret().column, 61);
}

TEST_F(DataView, WordViewShowsHighByteFirstAndEditsIt)
{
    doc->SetData(0x34, 0);
    doc->SetData(0x12, 1);
    doc->SetModifiedFlag(0);
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_WORDVIEW), 1);
    TAG_VIEW_ROW row;
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.text.substr(10, 4), "1234");
    EXPECT_EQ(row.state[10], VCS_DATA);

    EXPECT_EQ(caretAddress(), 1);
    type("AB");
    EXPECT_EQ(caretAddress(), 0);
    type("CD");
    EXPECT_EQ(doc->GetDataWord(0), 0xABCD);
    EXPECT_EQ(caretAddress(), 3); // the next word's high byte
}

TEST_F(DataView, BitCellsTakeOnlyZeroAndOne)
{
    doc->SetData(0x55, 0);
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_JEDVIEW), 1);
    EXPECT_FALSE(view->OnChar('2'));
    EXPECT_FALSE(view->OnChar('A'));
    EXPECT_EQ(doc->GetData(0), 0x55);
    type("0");
    type("1");
    EXPECT_EQ(doc->GetData(0), 0);
    EXPECT_EQ(doc->GetData(1), 1);
    EXPECT_EQ(caretAddress(), 2);
}

TEST_F(DataView, EditsGoThroughTheDocument)
{
    KCFakeDataView other(LAYOUT_BYTEVIEW);
    doc->AddView(&other);
    doc->viewItems()[0].view = view.get();
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_JEDVIEW), 1);
    doc->ComputeCheckSum(-1);
    EXPECT_EQ(doc->mainBufferParam()->checksumKind, CHECKSUM_KIND_FUSEMAP);
    EXPECT_FALSE(doc->IsModified());

    keys(KCDataViewModel::KeyRight, 3);
    type("1");
    EXPECT_TRUE(doc->IsModified());
    EXPECT_EQ(doc->mainBufferParam()->checksum, 1u << 3);
    EXPECT_NE(host.statusText(STATUSPANE_CHECKSUM).find("0008"), std::string::npos);
    EXPECT_EQ(other.lastHint, DOCHINT_DATA);
    doc->RemoveView(&other);
}

TEST_F(DataView, TabAndShiftTabLandOnGroupStarts)
{
    const int stops[] = {35, 60, 10};
    for (int column : stops) {
        keys(KCDataViewModel::KeyTab, 1);
        EXPECT_EQ(view->caret().column, column);
    }
    EXPECT_EQ(caretAddress(), Line);
    keys(KCDataViewModel::KeyTab, 1, KCDataViewModel::ShiftModifier);
    EXPECT_EQ(view->caret().column, 60);
    EXPECT_EQ(caretAddress(), 0);
    keys(KCDataViewModel::KeyRight, 3);
    keys(KCDataViewModel::KeyTab, 1, KCDataViewModel::ShiftModifier);
    EXPECT_EQ(view->caret().column, 60);

    // Without any group start within reach the caret stays where it was.
    KCDataViewLayoutSet &set = view->layouts();
    set.DefineByteBufferLayoutV2("FLAT", 1, 0, 0xFF);
    KCDataViewLayout &l = *set.layout(set.GetBufferLayoutIndex("FLAT"));
    l.beginBlock(0x100, 0x1FF, 16);
    for (int i = 0; i < 16; ++i)
        l.addHexCell(3 * i, 1, XLF_EDITABLE);
    l.finishBlock(LAYOUT_BODY);
    ASSERT_EQ(view->SetBufferLayoutView("FLAT"), 1);
    view->setCaretAddress(0x105);
    keys(KCDataViewModel::KeyTab, 1);
    EXPECT_EQ(caretAddress(), 0x105);
}

TEST_F(DataView, ShiftArrowsMarkAndPlainKeysDropTheMark)
{
    keys(KCDataViewModel::KeyRight, 3, KCDataViewModel::ShiftModifier);
    keys(KCDataViewModel::KeyDown, 1, KCDataViewModel::ShiftModifier);
    int64_t low = -1, high = -1;
    ASSERT_TRUE(view->markRange(low, high));
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, Line + 3);
    EXPECT_EQ(caretAddress(), Line + 3);
    EXPECT_FALSE(view->isCaretShown());
    TAG_VIEW_ROW row;
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.state[10], VCS_MARKED);
    EXPECT_EQ(row.state[60], VCS_MARKED);

    keys(KCDataViewModel::KeyLeft, 1);
    EXPECT_FALSE(view->markRange(low, high));
    EXPECT_TRUE(view->isCaretShown());
}

TEST_F(DataView, CaretFollowsStepByStepUpTo100LinesAndJumpsFrom101)
{
    // The caret sits on line 0; the window is scrolled away below it, then Down moves the
    // caret to line 1, which is (first line - 1) lines above the window.
    view->scrollToLine(101);
    keys(KCDataViewModel::KeyDown, 1);
    EXPECT_FALSE(view->lastScroll().jumped);
    EXPECT_EQ(view->lastScroll().pages, 100 / BodyLines);
    EXPECT_EQ(view->firstVisibleLine(), 1);
    view->setCaretAddress(0);
    view->scrollToLine(9);
    keys(KCDataViewModel::KeyDown, 1);
    EXPECT_EQ(view->lastScroll().lines, 8);
    EXPECT_EQ(view->lastScroll().pages, 0);

    view->setCaretAddress(0);
    view->scrollToLine(102);
    keys(KCDataViewModel::KeyDown, 1);
    EXPECT_TRUE(view->lastScroll().jumped);
    EXPECT_EQ(view->lastScroll().lines + view->lastScroll().pages, 0);
    EXPECT_EQ(view->firstVisibleLine(), 1);

    // Downwards the caret line becomes the window's last line.
    view->scrollToLine(0);
    view->setCaretAddress(120 * Line);
    EXPECT_TRUE(view->lastScroll().jumped);
    EXPECT_EQ(view->firstVisibleLine(), 120 - BodyLines + 1);

    // Page keys scroll without moving the caret; Ctrl+wheel moves two pages per notch.
    const int64_t caretLine = view->caret().line;
    keys(KCDataViewModel::KeyPageDown, 1);
    EXPECT_EQ(view->firstVisibleLine(), 120 + 1);
    EXPECT_EQ(view->caret().line, caretLine);
    view->OnMouseWheel(1, KCDataViewModel::ControlModifier);
    EXPECT_EQ(view->firstVisibleLine(), 120 + 1 - 2 * BodyLines);
    view->OnMouseWheel(-1);
    EXPECT_EQ(view->firstVisibleLine(), 120 + 2 - 2 * BodyLines);
}

TEST_F(DataView, CaretColumnScrollsOneColumnWhenNearAndAPageWhenFar)
{
    view->setViewportSize(40, ByteTopLines + BodyLines);
    view->setCaretAddress(10); // hex column 41: two columns past the window
    EXPECT_EQ(view->lastScroll().columns, 2);
    EXPECT_EQ(view->firstVisibleColumn(), 2);
    view->scrollToColumn(0);
    keys(KCDataViewModel::KeyTab, 1); // from byte 10 to the character column 60
    EXPECT_GE(view->lastScroll().columnPages, 1);
    int column = -1, line = -1;
    ASSERT_TRUE(view->caretScreenPosition(column, line));
    EXPECT_EQ(column, 60 - view->firstVisibleColumn());
}

TEST_F(DataView, EachLayoutKeepsItsCaretAndMark)
{
    view->setCaretAddress(5);
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_WORDVIEW), 1);
    EXPECT_EQ(caretAddress(), 1);
    keys(KCDataViewModel::KeyRight, 2, KCDataViewModel::ShiftModifier);
    EXPECT_FALSE(view->isCaretShown());

    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_BYTEVIEW), 1);
    EXPECT_EQ(caretAddress(), 5);
    EXPECT_TRUE(view->isCaretShown());
    int64_t low, high;
    EXPECT_FALSE(view->markRange(low, high));

    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_WORDVIEW), 1);
    ASSERT_TRUE(view->markRange(low, high)); // high byte of word 0 to high byte of word 1
    EXPECT_EQ(low, 1);
    EXPECT_EQ(high, 3);
    EXPECT_FALSE(view->isCaretShown());

    EXPECT_EQ(view->SetBufferLayoutView("NOSUCHVIEW"), 0);
    EXPECT_EQ(view->GetBufferLayoutName(), LAYOUT_WORDVIEW);
}

TEST_F(DataView, MouseClickMovesCaretAndDragMarks)
{
    click(10 + 3 * 2 + 1, 1); // second digit of byte 0x12
    EXPECT_EQ(caretAddress(), Line + 2);
    EXPECT_EQ(view->caret().column, 17);
    EXPECT_TRUE(view->OnKeyDown(KCDataViewModel::KeyRight)); // swallowed while the button is held
    EXPECT_FALSE(view->OnChar('1'));
    EXPECT_EQ(caretAddress(), Line + 2);

    view->OnMouseMove(62 * CharWidth, (ByteTopLines + 3) * LinePitch);
    view->OnLButtonUp();
    int64_t low, high;
    ASSERT_TRUE(view->markRange(low, high));
    EXPECT_EQ(low, Line + 2);
    EXPECT_EQ(high, 3 * Line + 2);

    // A click on the header or between cells neither moves the caret nor marks.
    click(33, 0);
    view->OnLButtonDown(10 * CharWidth, LinePitch);
    EXPECT_FALSE(view->markRange(low, high));
    EXPECT_EQ(caretAddress(), Line + 2);
}

TEST_F(DataView, LayoutsFollowTheBufferSize)
{
    view->setCaretAddress(0xFFF0);
    doc->AlgoParam().buffer(0).resize(0x100, 0);
    doc->UpdateAllViews(nullptr, DOCHINT_ALL);
    EXPECT_EQ(view->bodyLineCount(), 0x10 + 1);
    EXPECT_EQ(caretAddress(), 0xF0);

    doc->AlgoParam().buffer(0).resize(0x1000, 0);
    doc->UpdateAllViews(nullptr, DOCHINT_ALL);
    EXPECT_EQ(view->bodyLineCount(), 0x100 + 1);
}

TEST(DataViewLarge, FourGiBScrollsToTheLastLineAndEditsIt)
{
    KCTestHost host;
    host.defaultBufferSize = uint64_t(1) << 32;
    host.fillByte = 0;
    KCDataDoc doc;
    KCDataViewModel view(&doc);
    view.InitTextMetrics(CharWidth, LinePitch);
    view.setViewportSize(80, ByteTopLines + BodyLines);
    view.OnInitialUpdate();
    EXPECT_EQ(view.bodyLineCount(), (int64_t(1) << 28) + 1);

    ASSERT_TRUE(view.setCaretAddress(0xFFFFFFFF));
    EXPECT_EQ(view.caret().line, (int64_t(1) << 28) - 1);
    EXPECT_TRUE(view.lastScroll().jumped);
    TAG_VIEW_ROW row;
    view.renderScreenLine(ByteTopLines + BodyLines - 1, row);
    EXPECT_EQ(row.text.substr(0, 8), "FFFFFFF0");
    view.OnChar('7');
    EXPECT_EQ(doc.GetData(0xFFFFFFFF), 0x70);
    view.OnKeyDown(KCDataViewModel::KeyDown);
    EXPECT_EQ(view.caret().address, 0xFFFFFFFF);
}

TEST_F(DataView, TypedBytesShowAsModifiedUntilSavedOrReplaced)
{
    type("0"); // same value: nothing changes
    EXPECT_FALSE(view->isByteModified(0));
    type("A5"); // low nibble of byte 0, then byte 1
    EXPECT_TRUE(view->isByteModified(0));
    EXPECT_TRUE(view->isByteModified(1));
    TAG_VIEW_ROW row;
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.state[10], VCS_MODIFIED);
    EXPECT_EQ(row.state[13], VCS_MODIFIED);
    EXPECT_EQ(row.state[61], VCS_MODIFIED);
    EXPECT_EQ(row.state[16], VCS_DATA);
    EXPECT_EQ(row.state[62], VCS_DATA);

    keys(KCDataViewModel::KeyRight, 1, KCDataViewModel::ShiftModifier);
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.state[13], VCS_MARKED); // the mark wins
    EXPECT_EQ(row.state[10], VCS_MODIFIED);

    doc->SetModifiedFlag(0);
    EXPECT_EQ(view->modifiedByteCount(), 0u);
    type("1");
    EXPECT_EQ(view->modifiedByteCount(), 1u);
    // Bytes the document writes by other paths show too.
    const uint8_t block[3] = {1, 2, 3};
    ASSERT_TRUE(doc->WriteRange(0x20, block, sizeof block));
    ASSERT_TRUE(doc->FillRange(0x40, 0x41, 0x00));
    EXPECT_EQ(view->modifiedByteCount(), 6u);
    EXPECT_TRUE(view->isByteModified(0x41));
}

// Fill between an image's data is drawn as a gap until something is written there.
TEST_F(DataView, GapsBetweenDataShowAsGapsUntilWritten)
{
    char path[] = "/tmp/krldv-gaps-XXXXXX.hex";
    const int fd = ::mkstemps(path, 4);
    const std::string text = ":0400000001020304F2\r\n:0400140005060708CE\r\n:00000001FF\r\n";
    ASSERT_EQ(::write(fd, text.data(), text.size()), ssize_t(text.size()));
    ::close(fd);
    doc->mainBufferParam()->fileType = LS_INTELHEX;
    const bool opened = doc->OnOpenDocument(path);
    ::unlink(path);
    ASSERT_TRUE(opened) << (host.messages.size() > 1 ? host.messages[host.messages.size() - 2] : std::string());
    TAG_VIEW_ROW row;
    view->renderScreenLine(ByteTopLines, row); // bytes 0x00..0x0F
    EXPECT_EQ(row.state[10], VCS_DATA);   // byte 0
    EXPECT_EQ(row.state[22], VCS_GAP);    // byte 4
    view->renderScreenLine(ByteTopLines + 1, row); // 0x10..0x17: gap, then data
    EXPECT_EQ(row.state[10], VCS_GAP);
    EXPECT_EQ(row.state[22], VCS_DATA);   // byte 0x14

    // Control with Down and Up jumps between the blocks of data; Home and End by row and
    // with Control to the buffer's ends.
    view->setCaretAddress(1);
    keys(KCDataViewModel::KeyDown, 1, KCDataViewModel::ControlModifier);
    EXPECT_EQ(caretAddress(), 0x14);
    keys(KCDataViewModel::KeyUp, 1, KCDataViewModel::ControlModifier);
    EXPECT_EQ(caretAddress(), 0);
    keys(KCDataViewModel::KeyEnd, 1);
    EXPECT_EQ(caretAddress(), 0x0F);
    keys(KCDataViewModel::KeyEnd, 1, KCDataViewModel::ControlModifier);
    EXPECT_EQ(caretAddress(), 0x17);
    keys(KCDataViewModel::KeyHome, 1);
    EXPECT_EQ(caretAddress(), 0x10);
    keys(KCDataViewModel::KeyHome, 1, KCDataViewModel::ControlModifier);
    EXPECT_EQ(caretAddress(), 0);

    // Go To counts in the layout's units and refuses what is no address of the buffer.
    EXPECT_TRUE(view->goToDisplayAddress(0x15));
    EXPECT_EQ(caretAddress(), 0x15);
    EXPECT_FALSE(view->goToDisplayAddress(0x18));
    EXPECT_EQ(caretAddress(), 0x15);
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_WORDVIEW), 1);
    EXPECT_TRUE(view->goToDisplayAddress(0x0A)); // word 10 is byte 20
    EXPECT_EQ(caretAddress() / 2, 0x0A);
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_BYTEVIEW), 1);

    view->setCaretAddress(4);
    type("ab");
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.state[22], VCS_MODIFIED);
    doc->SetModifiedFlag(0); // as after a save
    view->renderScreenLine(ByteTopLines, row);
    EXPECT_EQ(row.state[22], VCS_DATA);
    EXPECT_EQ(row.state[25], VCS_GAP);
}

// A device layout shows its addresses shifted; Go To takes them as shown.
TEST_F(DataView, GoToTakesADeviceLayoutsShiftedAddresses)
{
    view->DefineByteBufferLayoutV2("DEVICE", 0, 0, 0xFF, 0x1000);
    ASSERT_EQ(view->SetBufferLayoutView("DEVICE"), 1);
    EXPECT_TRUE(view->goToDisplayAddress(0x1042));
    EXPECT_EQ(caretAddress(), 0x42);
    EXPECT_FALSE(view->goToDisplayAddress(0x42)); // below the first address shown
    EXPECT_FALSE(view->goToDisplayAddress(0x1100));
    EXPECT_EQ(caretAddress(), 0x42);
    // A mark made here stays with this layout.
    keys(KCDataViewModel::KeyRight, 2, KCDataViewModel::ShiftModifier);
    int64_t low = 0, high = 0;
    ASSERT_TRUE(view->markRange(low, high));
    ASSERT_EQ(view->SetBufferLayoutView(LAYOUT_BYTEVIEW), 1);
    EXPECT_FALSE(view->markRange(low, high));
    ASSERT_EQ(view->SetBufferLayoutView("DEVICE"), 1);
    ASSERT_TRUE(view->markRange(low, high));
    EXPECT_EQ(low, 0x42);
    EXPECT_EQ(high, 0x44);
}
