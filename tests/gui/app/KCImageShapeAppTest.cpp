// The application keeps an image's shape and shows the same checksum as the command line.
#include "KCAppHost.h"
#include "doc/KCDataDoc.h"
#include "KCDataView.h"
#include "KCDataViewRenderer.h"
#include "KCFileDialog.h"
#include "KCLoadSaveCombo.h"
#include "KCMainFrame.h"
#include "KCMessageWindow.h"
#include "KCStatusBar.h"
#include "KCWorkspaceTree.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

// The main window with its commands found by their shortcuts.
struct Frame : KCMainFrame
{
    using KCMainFrame::KCMainFrame;
    QAction *action(const QKeySequence &keys) const
    {
        for (QAction *a : findChildren<QAction *>())
            if (a->shortcut() == keys)
                return a;
        return nullptr;
    }
};

struct ImageShapeApp : testing::Test
{
    ImageShapeApp()
    {
        frame = std::make_unique<Frame>(dir.filePath("korel5.ini"));
        frame->host().setInteractive(false);
        frame->show();
    }
    QString write(const QString &name, const QByteArray &bytes)
    {
        QFile f(dir.filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return f.fileName();
    }
    QTemporaryDir dir;
    std::unique_ptr<Frame> frame;
};

QByteArray intelRecord(uint16_t address, const QByteArray &data, uint8_t type = 0)
{
    QByteArray r;
    r.append(char(data.size())).append(char(address >> 8)).append(char(address)).append(char(type)).append(data);
    uint8_t sum = 0;
    for (char c : r)
        sum += uint8_t(c);
    r.append(char(uint8_t(-sum)));
    return ":" + r.toHex().toUpper() + "\r\n";
}

} // namespace

TEST_F(ImageShapeApp, AnOpenedBinaryKeepsItsSizeWhenSaved)
{
    const QString path = write("small.bin", QByteArray(32 * 1024, '\x11'));
    ASSERT_TRUE(frame->openFile(path));
    KCDataView *view = frame->currentView();
    ASSERT_NE(view, nullptr);
    view->setFocus();
    QTest::keyClicks(view, "a5");
    frame->action(QKeySequence::Save)->trigger();
    EXPECT_FALSE(frame->document()->IsModified());
    EXPECT_EQ(QFileInfo(path).size(), 32 * 1024);
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(uint8_t(f.read(1)[0]), 0xA5);
}

// The status bar covers the image's extent, as `krldv checksum` does: 0x300 bytes of 0xFF
// gap between two records of 0x100 bytes of 0x01.
TEST_F(ImageShapeApp, TheStatusBarSumsTheExtentAndAFileFarUpOpens)
{
    QByteArray text;
    for (int a = 0; a < 0x100; a += 16)
        text += intelRecord(uint16_t(a), QByteArray(16, '\x01'));
    for (int a = 0x400; a < 0x500; a += 16)
        text += intelRecord(uint16_t(a), QByteArray(16, '\x01'));
    text += ":00000001FF\r\n";
    ASSERT_TRUE(frame->openFile(write("sparse.hex", text)));
    EXPECT_EQ(frame->document()->GetBufferSize(), 0x500u);
    EXPECT_EQ(frame->statusPanes()->checksumText().toStdString(), "Checksum 0x00000000-0x000004FF: 0002FF00");

    // Data at 128 MiB: the buffer reaches it, gaps filled.
    QByteArray high = intelRecord(0, QByteArray("\x08\x00", 2), 4) + intelRecord(0x1000, QByteArray(16, '\x22'))
                      + ":00000001FF\r\n";
    ASSERT_TRUE(frame->closeDocument(false));
    ASSERT_TRUE(frame->openFile(write("high.hex", high)));
    EXPECT_EQ(frame->document()->GetBufferSize(), 0x08001010u);
    EXPECT_EQ(frame->document()->GetData(0x08001000), 0x22);
    EXPECT_EQ(frame->document()->GetData(0x07FFFFFF), 0xFF);
}

