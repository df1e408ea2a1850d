#include "KCAppHost.h"
#include "KCChildFrame.h"
#include "KCFileDialog.h"
#include "doc/KCDataDoc.h"
#include "KCDataView.h"
#include "KCDeviceMenu.h"
#include "doc/KCLayoutNames.h"
#include "KCMainFrame.h"
#include "host/KCMessageMarks.h"
#include "KCMessageWindow.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialSettings.h"
#include "KCStatusBar.h"
#include "KCWorkspaceTree.h"
#include "bufops/KCSplitBuffer.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <memory>

namespace {

const QString DemoFile = KRLDV_SOURCE_DATA_DIR "/demo/demo.bin";
const QString JedecFile = KRLDV_TEST_DATA_DIR "/jedec/tiny-lf.jed";

struct MainFrame : testing::Test
{
    MainFrame()
    {
        frame = std::make_unique<KCMainFrame>(dir.filePath("korel5.ini"));
        // Prompts get the answer that changes nothing: Cancel for a save question.
        frame->host().setInteractive(false);
        frame->show();
    }
    QString settingsFile() const { return dir.filePath("korel5.ini"); }
    QString childText(int i) const
    {
        const QTreeWidgetItem *root = frame->workspaceTree()->topLevelItem(0);
        return root && root->child(i) ? root->child(i)->text(0) : QString();
    }
    QListWidgetItem *lastMessage() const
    {
        KCMessageWindow *w = frame->messageWindow();
        return w->count() ? w->item(w->count() - 1) : nullptr;
    }

    QTemporaryDir dir;
    std::unique_ptr<KCMainFrame> frame;
};

// Answers the next file dialog as a user would: types the name and presses the OK button.
// Any other modal window is closed after a while, so a wrong prompt fails instead of hanging.
void answerFileDialog(const QString &name, int attempts = 300)
{
    QTimer::singleShot(10, [name, attempts] {
        QWidget *modal = QApplication::activeModalWidget();
        auto *dialog = qobject_cast<KCFileDialog *>(modal);
        if (!dialog) {
            if (attempts > 0)
                answerFileDialog(name, attempts - 1);
            else if (modal)
                modal->close();
            return;
        }
        const QFileInfo file(name);
        dialog->setDirectory(file.absolutePath());
        QTest::keyClicks(dialog->findChild<QLineEdit *>("fileNameEdit"), file.fileName());
        qobject_cast<QPushButton *>(dialog->controlById(KCFileDialog::IDC_OK))->click();
    });
}

} // namespace

TEST_F(MainFrame, OpenTypeAndCloseADocument)
{
    ASSERT_TRUE(frame->openFile(DemoFile));
    KCDataDoc *doc = frame->document();
    ASSERT_NE(doc, nullptr);
    KCDataView *view = frame->currentView();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(frame->workspaceTree()->topLevelItem(0)->text(0), "demo.bin");
    EXPECT_TRUE(childText(0).endsWith("[BYTEVIEW]")) << childText(0).toStdString();
    const QString sum = QString("%1").arg(doc->mainBufferParam()->checksum, 8, 16, QChar('0')).toUpper();
    EXPECT_TRUE(frame->statusPanes()->checksumText().endsWith(sum)) << frame->statusPanes()->checksumText().toStdString();
    EXPECT_EQ(frame->statusPanes()->modifiedText(), "");
    for (int i = 0; i < frame->messageWindow()->count(); ++i)
        EXPECT_FALSE(frame->messageWindow()->item(i)->text().startsWith(QChar(0xA7)));

    view->setFocus();
    QTest::keyClicks(view, "a5");
    EXPECT_EQ(doc->GetData(0), 0xA5);
    EXPECT_EQ(frame->statusPanes()->modifiedText(), "Modified");
    EXPECT_TRUE(frame->isWindowModified());
    EXPECT_FALSE(frame->statusPanes()->checksumText().endsWith(sum));

    EXPECT_FALSE(frame->closeDocument(true)); // the save question was cancelled
    EXPECT_EQ(frame->document(), doc);
    EXPECT_TRUE(frame->closeDocument(false));
    EXPECT_EQ(frame->document(), nullptr);
    EXPECT_EQ(frame->statusPanes()->checksumText(), "");
    EXPECT_EQ(frame->workspaceTree()->topLevelItemCount(), 0);
}

