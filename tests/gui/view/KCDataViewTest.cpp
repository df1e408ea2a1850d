#include "doc/KCDataDoc.h"
#include "KCDataView.h"
#include "host/KCHostStrings.h"
#include "doc/KCLayoutNames.h"
#include "KCTestHost.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr int ViewWidth = 700;
constexpr int ViewHeight = 400;
// Columns of the byte view: the first hex cell and the gap after the eighth byte.
constexpr int HexColumn = 10;
constexpr int64_t RowBytes = 16;

struct DataViewWidget : testing::Test
{
    DataViewWidget()
    {
        host.fillByte = 0;
        open();
    }
    void open()
    {
        view.reset();
        doc = std::make_unique<KCDataDoc>();
        view = std::make_unique<KCDataView>(doc.get());
        view->resize(ViewWidth, ViewHeight);
        view->show();
        view->activateWindow();
        view->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
        view->OnInitialUpdate();
    }
    KCDataViewModel &model() { return view->model(); }
    // Viewport point inside the character at layout `column` of body line `line`.
    QPoint cellPoint(int column, int64_t line)
    {
        const int cw = view->renderer().charWidth();
        const int pitch = view->renderer().linePitch();
        const int64_t screenLine = model().topLineCount() + line - model().firstVisibleLine();
        return QPoint((column - model().firstVisibleColumn()) * cw + cw / 2,
                      static_cast<int>(screenLine) * pitch + pitch / 2);
    }
    // Byte-view column of the high nibble of byte `i` of a row.
    static int hexColumn(int i) { return HexColumn + 3 * i + (i >= 8 ? 1 : 0); }
    // The background colour drawn in the top-left pixel of a character cell.
    QColor cellBackground(int column, int64_t line)
    {
        QImage image(view->viewport()->size(), QImage::Format_RGB32);
        QPainter p(&image);
        view->paintRows(p, image.rect());
        p.end();
        const QPoint c = cellPoint(column, line);
        return image.pixelColor(c.x() - view->renderer().charWidth() / 2, c.y() - view->renderer().linePitch() / 2);
    }
    QColor background(KCDataViewRenderer::Role role) { return view->renderer().backgroundColour(role); }
    void wheel(int delta, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        const QPointF at(10, 50);
        QWheelEvent e(at, view->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, mods,
                      Qt::NoScrollPhase, false);
        QApplication::sendEvent(view->viewport(), &e);
    }
    template <typename Pred>
    bool waitFor(Pred pred)
    {
        for (int i = 0; i < 100 && !pred(); ++i)
            QTest::qWait(10);
        return pred();
    }

    KCTestHost host;
    std::unique_ptr<KCDataDoc> doc;
    std::unique_ptr<KCDataView> view;
};

} // namespace

TEST_F(DataViewWidget, TypingChangesBytesModifiedFlagAndChecksumPane)
{
    doc->ComputeCheckSum(-1);
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), "Checksum 0x00000000-0x0000FFFF: 00000000");
    QSignalSpy carets(view.get(), &KCDataView::caretMoved);

    QTest::keyClicks(view.get(), "A5");
    EXPECT_EQ(doc->GetData(0), 0xA5);
    EXPECT_TRUE(doc->IsModified());
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), "Checksum 0x00000000-0x0000FFFF: 000000A5");
    ASSERT_FALSE(carets.isEmpty());
    EXPECT_EQ(carets.last().at(0).toULongLong(), 1u);
    EXPECT_EQ(carets.last().at(1).toString(), "00000001");

    // The typed byte is drawn as modified, its neighbour on the caret line as such.
    EXPECT_EQ(cellBackground(hexColumn(0), 0), background(KCDataViewRenderer::Modified));
    EXPECT_EQ(cellBackground(hexColumn(2), 0), background(KCDataViewRenderer::CaretLine));
    EXPECT_EQ(cellBackground(hexColumn(2), 1), background(KCDataViewRenderer::Normal));

    QTest::keyClick(view.get(), Qt::Key_G);
    QTest::keyClick(view.get(), Qt::Key_Return);
    EXPECT_EQ(model().caret().address, 1);
    EXPECT_EQ(doc->GetData(1), 0);

    host.actionRunning = true;
    QTest::keyClicks(view.get(), "FF");
    EXPECT_EQ(doc->GetData(1), 0);
    EXPECT_EQ(model().caret().address, 1);
    host.actionRunning = false;

    // Character cells take the character code; Tab reaches them through the group starts.
    QTest::keyClick(view.get(), Qt::Key_Tab);
    QTest::keyClick(view.get(), Qt::Key_Tab);
    EXPECT_EQ(model().caret().column, 60);
    QTest::keyClicks(view.get(), "Hi");
    EXPECT_EQ(doc->GetData(0), 'H');
    EXPECT_EQ(doc->GetData(1), 'i');

    QSignalSpy modes(view.get(), &KCDataView::insertModeChanged);
    QTest::keyClick(view.get(), Qt::Key_Insert);
    QTest::keyClick(view.get(), Qt::Key_Insert, Qt::ShiftModifier);
    ASSERT_EQ(modes.size(), 1);
    EXPECT_FALSE(modes.first().at(0).toBool()); // insert at first, overwrite after one press
    EXPECT_FALSE(view->isInsertMode());
}

