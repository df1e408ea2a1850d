#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "KCDataView.h"
#include "KCTestHost.h"
#include "search/KCEdit_Byte.h"
#include "search/KCEdit_Word.h"
#include "search/KCSearchDlgBox.h"
#include "view/KCEditPatternState.h"
#include "view/KCSearchHits.h"
#include "view/TAG_VIEW_ROW.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Bytes = std::vector<uint8_t>;

struct SearchDialog : testing::Test
{
    void open(uint64_t size, uint8_t fill)
    {
        host.defaultBufferSize = size;
        host.fillByte = fill;
        doc = std::make_unique<KCDataDoc>();
        view = std::make_unique<KCDataView>(doc.get());
        view->resize(700, 300);
        view->OnInitialUpdate();
        // The pattern is process-wide: each test starts from an empty one.
        KCEditPatternState::shared().setBytes({});
        KCEditPatternState::shared().clearUndo();
        dlg = std::make_unique<KCSearchDlgBox>(view.get());
        dlg->resize(600, 400);
        dlg->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dlg.get()));
    }
    KCEdit_Base *field(int id) { return dlg->edit(id); }
    std::string text(unsigned id, std::initializer_list<KCFormatArg> args = {})
    {
        return KCFormat::format(host.GetHostString(id), args);
    }
    void click(const char *name) { QTest::mouseClick(dlg->button(name), Qt::LeftButton); }
    bool waitDone() { return QTest::qWaitFor([&] { return !dlg->isRunning(); }, 10000); }
    std::string status() { return dlg->statusLine()->text().toStdString(); }

    KCTestHost host;
    std::unique_ptr<KCDataDoc> doc;
    std::unique_ptr<KCDataView> view;
    std::unique_ptr<KCSearchDlgBox> dlg;
};

} // namespace

TEST_F(SearchDialog, LinkedFieldsTakeThePlaceholdersPlacesAndShowWhatIsTypedInAnyOfThem)
{
    open(0x100, 0x00);
    for (int id : {KCSearchDlgBox::IDC_PLACE_BYTE, KCSearchDlgBox::IDC_PLACE_CHAR, KCSearchDlgBox::IDC_PLACE_WORD})
        for (QWidget *w : dlg->findChildren<QWidget *>())
            EXPECT_NE(w->property("controlId").toInt(), id);
    KCEdit_Base *bytes = field(KCSearchDlgBox::IDC_EDIT_BYTE);
    KCEdit_Base *chars = field(KCSearchDlgBox::IDC_EDIT_CHAR);
    KCEdit_Base *words = field(KCSearchDlgBox::IDC_EDIT_WORD);
    ASSERT_TRUE(bytes && chars && words);
    EXPECT_TRUE(dynamic_cast<KCEdit_Byte *>(bytes));
    EXPECT_TRUE(dynamic_cast<KCEdit_Word *>(words));
    EXPECT_TRUE(chars->isEnabled() && chars->isVisible());

    const QImage bytesBefore = bytes->grab().toImage();
    const QImage wordsBefore = words->grab().toImage();
    chars->setFocus();
    QTest::keyClicks(chars, "AB");
    EXPECT_EQ(KCEditPatternState::shared().bytes(), (Bytes{0x41, 0x42}));
    EXPECT_NE(bytes->grab().toImage(), bytesBefore);
    EXPECT_NE(words->grab().toImage(), wordsBefore);

    // Typed as hex, shown as characters; Ctrl+Z takes the last digit back.
    bytes->setFocus();
    QTest::keyClick(bytes, Qt::Key_End);
    QTest::keyClicks(bytes, "43");
    EXPECT_EQ(KCEditPatternState::shared().bytes(), (Bytes{0x41, 0x42, 0x43}));
    QTest::keyClick(bytes, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(KCEditPatternState::shared().bytes(), (Bytes{0x41, 0x42, 0x40}));

    // The context menu's rules: Undo with an undo copy, Cut/Copy unless a start-less length.
    EXPECT_TRUE(bytes->isCommandEnabled(KCEdit_Base::ID_EDIT_UNDO));
    EXPECT_TRUE(bytes->isCommandEnabled(KCEdit_Base::ID_EDIT_COPY));
    KCEditPatternState::shared().setMark(1, 2);
    EXPECT_TRUE(bytes->OnCommand(KCEdit_Base::ID_EDIT_CUT));
    EXPECT_EQ(KCEditPatternState::shared().bytes(), (Bytes{0x41}));
    EXPECT_TRUE(bytes->OnCommand(KCEdit_Base::ID_EDIT_PASTE));
    EXPECT_EQ(KCEditPatternState::shared().bytes(), (Bytes{0x41, 0x42, 0x40}));
}

TEST_F(SearchDialog, FindNextMarksTheHitThenReportsNotFound)
{
    open(0x1000, 0x00);
    const uint8_t image[] = {0xAA, 0xAA, 0xAA, 0xBB};
    for (uint32_t i = 0; i < 4; ++i)
        doc->SetData(image[i], 0x800 + i);
    KCEdit_Base *bytes = field(KCSearchDlgBox::IDC_EDIT_BYTE);
    bytes->setFocus();
    QTest::keyClicks(bytes, "aaaabb");
    QTest::keyClick(bytes, Qt::Key_Return); // the default button
    ASSERT_TRUE(waitDone());
    EXPECT_EQ(status(), text(KCHostStrings::SearchFound, {1, 0x801}));
    int64_t low = 0, high = 0;
    ASSERT_TRUE(view->model().markRange(low, high));
    EXPECT_EQ(low, 0x801);
    EXPECT_EQ(high, 0x803);
    EXPECT_GT(view->model().firstVisibleLine(), 0); // scrolled to it

    click("findNext");
    ASSERT_TRUE(waitDone());
    EXPECT_EQ(status(), text(KCHostStrings::SearchNotFound));
}

TEST_F(SearchDialog, FindAllColoursTheHitsAndListsThemForJumping)
{
    open(0x100, 0x00);
    for (uint32_t a : {0x10u, 0x20u, 0xF0u}) {
        doc->SetData(0x12, a);
        doc->SetData(0x34, a + 1);
    }
    KCEdit_Base *words = field(KCSearchDlgBox::IDC_EDIT_WORD);
    words->setFocus();
    QTest::keyClicks(words, "1234");
    click("findAll");
    ASSERT_TRUE(waitDone());
    EXPECT_EQ(status(), text(KCHostStrings::SearchFoundAll, {3}));
    ASSERT_TRUE(view->model().searchHits());
    EXPECT_TRUE(view->model().searchHits()->contains(0x21));
    EXPECT_FALSE(view->model().searchHits()->contains(0x22));
    TAG_VIEW_ROW row;
    view->model().renderScreenLine(view->model().topLineCount() + 1, row); // address 0x10
    EXPECT_NE(std::find(row.state.begin(), row.state.end(), VCS_HIT), row.state.end());
    // A byte typed over a hit leaves no stale colour behind.
    view->model().setCaretAddress(0x40);
    QTest::keyClicks(view.get(), "7");
    EXPECT_EQ(view->model().searchHits(), nullptr);
    click("findAll");
    ASSERT_TRUE(waitDone());

    QListWidget *list = dlg->hitList();
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(1)->text(), "00000020  00 00 00 00 [12 34] 00 00 00 00");
    list->setFocus();
    list->setCurrentRow(2);
    QTest::keyClick(list, Qt::Key_Return);
    int64_t low = 0, high = 0;
    ASSERT_TRUE(view->model().markRange(low, high));
    EXPECT_EQ(low, 0xF0);
    click("copyList");
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("00000010  00 00 00 00 [12 34]"));
    // In the word layout the list counts words.
    ASSERT_TRUE(view->SetBufferLayoutView(LAYOUT_WORDVIEW));
    click("findAll");
    ASSERT_TRUE(waitDone());
    EXPECT_TRUE(list->item(1)->text().startsWith("00000010 "));

    // Little-endian words show each pair's second byte first; aligned words skip odd addresses.
    dlg->option("littleEndian")->setChecked(true);
    EXPECT_TRUE(static_cast<KCEdit_Word *>(words)->byteSwap());
    EXPECT_EQ(words->model().indexOfColumn(0), 1);
    doc->SetData(0x12, 0x41);
    doc->SetData(0x34, 0x42);
    click("findAll");
    ASSERT_TRUE(waitDone());
    EXPECT_EQ(status(), text(KCHostStrings::SearchFoundAll, {4}));
    dlg->option("aligned")->setChecked(true);
    click("findAll");
    ASSERT_TRUE(waitDone());
    EXPECT_EQ(status(), text(KCHostStrings::SearchFoundAll, {3}));
}

