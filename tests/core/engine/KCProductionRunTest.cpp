// Production runs on the virtual device: results counted, numbers journaled, failed numbers
// and CSV rows given back under "reuse", and numbers left behind by dead stations recovered.
#include "doc/KCDataDoc.h"
#include "engine/KCProductionRun.h"
#include "engine/KCVirtualDeviceEngine.h"
#include "serial/KCSerialDispenser.h"
#include "serial/KCSerialJournal.h"
#include "serial/cKrlSerialNumberHandler.h"
#include "serial/cSerialJournalAudit.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned SerialAddress = 0x100;
constexpr unsigned SerialBytes = 8;
constexpr unsigned Quantity = 30;
constexpr unsigned FirstNumber = 0x10;
const unsigned Flags = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagAsc | KCSerialDefCtrl::FlagBigEndian;

// A station of this host whose process has ended.
std::string deadStation()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    const std::string self = KCSerialJournal::thisStation();
    return self.substr(0, self.rfind(':') + 1) + std::to_string(child);
}

struct ProductionRun : testing::Test
{
    ProductionRun()
    {
        writeFile(defFile, "S\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x10\r\nSTEP=0x1\r\n}\r\n");
    }
    unsigned nextInFile() const
    {
        const std::string text = readFile(defFile);
        return static_cast<unsigned>(std::stoul(text.substr(text.find("NEXT=") + 5), nullptr, 0));
    }
    std::vector<TAG_SERIAL_JOURNAL_EVENT> journal() const
    {
        std::vector<TAG_SERIAL_JOURNAL_EVENT> events;
        KCSerialJournal(KCSerialJournal::pathFor(defFile)).read(&events);
        return events;
    }
    // Runs `quantity` devices; returns the run's stop reason.
    KCProductionRun::StopReason run(KCSerialDispenser::Policy policy, const std::string &faults, unsigned quantity,
                                    cKrlSerialNumberHandler *csv = nullptr)
    {
        std::string why;
        auto engine = KCVirtualDeviceEngine::fromSpec(dir.file("chip.bin") + faults, doc.GetBufferSize(), &why);
        EXPECT_TRUE(engine) << why;
        KCSerialDispenser dispenser(&host, defFile, Flags);
        dispenser.setPolicy(policy);
        KCProductionRun r(doc, *engine);
        r.setSerial(&dispenser, SerialAddress, SerialBytes);
        r.setCsv(csv);
        r.setQuantity(quantity);
        const KCProductionRun::StopReason stop = r.run();
        passed = r.passed();
        failed = r.failed();
        return stop;
    }
    KCTestHost host;
    KCDataDoc doc;
    TempDir dir;
    std::string defFile = dir.file("line.ser");
    unsigned passed = 0, failed = 0;
};

} // namespace

TEST_F(ProductionRun, FaultsAreFailsAndDiscardUsesTheirNumbersUp)
{
    ASSERT_EQ(run(KCSerialDispenser::Discard, ",fail=0.2,verify-fault=0.2,seed=3", Quantity),
              KCProductionRun::QuantityReached);
    EXPECT_EQ(passed + failed, Quantity);
    EXPECT_GT(failed, 0u);
    EXPECT_EQ(nextInFile(), FirstNumber + Quantity);
    // The document's counters, which its project keeps, count the same devices.
    EXPECT_EQ(host.GetPassCount(), int(passed));
    EXPECT_EQ(host.GetFailCount(), int(failed));
    const cSerialJournalAudit audit(journal());
    EXPECT_EQ(audit.passed(), passed);
    EXPECT_EQ(audit.failed(), failed);
    EXPECT_TRUE(audit.open().empty());
    EXPECT_TRUE(audit.repeats().empty());
    EXPECT_TRUE(audit.reuseList().empty());
}

TEST_F(ProductionRun, ReuseHandsFailedNumbersOutAgainAndLosesNone)
{
    ASSERT_EQ(run(KCSerialDispenser::Reuse, ",fail=0.2,verify-fault=0.2,seed=3", Quantity),
              KCProductionRun::QuantityReached);
    ASSERT_GT(failed, 0u);
    const cSerialJournalAudit audit(journal());
    EXPECT_TRUE(audit.repeats().empty());
    // Every number the file moved past either passed or waits to be handed out again.
    EXPECT_EQ(nextInFile() - FirstNumber, passed + audit.reuseList().size());
    std::map<std::string, int> passes;
    for (const TAG_SERIAL_JOURNAL_EVENT &e : journal())
        passes[e.key] += e.kind == TAG_SERIAL_JOURNAL_EVENT::Pass;
    for (const auto &p : passes)
        EXPECT_LE(p.second, 1) << p.first;

    // A failed device's number waits and goes to the next device, whose chip then holds it.
    ASSERT_EQ(run(KCSerialDispenser::Reuse, ",fail=1", 1), KCProductionRun::QuantityReached);
    const cSerialJournalAudit failedOne(journal());
    ASSERT_EQ(failedOne.reuseList().size(), 1u);
    const std::string lastWaiting = failedOne.reuseList().front().key;
    ASSERT_EQ(run(KCSerialDispenser::Reuse, "", 1), KCProductionRun::QuantityReached);
    EXPECT_EQ(failed, 0u);
    const cSerialJournalAudit after(journal());
    EXPECT_TRUE(after.reuseList().empty());
    EXPECT_EQ(after.passed(), nextInFile() - FirstNumber);
    EXPECT_EQ(journal().back().key, lastWaiting);
    char text[16];
    std::snprintf(text, sizeof text, "%08lX", std::stoul(lastWaiting.substr(lastWaiting.find("0x")), nullptr, 16));
    EXPECT_EQ(readFile(dir.file("chip.bin")).substr(SerialAddress, SerialBytes), text);
}

