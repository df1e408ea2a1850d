// Device > Select Device picks a device from the list by typing, and the document follows it:
// layout, first address shown, buffer size, options view; No Device goes back.
#include "KCAppHost.h"
#include "KCDataView.h"
#include "KCDeviceMenu.h"
#include "KCDeviceOptions.h"
#include "KCMainFrame.h"
#include "KCSelectDeviceDialog.h"
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLineEdit>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>

namespace {

struct DeviceMenu : testing::Test
{
    DeviceMenu()
    {
        frame = std::make_unique<KCMainFrame>(dir.filePath("korel5.ini"));
        frame->host().setInteractive(false);
        frame->show();
        EXPECT_TRUE(frame->newDocument());
    }
    // Ctrl+D, then the filter typed and Enter, as a user picks a device.
    void pickByKeys(const QString &filter)
    {
        QTimer::singleShot(0, [filter] {
            auto *dialog = qobject_cast<KCSelectDeviceDialog *>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            auto *edit = dialog->findChild<QLineEdit *>("deviceFilter");
            QTest::keyClicks(edit, filter);
            QTest::keyClick(edit, Qt::Key_Return);
        });
        QApplication::setActiveWindow(frame.get());
        frame->currentView()->setFocus();
        QTest::keyClick(frame->currentView(), Qt::Key_D, Qt::ControlModifier);
    }
    // The address column of the first row of data shown.
    QString firstAddressShown()
    {
        KCDataViewModel &m = frame->currentView()->model();
        TAG_VIEW_ROW row;
        for (int line = m.topLineCount(); line < m.topLineCount() + 5; ++line) {
            m.renderScreenLine(line, row);
            const QString text = QString::fromStdString(row.text).trimmed();
            if (!text.isEmpty() && !text.endsWith(':'))
                return text.section(' ', 0, 0);
        }
        return {};
    }
    QTemporaryDir dir;
    std::unique_ptr<KCMainFrame> frame;
};

} // namespace

TEST_F(DeviceMenu, SelectingByKeysReconfiguresTheDocument)
{
    pickByKeys("stm32f103");
    KCDataDoc *doc = frame->document();
    ASSERT_EQ(doc->GetDeviceName(), "STM32F103C8");
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_BYTEVIEW_OFFSET);
    EXPECT_EQ(firstAddressShown(), "08000000");
    EXPECT_EQ(doc->GetBufferSize(), 0x10000u);
    EXPECT_TRUE(frame->devices()->optionsDock()->isVisible());
    EXPECT_GT(frame->devices()->optionsView()->tabBar()->count(), 0);

    // The recent list leads the dialog next time; a PIC18F shows its areas at their addresses.
    pickByKeys("PIC18F442");
    EXPECT_EQ(doc->GetDeviceName(), "PIC18F442");
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_BYTEVIEW_PIC18F);
    EXPECT_EQ(firstAddressShown(), "0000000");
    EXPECT_EQ(frame->settings().recentDevices(), (QStringList{"PIC18F442", "STM32F103C8"}));

    // A file opened now loads through the device.
    const QString hex = dir.filePath("app.hex");
    QFile f(hex);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(":0400000001020304F2\n:00000001FF\n");
    f.close();
    ASSERT_TRUE(frame->openFile(hex));
    EXPECT_EQ(frame->document()->GetDeviceName(), "PIC18F442");
    EXPECT_EQ(frame->document()->GetBufferSize(), 0x7100u);
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_BYTEVIEW_PIC18F);

    for (QAction *a : frame->findChildren<QAction *>())
        if (a->text() == "&No Device")
            a->trigger();
    EXPECT_EQ(frame->document()->HasDeviceX(), 0);
    EXPECT_EQ(frame->currentView()->GetBufferLayoutName(), LAYOUT_BYTEVIEW);
    EXPECT_FALSE(frame->devices()->optionsDock()->isVisible());
    EXPECT_EQ(frame->document()->GetData(3), 4); // the bytes stay
}

// Selecting a small device over a loaded image asks before cutting; Cancel keeps everything.
TEST_F(DeviceMenu, CuttingAnImageIsAskedFirst)
{
    const QString bin = dir.filePath("big.bin");
    QFile f(bin);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(1024, '\x5A'));
    f.close();
    ASSERT_TRUE(frame->openFile(bin));
    EXPECT_FALSE(frame->devices()->select("AT24C02")); // the test host answers Cancel
    EXPECT_EQ(frame->document()->GetBufferSize(), 1024u);
    EXPECT_EQ(frame->document()->HasDeviceX(), 0);
    EXPECT_FALSE(frame->devices()->select("NO-SUCH-PART"));
}