// Save As starts from the document's own file type: an Intel HEX document offers Intel HEX.
TEST_F(ImageShapeApp, SaveAsOffersTheDocumentsFileType)
{
    const QByteArray text = intelRecord(0x10, QByteArray("\x01\x02", 2)) + ":00000001FF\r\n";
    ASSERT_TRUE(frame->openFile(write("good.hex", text)));
    // As after File > Open with "All files" as the filter and a typed name.
    frame->document()->mainBufferParam()->filterType = FILTER_ALL;
    frame->host().setInteractive(true);
    QString combo, filter;
    std::function<void(int)> inspect = [&](int attempts) {
        QTimer::singleShot(10, [&, attempts] {
            QWidget *modal = QApplication::activeModalWidget();
            auto *dialog = qobject_cast<KCFileDialog *>(modal);
            if (!dialog) {
                if (attempts > 0)
                    inspect(attempts - 1);
                else if (modal)
                    modal->close();
                return;
            }
            combo = dialog->loadSaveCombo()->currentText();
            filter = dialog->selectedNameFilter();
            dialog->reject();
        });
    };
    inspect(300);
    frame->action(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S))->trigger();
    EXPECT_TRUE(combo.contains("Intel")) << combo.toStdString();
    EXPECT_TRUE(filter.contains("hex")) << filter.toStdString();
}

// The window's commands: a plain title, File > Close, Recent Files at once, the tree after
// Save As, commands whatever has the focus, and the sum of the marked bytes.
TEST_F(ImageShapeApp, WindowCommandsWorkAsPeopleExpect)
{
    const QString first = write("first.hex", intelRecord(0, QByteArray(32, '\x01')) + ":00000001FF\r\n");
    ASSERT_TRUE(frame->openFile(first));
    EXPECT_EQ(frame->windowTitle(), "first.hex[*]");

    QMenu *recent = nullptr;
    for (QMenu *m : frame->findChildren<QMenu *>())
        if (m->title() == "Recent &Files")
            recent = m;
    ASSERT_NE(recent, nullptr);
    EXPECT_TRUE(recent->isEnabled());
    ASSERT_FALSE(recent->actions().isEmpty());
    EXPECT_TRUE(recent->actions().constFirst()->text().endsWith("first.hex"));

    // Marking shows the sum of the marked bytes; it goes when the mark does.
    KCDataView *view = frame->currentView();
    view->setFocus();
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(frame->statusPanes()->markSumText().toStdString(), "Marked 0x00000000-0x00000004: sum 0x00000005");

    // Edit > Undo takes typed bytes back to what was loaded, clean again; Redo brings them.
    QTest::keyClick(view, Qt::Key_Home);
    view->model().setCaretAddress(0);
    QTest::keyClicks(view, "ab");
    EXPECT_EQ(frame->document()->GetData(0), 0xAB);
    QAction *undo = frame->action(QKeySequence::Undo);
    ASSERT_NE(undo, nullptr);
    EXPECT_TRUE(undo->isEnabled());
    undo->trigger();
    undo->trigger();
    EXPECT_EQ(frame->document()->GetData(0), 0x01);
    EXPECT_FALSE(frame->document()->IsModified());
    EXPECT_FALSE(undo->isEnabled());
    frame->action(QKeySequence(Qt::CTRL | Qt::Key_Y))->trigger();
    EXPECT_TRUE(frame->document()->IsModified());

    // Save As renames the document in the tree and the title.
    frame->host().setInteractive(true);
    std::function<void(int)> answer = [&](int attempts) {
        QTimer::singleShot(10, [&, attempts] {
            auto *dialog = qobject_cast<KCFileDialog *>(QApplication::activeModalWidget());
            if (!dialog) {
                if (attempts > 0)
                    answer(attempts - 1);
                return;
            }
            dialog->setDirectory(dir.path());
            QTest::keyClicks(dialog->findChild<QLineEdit *>("fileNameEdit"), "second.hex");
            qobject_cast<QPushButton *>(dialog->controlById(KCFileDialog::IDC_OK))->click();
        });
    };
    answer(300);
    frame->action(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S))->trigger();
    frame->host().setInteractive(false);
    EXPECT_EQ(frame->workspaceTree()->topLevelItem(0)->text(0), "second.hex");
    EXPECT_EQ(frame->windowTitle(), "second.hex[*]");

    // Ctrl+W with the focus in the message window closes the document.
    QApplication::setActiveWindow(frame.get());
    frame->messageWindow()->setFocus();
    QTest::keyClick(frame->messageWindow(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(frame->document(), nullptr);
    EXPECT_TRUE(frame->windowTitle().isEmpty());
    EXPECT_TRUE(frame->newDocument());
}

// Copy puts the marked bytes on the system clipboard as "KrlBinary"; paste takes them back,
// inserting at first and overwriting once the Insert key was pressed.
TEST_F(ImageShapeApp, CopyAndPasteGoThroughTheSystemClipboard)
{
    QByteArray bytes;
    for (int i = 0; i < 32; ++i)
        bytes.append(char(i));
    ASSERT_TRUE(frame->openFile(write("data.bin", bytes)));
    KCDataView *view = frame->currentView();
    ASSERT_TRUE(view->model().setMarkRange(1, 2));
    frame->action(QKeySequence::Copy)->trigger();
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(data->hasFormat("KrlBinary"));
    EXPECT_EQ(data->data("KrlBinary"), QByteArray("\x02\x00\x00\x00\x01\x02", 6));

    view->model().dropMark();
    view->model().setCaretAddress(8);
    frame->action(QKeySequence::Paste)->trigger(); // insert: 8.. move up by two
    KCDataDoc *doc = frame->document();
    EXPECT_EQ(doc->GetData(8), 1);
    EXPECT_EQ(doc->GetData(10), 8);
    EXPECT_EQ(doc->GetData(31), 29);

    view->setFocus();
    QTest::keyClick(view, Qt::Key_Insert);
    view->model().dropMark();
    view->model().setCaretAddress(20);
    auto *text = new QMimeData;
    text->setText("AB");
    QGuiApplication::clipboard()->setMimeData(text);
    frame->action(QKeySequence::Paste)->trigger(); // overwrite
    EXPECT_EQ(doc->GetData(20), 'A');
    EXPECT_EQ(doc->GetData(22), 20);
    EXPECT_EQ(frame->statusPanes()->markSumText().toStdString(), "Marked 0x00000014-0x00000015: sum 0x00000083");

    // Copy As puts the marked bytes as text for other programs.
    view->model().setMarkRange(20, 21);
    for (QAction *a : frame->findChildren<QAction *>())
        if (a->text() == "&Hex Text") {
            a->trigger();
            break;
        }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "41 42\n");
    frame->action(QKeySequence::SelectAll)->trigger();
    EXPECT_TRUE(frame->statusPanes()->markSumText().startsWith("Marked 0x00000000-0x0000001F"));
}