TEST_F(ProductionRun, NumbersLeftByDeadStationsComeBack)
{
    // A station journaled 0x10 and died before the file moved on; another died holding 0x0F
    // (the file had moved past it).
    const std::string dead = deadStation();
    writeFile(KCSerialJournal::pathFor(defFile), "2026-01-01T00:00:00Z " + dead + " take 0:0x0000000F 3030303030303046\n"
                                                 "2026-01-01T00:00:01Z " + dead + " take 0:0x00000010 3030303030303130\n");
    ASSERT_EQ(run(KCSerialDispenser::Reuse, "", 2), KCProductionRun::QuantityReached);
    const cSerialJournalAudit audit(journal());
    EXPECT_TRUE(audit.repeats().empty());
    EXPECT_TRUE(audit.open().empty());
    EXPECT_EQ(audit.passed(), 2u);
    EXPECT_EQ(nextInFile(), FirstNumber + 1);
    std::vector<std::string> passedKeys;
    for (const TAG_SERIAL_JOURNAL_EVENT &e : journal())
        if (e.kind == TAG_SERIAL_JOURNAL_EVENT::Pass)
            passedKeys.push_back(e.key);
    EXPECT_EQ(passedKeys, (std::vector<std::string>{"0:0x0000000F", "0:0x00000010"}));
}

TEST_F(ProductionRun, StopsWhenNoNumberCanBeHad)
{
    writeFile(defFile, "S\r\n{\r\nTYPE=CALC\r\nLENGTH=9\r\nNEXT=0x10\r\n}\r\n"); // a length no number has
    EXPECT_EQ(run(KCSerialDispenser::Discard, "", Quantity), KCProductionRun::NumbersRanOut);
    EXPECT_EQ(passed + failed, 0u);
    EXPECT_TRUE(journal().empty());
}

TEST_F(ProductionRun, CsvRowsOfFailedDevicesAndDeadStationsComeBackUnderReuse)
{
    // Line 3 is marked by a station of this host that died holding it; 4 and 5 are free.
    const std::string dead = deadStation();
    const std::string csvFile = dir.file("line.csv");
    writeFile(csvFile, "#var,MAC,0x20,2,hex\r\nUSED,MAC\r\n" + dead + ",0A01\r\n,0A02\r\n,0A03\r\n");
    writeFile(KCSerialJournal::pathFor(csvFile), "2026-01-01T00:00:00Z " + dead + " take row:3 0A01\n");
    auto rowJournal = [&] {
        std::vector<TAG_SERIAL_JOURNAL_EVENT> events;
        KCSerialJournal(KCSerialJournal::pathFor(csvFile)).read(&events);
        return events;
    };
    cKrlSerialNumberHandler csv(csvFile, cKrlSerialNumberHandler::ModeLenient);
    csv.setPolicy(KCSerialDispenser::Reuse);

    // Both failing devices get the dead station's row: it goes back after each.
    ASSERT_EQ(run(KCSerialDispenser::Reuse, ",fail=1", 2, &csv), KCProductionRun::QuantityReached);
    EXPECT_EQ(failed, 2u);
    EXPECT_NE(readFile(csvFile).find("\r\n,0A02"), std::string::npos); // line 4 still free
    ASSERT_EQ(cSerialJournalAudit(rowJournal()).reuseList().size(), 1u);
    EXPECT_EQ(cSerialJournalAudit(rowJournal()).reuseList().front().key, "row:3");

    ASSERT_EQ(run(KCSerialDispenser::Reuse, "", 2, &csv), KCProductionRun::QuantityReached);
    EXPECT_EQ(passed, 2u);
    EXPECT_EQ(readFile(dir.file("chip.bin")).substr(0x20, 2), "\x0A\x02"); // the last device: line 4
    const cSerialJournalAudit rows(rowJournal());
    EXPECT_TRUE(rows.reuseList().empty());
    EXPECT_TRUE(rows.open().empty());
    EXPECT_TRUE(rows.repeats().empty());
    EXPECT_EQ(rows.passed(), 2u);
    EXPECT_EQ(csv.freeRows(), 1u);

    // Under "discard" a failed device's row stays used: the next device gets line 5.
    csv.setPolicy(KCSerialDispenser::Discard);
    ASSERT_EQ(run(KCSerialDispenser::Discard, ",fail=1", 1, &csv), KCProductionRun::QuantityReached);
    EXPECT_TRUE(cSerialJournalAudit(rowJournal()).reuseList().empty());
    EXPECT_EQ(run(KCSerialDispenser::Discard, "", 1, &csv), KCProductionRun::NumbersRanOut);
}
