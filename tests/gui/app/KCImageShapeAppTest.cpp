// The application keeps an image's shape and shows the same checksum as the command line.
#include "KCAppHost.h"
#include "KCDataDoc.h"
#include "KCDataView.h"
#include "KCMainFrame.h"
#include "KCStatusBar.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

struct ImageShapeApp : testing::Test
{
    ImageShapeApp()
    {
        frame = std::make_unique<KCMainFrame>(dir.filePath("korel5.ini"));
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
    std::unique_ptr<KCMainFrame> frame;
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
    for (QAction *a : frame->findChildren<QAction *>())
        if (a->shortcut() == QKeySequence::Save)
            a->trigger();
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