TEST_F(SearchDialog, StopEndsARunningSearch)
{
    constexpr uint64_t Size = 64ull << 20;
    open(Size, 0x00);
    KCEdit_Base *bytes = field(KCSearchDlgBox::IDC_EDIT_BYTE);
    bytes->setFocus();
    QTest::keyClicks(bytes, "00");
    click("findAll");
    EXPECT_TRUE(dlg->isRunning());
    EXPECT_TRUE(dlg->progressTimer().isActive());
    EXPECT_TRUE(dlg->button("stop")->isEnabled());
    dlg->OnTimer();
    const std::string progress = host.GetHostString(KCHostStrings::SearchProgress);
    EXPECT_EQ(status().substr(0, progress.find('%')), progress.substr(0, progress.find('%')));
    click("stop");
    ASSERT_TRUE(waitDone());
    EXPECT_FALSE(dlg->progressTimer().isActive());
    EXPECT_TRUE(dlg->model().wasStopped());
    EXPECT_LT(dlg->model().hits().count(), Size);
    EXPECT_TRUE(dlg->button("findAll")->isEnabled());
}

TEST_F(SearchDialog, F3AndShiftF3RepeatTheLastPatternFromTheCaret)
{
    open(0x100, 0x00);
    for (uint32_t a : {0x20u, 0x60u})
        doc->SetData(0x5A, a);
    KCEditPatternState::shared().setBytes({0x5A});
    dlg.reset();
    ASSERT_TRUE(view->model().setCaretAddress(0x30));
    int64_t low = 0, high = 0;
    ASSERT_TRUE(KCSearchDlgBox::FindAgain(view.get(), true));
    ASSERT_TRUE(view->model().markRange(low, high));
    EXPECT_EQ(low, 0x60);
    EXPECT_FALSE(KCSearchDlgBox::FindAgain(view.get(), true)); // nothing after it
    ASSERT_TRUE(KCSearchDlgBox::FindAgain(view.get(), false));
    ASSERT_TRUE(view->model().markRange(low, high));
    EXPECT_EQ(low, 0x20);
}