// A device whose usual files are binary images must not read a HEX file as one: the type
// its extension names stands over the device's default.
TEST_F(MainFrame, AFileOpensAsItsTypeWhateverTheDevicesDefault)
{
    ASSERT_TRUE(frame->devices()->select("AT24C02"));
    const QString hex = dir.filePath("small.hex");
    QFile f(hex);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(":0400100001020304E2\r\n:00000001FF\r\n");
    f.close();
    ASSERT_TRUE(frame->openFile(hex));
    KCDataDoc *doc = frame->document();
    EXPECT_EQ(doc->GetDeviceName(), "AT24C02");
    EXPECT_EQ(doc->GetData(0x10), 0x01);
    EXPECT_EQ(doc->GetData(0x13), 0x04);
    EXPECT_EQ(doc->GetData(0), 0xFF);
}

TEST_F(MainFrame, JedecFileOpensInTheFuseMapLayout)
{
    ASSERT_TRUE(frame->openFile(JedecFile));
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_JEDVIEW);
    EXPECT_TRUE(frame->statusPanes()->checksumText().startsWith("Fuse checksum"));
    EXPECT_TRUE(childText(0).endsWith("[JEDVIEW]"));

    ASSERT_TRUE(frame->showLayout(LAYOUT_WORDVIEW));
    EXPECT_TRUE(frame->statusPanes()->checksumText().startsWith("Checksum"));
    EXPECT_TRUE(childText(0).endsWith("[WORDVIEW]"));
    EXPECT_FALSE(frame->showLayout("NOVIEW"));

    // A second window on the same document; closing it leaves the document open.
    KCDataView *second = frame->newWindow();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(frame->document()->views().size(), 4u); // two windows, the frame's watcher, the options view
    second->parentWidget()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    ASSERT_NE(frame->document(), nullptr);
    EXPECT_EQ(frame->document()->views().size(), 3u);

    // Closing the last window closes the document.
    frame->currentView()->parentWidget()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    EXPECT_EQ(frame->document(), nullptr);
}

TEST_F(MainFrame, FailedOpenKeepsTheDocumentAndMarksShowAsColours)
{
    ASSERT_TRUE(frame->openFile(DemoFile));
    KCDataDoc *doc = frame->document();
    EXPECT_FALSE(frame->openFile(dir.filePath("missing.hex")));
    EXPECT_EQ(frame->document(), doc);
    QListWidgetItem *error = lastMessage();
    ASSERT_NE(error, nullptr);
    EXPECT_TRUE(error->text().contains("missing.hex"));
    EXPECT_EQ(error->data(Qt::UserRole).toInt(), KCMessageMarks::Error);
    EXPECT_FALSE(error->icon().isNull());

    frame->host().ShowMessage("\xA7" "WWNo Device Selected.", 0xFF000000, 0xFFFFFFFF, 0);
    QListWidgetItem *warning = lastMessage();
    EXPECT_EQ(warning->text(), "No Device Selected.");
    EXPECT_EQ(warning->data(Qt::UserRole).toInt(), KCMessageMarks::Warning);
    EXPECT_NE(warning->foreground().color(), error->foreground().color());
    frame->host().ShowMessage("plain", 0xFF000000, 0xFFFFFFFF, 0);
    EXPECT_TRUE(lastMessage()->icon().isNull());

    // One buffer document at a time: New is refused while this one is open.
    EXPECT_FALSE(frame->newDocument());
    EXPECT_EQ(frame->document(), doc);
}

TEST_F(MainFrame, DroppedFilesOpenTheFirst)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(JedecFile), QUrl::fromLocalFile(DemoFile)});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame.get(), &drop);
    QApplication::processEvents();
    ASSERT_NE(frame->document(), nullptr);
    EXPECT_TRUE(QString::fromStdString(frame->document()->getPathName()).endsWith("tiny-lf.jed"));

    QMimeData text;
    text.setText("not a file");
    QDragEnterEvent refused(QPoint(10, 10), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    refused.setAccepted(false);
    QApplication::sendEvent(frame.get(), &refused);
    EXPECT_FALSE(refused.isAccepted());
}