// The Edit commands by their keys, with the focus in the data view.
TEST_F(ImageShapeApp, EditCommandsByTheirKeys)
{
    QByteArray bytes;
    for (int i = 0; i < 32; ++i)
        bytes.append(char(i));
    ASSERT_TRUE(frame->openFile(write("keys.bin", bytes)));
    KCDataDoc *doc = frame->document();
    KCDataView *view = frame->currentView();
    QApplication::setActiveWindow(frame.get());
    view->setFocus();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier); // marks 0..3
    QTest::keyClick(view, Qt::Key_X, Qt::ControlModifier);      // cut: 4.. move down
    EXPECT_EQ(doc->GetData(0), 4);
    EXPECT_EQ(doc->GetData(28), 0xFF);
    QTest::keyClick(view, Qt::Key_V, Qt::ControlModifier); // paste inserts them back
    EXPECT_EQ(doc->GetData(0), 0);
    EXPECT_EQ(doc->GetData(4), 4);
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(doc->GetData(0), 0);
    EXPECT_EQ(doc->GetData(31), 31);
    EXPECT_FALSE(doc->IsModified());
    QTest::keyClick(view, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(doc->GetData(0), 4);
    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->model().caret().address, 31);

    // Drag over bytes 2..5 of the second row with the mouse, copy, then paste over the first
    // row's start after Insert switched pasting to overwrite: nothing moves.
    const int cw = view->renderer().charWidth();
    const int pitch = view->renderer().linePitch();
    const auto cell = [&](int byte, int row) {
        const int column = 10 + 3 * byte; // the byte layout's hex columns
        return QPoint(column * cw + cw / 2, (view->model().topLineCount() + row) * pitch + pitch / 2);
    };
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, cell(2, 1));
    QTest::mouseMove(view->viewport(), cell(5, 1));
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, cell(5, 1));
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Insert);
    EXPECT_FALSE(view->model().isInsertMode());
    const uint8_t last = doc->GetData(31);
    QTest::keyClick(view, Qt::Key_V, Qt::ControlModifier);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(doc->GetData(uint32_t(i)), doc->GetData(uint32_t(0x12 + i))) << i;
    EXPECT_EQ(doc->GetData(4), 8);
    EXPECT_EQ(doc->GetData(31), last);
    int64_t low = 0, high = 0;
    ASSERT_TRUE(view->model().markRange(low, high)); // the pasted bytes end marked
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 3);
}