TEST_F(DataViewWidget, WordAndFuseLayoutsEditTheirBytesAndPickTheChecksum)
{
    EXPECT_FALSE(view->SetBufferLayoutView("NOSUCHVIEW"));
    EXPECT_EQ(view->GetBufferLayoutName(), LAYOUT_BYTEVIEW);

    ASSERT_TRUE(view->SetBufferLayoutView(LAYOUT_WORDVIEW));
    QTest::keyClicks(view.get(), "1234");
    EXPECT_EQ(doc->GetData(0), 0x34);
    EXPECT_EQ(doc->GetData(1), 0x12);
    EXPECT_EQ(view->caretAddressText(), "00000001"); // word 1, high byte

    // The view is the document's buffer view, so the fuse layout switches the checksum kind.
    ASSERT_EQ(doc->viewItems()[0].view, view.get());
    ASSERT_TRUE(view->SetBufferLayoutView(LAYOUT_JEDVIEW));
    EXPECT_EQ(doc->mainBufferParam()->checksumKind, CHECKSUM_KIND_FUSEMAP);
    QTest::keyClick(view.get(), Qt::Key_Right);
    QTest::keyClicks(view.get(), "021"); // "2" is no fuse value
    EXPECT_EQ(doc->GetData(1), 0);
    EXPECT_EQ(doc->GetData(2), 1);
    // Fuses 0 (0x34 counts as set) and 2.
    EXPECT_EQ(host.statusText(STATUSPANE_CHECKSUM), "Fuse checksum 0x00000000-0x0000FFFF: 0005");
    EXPECT_EQ(view->caretAddressText(), "00000003");

    ASSERT_TRUE(view->SetBufferLayoutView(LAYOUT_BYTEVIEW));
    EXPECT_EQ(doc->mainBufferParam()->checksumKind, CHECKSUM_KIND_BYTESUM);

    view.reset();
    EXPECT_EQ(doc->viewItems()[0].view, nullptr);
    EXPECT_TRUE(doc->views().empty());
}

TEST_F(DataViewWidget, ClickAndDragMarkARange)
{
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(2), 0));
    EXPECT_EQ(model().caret().address, 2);
    QTest::mouseMove(view->viewport(), cellPoint(hexColumn(5) + 1, 1));
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(5) + 1, 1));
    int64_t low = 0, high = 0;
    ASSERT_TRUE(model().markRange(low, high));
    EXPECT_EQ(low, 2);
    EXPECT_EQ(high, RowBytes + 5);
    EXPECT_EQ(cellBackground(hexColumn(7), 0), background(KCDataViewRenderer::Marked));
    EXPECT_EQ(cellBackground(hexColumn(1), 0), background(KCDataViewRenderer::Normal));
    // Keys are taken again once the button is up; a plain arrow ends the mark.
    QTest::keyClick(view.get(), Qt::Key_Right);
    EXPECT_FALSE(model().markRange(low, high));

    // A click beside every cell (the address column) leaves the caret where it is.
    const TAG_VIEW_POSITION before = model().caret();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cellPoint(2, 3));
    EXPECT_EQ(model().caret(), before);

    // Losing the focus to another window drops a mark; a menu popping up does not.
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(0), 2));
    QTest::mouseMove(view->viewport(), cellPoint(hexColumn(3), 2));
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(3), 2));
    QFocusEvent popup(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(view.get(), &popup);
    EXPECT_TRUE(model().markRange(low, high));
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(view.get(), &away);
    EXPECT_FALSE(model().markRange(low, high));
}