TEST_F(MainFrame, SettingsShapeNewBuffersAndPersist)
{
    frame->settings().setDefaultBufferSize(0x100);
    frame->settings().setFillByte(0x5A);
    ASSERT_TRUE(frame->newDocument());
    EXPECT_EQ(frame->document()->GetBufferSize(), 0x100u);
    EXPECT_EQ(frame->document()->GetData(0xFF), 0x5A);
    QFont font("DejaVu Sans Mono", 13);
    frame->settings().setFont(font);
    frame->settings().save();

    KCAppSettings reread(settingsFile());
    EXPECT_EQ(reread.defaultBufferSize(), 0x100u);
    EXPECT_EQ(reread.fillByte(), 0x5A);
    EXPECT_EQ(reread.font().pointSize(), 13);

    reread.setDefaultBufferSize(0); // a nonsense size falls back to the default
    EXPECT_EQ(reread.defaultBufferSize(), KCAppSettings::DefaultBufferSize);
    reread.setReadOnly(true);
    reread.setFillByte(0x11);
    reread.save();
    EXPECT_EQ(KCAppSettings(settingsFile()).fillByte(), 0x5A);
}

TEST_F(MainFrame, OpenAndSaveThroughTheFileDialog)
{
    frame->host().setInteractive(true);
    answerFileDialog(JedecFile);
    KCDataDoc::OnFileOpen(&frame->host());
    ASSERT_NE(frame->document(), nullptr);
    EXPECT_TRUE(QString::fromStdString(frame->document()->getPathName()).endsWith("tiny-lf.jed"));
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFileType, LS_JEDEC); // the combo followed the typed name
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_JEDVIEW);
    EXPECT_EQ(frame->settings().lastDirectory(), KRLDV_TEST_DATA_DIR "/jedec/");

    const QString out = dir.filePath("copy.hex");
    answerFileDialog(out);
    ASSERT_TRUE(frame->document()->SaveDoc(1));
    QFile saved(out);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_TRUE(saved.readAll().startsWith(':')); // written as Intel HEX
    EXPECT_EQ(frame->document()->mainBufferParam()->fileType, LS_INTELHEX);
}

