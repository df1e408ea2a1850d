// The Device menu's engine commands on the virtual device: Auto programs what Read then
// brings back, and a production run counts its devices in the counter view, journals its
// numbers and follows the serial settings' policy for failed devices.
#include "KCAppHost.h"
#include "KCDeviceCountView.h"
#include "KCDeviceActions.h"
#include "KCDeviceMenu.h"
#include "KCMainFrame.h"
#include "doc/KCDataDoc.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialJournal.h"
#include "serial/cKrlSerialNumberHandler.h"
#include "serial/cSerialJournalAudit.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {
constexpr uint32_t SerialAddress = 0x10;
constexpr unsigned Devices = 3;

QAction *actionNamed(const KCMainFrame &frame, const QString &text)
{
    for (QAction *a : frame.findChildren<QAction *>())
        if (a->text() == text)
            return a;
    return nullptr;
}

// A frame on the virtual device; `action` is disabled until the AT24C02 document exists.
struct DeviceFrame : testing::Test
{
    QTemporaryDir dir;
    KCMainFrame frame{dir.filePath("korel5.ini")};
    KCDeviceActions *actions = nullptr;

    void open(const QString &action)
    {
        frame.host().setInteractive(false);
        frame.show();
        actions = frame.findChild<KCDeviceActions *>();
        ASSERT_NE(actions, nullptr);
        QAction *a = actionNamed(frame, action);
        ASSERT_NE(a, nullptr);
        EXPECT_FALSE(a->isEnabled());
        ASSERT_TRUE(frame.devices()->select("AT24C02"));
        ASSERT_TRUE(frame.newDocument());
        EXPECT_TRUE(a->isEnabled());
        actions->setEngine("virtual", dir.filePath("chip.bin"));
    }
};
} // namespace

TEST_F(DeviceFrame, AutoReadAndAProductionRunOnTheVirtualDevice)
{
    open("&Auto");

    KCDataDoc *doc = frame.document();
    ASSERT_NE(doc, nullptr);
    doc->FillRange(0, doc->GetBufferSize() - 1, 0x5A);
    EXPECT_TRUE(actions->runCommand(KCDeviceActions::Auto).passed());
    doc->FillRange(0, doc->GetBufferSize() - 1, 0x00);
    EXPECT_TRUE(actions->runCommand(KCDeviceActions::Read).passed());
    EXPECT_EQ(doc->GetData(0), 0x5A);
    EXPECT_FALSE(actions->runCommand(KCDeviceActions::BlankCheck).passed());

    const QString ser = dir.filePath("line.ser");
    QFile f(ser);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("Line\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0x41\r\nSTEP=0x1\r\n}\r\n");
    f.close();
    doc->setSerialDefPath(ser.toStdString());
    doc->setSerialFlags(KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagBin);
    doc->setSerialAddress(SerialAddress);
    doc->setSerialByteCount(1);
    EXPECT_TRUE(actions->productionRun(Devices));
    EXPECT_EQ(doc->GetData(SerialAddress), 0x41 + Devices - 1); // the last device's number
    std::vector<TAG_SERIAL_JOURNAL_EVENT> events;
    KCSerialJournal(KCSerialJournal::pathFor(ser.toStdString())).read(&events);
    EXPECT_EQ(cSerialJournalAudit(events).passed(), Devices);

    doc->setSerialFlags(doc->serialFlags() | KCSerialDefCtrl::FlagReuseFailed);
    actions->setEngine("virtual", dir.filePath("chip.bin") + ",fail=1");
    EXPECT_FALSE(actions->productionRun(2));
    KCSerialJournal(KCSerialJournal::pathFor(ser.toStdString())).read(&events);
    EXPECT_EQ(cSerialJournalAudit(events).reuseList().size(), 1u);
    auto *counter = frame.findChild<KCDeviceCountView *>();
    ASSERT_NE(counter, nullptr);
    EXPECT_EQ(counter->model().passText(), std::to_string(Devices));
    EXPECT_EQ(counter->model().failText(), "2");
    EXPECT_EQ(frame.host().GetFailCount(), 2);
}

// The CSV project chosen in korel5 gives each device of a run its row; a file that fails
// its rule check programs nothing.
TEST_F(DeviceFrame, AProductionRunStampsTheCsvProjectsRows)
{
    open("CSV Serial &Variables...");
    KCDataDoc *doc = frame.document();

    const QString csvPath = dir.filePath("vars.csv");
    QFile f(csvPath);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("#var,ID,0x20,4,asc\r\nUSED,ID\r\n,AB01\r\n,AB02\r\n,AB03\r\n");
    f.close();
    std::string error;
    ASSERT_TRUE(doc->setCSVSerialProjectFile(csvPath.toStdString(), error)) << error;
    EXPECT_TRUE(actions->productionRun(2));
    EXPECT_EQ(doc->GetData(0x20), 'A');
    EXPECT_EQ(doc->GetData(0x23), '2'); // the second device took the second row
    EXPECT_FALSE(doc->getKrlSerialNumberHandler().isInUse()); // free to be swapped again

    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write("#var,ID,0x20,4,asc\r\nUSED,ID\r\n,AB01,EXTRA\r\n");
    f.close();
    ASSERT_TRUE(doc->setCSVSerialProjectFile(csvPath.toStdString(), error)) << error;
    doc->FillRange(0x20, 0x23, 0xFF);
    EXPECT_FALSE(actions->productionRun(1));
    EXPECT_EQ(doc->GetData(0x20), 0xFF);
}

// An opened project brings its own device; the engine programs that one, not the device the
// Device menu happened to hold.
TEST_F(DeviceFrame, TheEngineProgramsTheDocumentsOwnDevice)
{
    open("&Auto");
    KCDataDoc *doc = frame.document();
    const QString project = dir.filePath("big.kpf2");
    {
        KCMainFrame other(dir.filePath("other.ini"));
        other.host().setInteractive(false);
        ASSERT_TRUE(other.devices()->select("AT24C512"));
        ASSERT_TRUE(other.newDocument());
        other.document()->SetKPFFileFlag(LS_KPF2);
        ASSERT_TRUE(other.document()->OnSaveDocument(project.toStdString().c_str()));
        other.document()->SetModifiedFlag(0);
    }
    doc->SetModifiedFlag(0);
    ASSERT_TRUE(frame.openFile(project));
    ASSERT_EQ(frame.document()->GetDeviceName(), "AT24C512");
    ASSERT_EQ(frame.devices()->device()->name, "AT24C02"); // the menu stays where it was
    const QString chip = dir.filePath("chip.bin");
    QFile::remove(chip);
    EXPECT_TRUE(actions->runCommand(KCDeviceActions::Auto).passed());
    EXPECT_EQ(QFileInfo(chip).size(), 65536);
}