TEST_F(DataViewWidget, DraggingPastTheBottomScrollsUntilReleased)
{
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(0), 0));
    const QPoint below(cellPoint(hexColumn(4), 0).x(), view->viewport()->height() + 20);
    QTest::mouseMove(view->viewport(), below);
    ASSERT_TRUE(waitFor([&] { return model().firstVisibleLine() >= 3; }));
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, below);

    const int64_t first = model().firstVisibleLine();
    int64_t low = 0, high = 0;
    ASSERT_TRUE(model().markRange(low, high));
    EXPECT_EQ(low, 0);
    // The mark ends on the last whole line in the window.
    EXPECT_EQ(high / RowBytes, first + model().visibleLines() - 1);
    EXPECT_EQ(view->verticalScrollBar()->value(), first);
    QTest::qWait(150);
    EXPECT_EQ(model().firstVisibleLine(), first);
}

TEST_F(DataViewWidget, WheelAndScrollBarsMoveByLines)
{
    const int page = model().visibleLines();
    ASSERT_GT(page, 2);
    wheel(-120);
    EXPECT_EQ(model().firstVisibleLine(), 1);
    wheel(-60); // half a notch waits for the other half
    EXPECT_EQ(model().firstVisibleLine(), 1);
    wheel(-60);
    EXPECT_EQ(model().firstVisibleLine(), 2);
    wheel(-120, Qt::ControlModifier);
    EXPECT_EQ(model().firstVisibleLine(), 2 + 2 * page);
    wheel(120);
    EXPECT_EQ(model().firstVisibleLine(), 1 + 2 * page);
    EXPECT_EQ(view->verticalScrollBar()->value(), 1 + 2 * page);

    view->verticalScrollBar()->setValue(7);
    EXPECT_EQ(model().firstVisibleLine(), 7);
    view->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(model().firstVisibleLine(), 7 + page);

    // The caret is brought back into view by the model; the bar follows.
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(view->verticalScrollBar()->value(), model().firstVisibleLine());
}

TEST_F(DataViewWidget, FourGiBScrollsExactlyToItsLastByte)
{
    constexpr uint64_t FourGiB = 0x100000000ull;
    host.defaultBufferSize = FourGiB;
    open();
    ASSERT_EQ(doc->GetBufferSize(), FourGiB);
    const int64_t lines = static_cast<int64_t>(FourGiB / RowBytes);
    QScrollBar *bar = view->verticalScrollBar();
    // The closing text row is one more line after the data.
    EXPECT_EQ(bar->maximum(), lines + 1 - model().visibleLines());
    bar->setValue(bar->maximum());
    EXPECT_EQ(model().firstVisibleLine(), bar->maximum());

    const int64_t last = lines - 1;
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cellPoint(hexColumn(15) + 1, last));
    EXPECT_EQ(model().caret().address, static_cast<int64_t>(FourGiB - 1));
    EXPECT_EQ(view->caretAddressText(), "FFFFFFFF");
    QTest::keyClicks(view.get(), "7");
    EXPECT_EQ(doc->GetData(0xFFFFFFFFu), 0x07);

    TAG_VIEW_ROW row;
    model().renderScreenLine(model().topLineCount() + static_cast<int>(last - model().firstVisibleLine()), row);
    EXPECT_EQ(row.text.substr(0, 8), "FFFFFFF0");
}

TEST_F(DataViewWidget, WithoutADocumentInputAndPaintingDoNothing)
{
    KCDataView empty(nullptr);
    empty.resize(ViewWidth, ViewHeight);
    empty.OnInitialUpdate();
    QTest::keyClicks(&empty, "A5");
    QTest::keyClick(&empty, Qt::Key_Down);
    QTest::mouseClick(empty.viewport(), Qt::LeftButton, {}, QPoint(100, 100));
    QImage image(ViewWidth, ViewHeight, QImage::Format_RGB32);
    QPainter p(&image);
    empty.paintRows(p, image.rect());
    EXPECT_FALSE(empty.model().caret().isValid());
}