TEST_F(MainFrame, TakeNextSerialNumberConsumesOneIntoTheBuffer)
{
    ASSERT_TRUE(frame->openFile(DemoFile));
    KCDataDoc *doc = frame->document();
    QAction *take = nullptr;
    for (QAction *a : frame->findChildren<QAction *>())
        if (a->text() == "&Take Next Serial Number")
            take = a;
    ASSERT_NE(take, nullptr);
    EXPECT_FALSE(take->isEnabled()); // serial numbers are off

    const QString ser = dir.filePath("line.ser");
    QFile f(ser);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("Line\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0x41\r\nSTEP=0x1\r\n}\r\n");
    f.close();
    KCSerialSettings settings(&doc->serialState());
    settings.setChoice(KCSerialSettings::ChoiceCustom);
    settings.setFileName(ser.toStdString());
    settings.setFlag(KCSerialDefCtrl::FlagBin);
    settings.setAddress(0x20);
    settings.setByteCount(1);
    settings.OnApply(); // shows the next number, takes none
    EXPECT_EQ(doc->GetData(0x20), 0x41);
    ASSERT_NE(doc->serialMode(), 0);
    EXPECT_TRUE(take->isEnabled());
    take->trigger();
    // Ctrl+T reaches the command from the data view too (no subwindow shortcut takes it).
    QApplication::setActiveWindow(frame.get());
    frame->currentView()->setFocus();
    QTest::keyClick(frame->currentView(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(doc->GetData(0x20), 0x42);
    EXPECT_EQ(lastMessage()->text(), "Serial number 42 written at 0x00000020 (1 byte)");
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_TRUE(f.readAll().contains("NEXT=0x43"));
    f.close();

    // Decimal text takes three digits for a one-byte block: one byte would cut it, so nothing
    // is taken and the user is told why.
    settings.setFlag(KCSerialDefCtrl::FlagDec);
    settings.setFlag(KCSerialDefCtrl::FlagAsc);
    settings.OnApply();
    take->trigger();
    EXPECT_TRUE(lastMessage()->text().contains("set the byte count to 3 or more")) << lastMessage()->text().toStdString();
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_TRUE(f.readAll().contains("NEXT=0x43"));
}

// A split adds one document per lane, each in its own window named after its lane; the
// window in front decides the current document, and closing one leaves the others open.
TEST_F(MainFrame, SplitOpensLaneDocumentsBesideTheSource)
{
    ASSERT_TRUE(frame->openFile(DemoFile));
    KCDataDoc *source = frame->document();
    QMdiSubWindow *sourceWindow = frame->mdiArea()->currentSubWindow();
    KCSplitBuffer split(frame->mdiArea(), [this] { return frame->addDocument(); });
    split.OnOK(); // 16 bits into two 8-bit lanes over the image
    ASSERT_EQ(frame->documentCount(), 3);
    EXPECT_EQ(frame->document()->GetTitle(), "demo.bin [Odd  Byte]");
    QStringList titles;
    for (QMdiSubWindow *w : frame->mdiArea()->subWindowList())
        titles << w->windowTitle();
    EXPECT_TRUE(titles.contains("demo.bin [Even Byte]")) << titles.join(", ").toStdString();
    EXPECT_EQ(lastMessage()->text(), "round trip: identical");
    EXPECT_EQ(frame->workspaceTree()->topLevelItemCount(), 3); // every document, the current one first
    EXPECT_EQ(frame->workspaceTree()->topLevelItem(0)->text(0), "demo.bin [Odd  Byte] *");
    EXPECT_EQ(frame->document()->GetData(0), source->GetData(1));
    EXPECT_FALSE(frame->newDocument()); // File New still keeps to one buffer document
    EXPECT_EQ(frame->documentCount(), 3);

    frame->mdiArea()->setActiveSubWindow(sourceWindow);
    EXPECT_EQ(frame->document(), source);
    EXPECT_EQ(frame->mdiArea()->subWindowList().size(), 3);
    EXPECT_TRUE(frame->closeDocument(false));
    EXPECT_EQ(frame->documentCount(), 2);
    ASSERT_NE(frame->document(), nullptr);
    EXPECT_EQ(frame->mdiArea()->subWindowList().size(), 2);
    EXPECT_TRUE(frame->closeDocument(false));
    EXPECT_EQ(frame->documentCount(), 1);
    frame.reset(); // the last lane's windows and document go with the frame
}

// A project keeps where its window stood: its normal place and size, and maximised.
TEST_F(MainFrame, AProjectPutsItsWindowWhereItStood)
{
    ASSERT_TRUE(frame->openFile(DemoFile));
    DEVICE_KRLXDEF_ITEM device;
    device.name = "TEST27C512";
    device.bufferSize = 0x10000;
    device.BEA = device.DEA = device.DMA = 0xFFFF;
    ASSERT_TRUE(frame->document()->selectDevice(device));
    auto *child = qobject_cast<KCChildFrame *>(frame->currentView()->parentWidget());
    ASSERT_NE(child, nullptr);
    child->showNormal();
    child->setGeometry(10, 20, 200, 150);
    EXPECT_EQ(frame->document()->windowPlacement(), (TAG_WINDOW_PLACEMENT{10, 20, 200, 150, PLACEMENT_NORMAL}));
    child->showMaximized();
    EXPECT_EQ(frame->document()->windowPlacement(), (TAG_WINDOW_PLACEMENT{10, 20, 200, 150, PLACEMENT_MAXIMIZED}));
    const std::string path = dir.filePath("window.kpf2").toStdString();
    frame->document()->SetKPFFileFlag(LS_KPF2);
    ASSERT_TRUE(frame->document()->OnSaveDocument(path.c_str()));
    ASSERT_TRUE(frame->closeDocument(false));

    ASSERT_TRUE(frame->openFile(QString::fromStdString(path)));
    child = qobject_cast<KCChildFrame *>(frame->currentView()->parentWidget());
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(child->isMaximized());
    child->showNormal();
    EXPECT_EQ(child->geometry(), QRect(10, 20, 200, 150));
}