// Ctrl+G opens Go To; the address is typed as the view shows it, and one past the buffer is
// refused with the caret left where it was.
TEST_F(ImageShapeApp, GoToAddressByItsKeys)
{
    ASSERT_TRUE(frame->openFile(write("goto.bin", QByteArray(0x100, '\x11'))));
    KCDataView *view = frame->currentView();
    QApplication::setActiveWindow(frame.get());
    view->setFocus();
    auto answer = [](const QString &text) {
        QTimer::singleShot(0, [text] {
            QWidget *dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            auto *edit = dialog->findChild<QLineEdit *>();
            ASSERT_NE(edit, nullptr);
            edit->selectAll();
            QTest::keyClicks(edit, text);
            QTest::keyClick(edit, Qt::Key_Return);
        });
    };
    QStringList warnings;
    auto dismissWarning = [&warnings] {
        QTimer::singleShot(50, [&warnings] {
            if (QWidget *box = QApplication::activeModalWidget()) {
                warnings << box->findChild<QLabel *>("qt_msgbox_label")->text();
                QTest::keyClick(box, Qt::Key_Return);
            }
        });
    };

    // The window is active again after each dialog, as it is for the user.
    auto goTo = [&] {
        QApplication::setActiveWindow(frame.get());
        view->setFocus();
        QTest::keyClick(view, Qt::Key_G, Qt::ControlModifier);
    };
    answer("a7");
    goTo();
    EXPECT_EQ(view->model().caret().address, 0xA7);

    // In the word view the address counts words.
    ASSERT_TRUE(view->SetBufferLayoutView("WORDVIEW"));
    answer("10");
    goTo();
    EXPECT_EQ(view->model().caret().address, 0x20);
    ASSERT_TRUE(view->SetBufferLayoutView("BYTEVIEW"));

    answer("100");
    dismissWarning();
    goTo();
    EXPECT_EQ(view->model().caret().address, 0xA7);
    ASSERT_EQ(warnings.size(), 1);
    EXPECT_TRUE(warnings[0].contains("100 is no address of this buffer"));
}

// The undo memory and the length of the hit list are settings; with undo off a change leaves
// nothing to undo.
TEST_F(ImageShapeApp, UndoMemoryIsASetting)
{
    frame->settings().setUndoBudgetMiB(0);
    frame->settings().setHitListLimit(250);
    ASSERT_TRUE(frame->openFile(write("undo.bin", QByteArray(0x40, '\0'))));
    KCDataView *view = frame->currentView();
    QApplication::setActiveWindow(frame.get());
    view->setFocus();
    QTest::keyClicks(view, "AB");
    EXPECT_EQ(frame->document()->GetData(0), 0xAB);
    EXPECT_FALSE(frame->action(QKeySequence::Undo)->isEnabled());
    frame->settings().save();
    EXPECT_EQ(KCAppSettings(dir.filePath("korel5.ini")).undoBudgetMiB(), 0u);
    EXPECT_EQ(KCAppSettings(dir.filePath("korel5.ini")).hitListLimit(), 250u);
    EXPECT_EQ(KCAppSettings(dir.filePath("korel5-none.ini")).undoBudgetMiB(), KCAppSettings::DefaultUndoBudgetMiB);
}
