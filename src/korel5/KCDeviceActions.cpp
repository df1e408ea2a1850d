#include "KCDeviceActions.h"

#include "KCAppHost.h"
#include "KCDeviceCountView.h"
#include "KCDeviceMenu.h"
#include "KCMainFrame.h"
#include "doc/KCDataDoc.h"
#include "engine/KCEngine.h"
#include "engine/KCEngineFactory.h"
#include "engine/KCFlashromEngine.h"
#include "engine/KCEngineListener.h"
#include "engine/KCProductionListener.h"
#include "engine/KCProductionRun.h"
#include "host/KCMainProgDataExChange.h"
#include "host/KCMessageMarks.h"
#include "serial/KCSerialDispenser.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QEventLoop>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMetaObject>
#include <QProgressDialog>
#include <QTimer>

#include <atomic>
#include <thread>

namespace {

constexpr int ProgressMax = 100;
constexpr unsigned MaxQuantity = 1000000;

// Forwards the engine's words from its thread to the window's.
class Forwarder : public KCEngineListener
{
public:
    Forwarder(QObject *context, KCMainProgDataExChange &host, QProgressDialog *progress)
        : m_context(context), m_host(host), m_progress(progress)
    {
    }
    void engineMessage(const std::string &line) override
    {
        QMetaObject::invokeMethod(m_context, [this, line] { m_host.ShowMessage(line); }, Qt::QueuedConnection);
    }
    void engineProgress(const std::string &operation, unsigned percent) override
    {
        QMetaObject::invokeMethod(m_context, [this, operation, percent] {
            if (m_progress) {
                m_progress->setLabelText(QString::fromStdString(operation));
                m_progress->setValue(static_cast<int>(percent));
            }
        }, Qt::QueuedConnection);
    }

private:
    QObject *m_context;
    KCMainProgDataExChange &m_host;
    QProgressDialog *m_progress;
};

} // namespace

KCDeviceActions::KCDeviceActions(KCMainFrame &frame, KCDeviceMenu &devices)
    : QObject(&frame), m_frame(frame), m_devices(devices)
{
    connect(&devices, &KCDeviceMenu::deviceChanged, this, &KCDeviceActions::updateEnabled);
    connect(&devices, &KCDeviceMenu::documentChanged, this, &KCDeviceActions::updateEnabled);
}

void KCDeviceActions::addTo(QMenu *menu)
{
    menu->addSeparator();
    const struct
    {
        const char *text;
        Command command;
    } commands[] = {{"&Read", Read},       {"&Blank Check", BlankCheck}, {"&Erase", Erase},
                    {"&Program", Program}, {"&Verify", Verify},          {"&Auto", Auto}};
    for (const auto &c : commands) {
        QAction *action = menu->addAction(tr(c.text));
        const Command command = c.command;
        connect(action, &QAction::triggered, this, [this, command] { runCommand(command); });
        m_actions.append(action);
    }
    QAction *production = menu->addAction(tr("Production R&un..."));
    connect(production, &QAction::triggered, this, [this] {
        bool ok = false;
        const int quantity = QInputDialog::getInt(&m_frame, tr("Production Run"), tr("Devices to program:"), 1, 1,
                                                  static_cast<int>(MaxQuantity), 1, &ok);
        if (ok)
            productionRun(static_cast<unsigned>(quantity));
    });
    m_actions.append(production);
    QAction *choose = menu->addAction(tr("Pro&grammer..."));
    connect(choose, &QAction::triggered, this, [this] {
        bool ok = false;
        const QString spec = QInputDialog::getText(&m_frame, tr("Programmer"),
                                                   tr("Engine and programmer, e.g. \"flashrom ch341a_spi\", "
                                                      "\"flashrom emulator:FILE\", \"virtual FILE\":"),
                                                   QLineEdit::Normal, m_engine + " " + programmer(), &ok);
        if (ok)
            setEngine(spec.section(' ', 0, 0), spec.section(' ', 1));
    });
    m_actions.append(choose);
    updateEnabled();
}

void KCDeviceActions::updateEnabled()
{
    for (QAction *a : m_actions)
        a->setEnabled(device() != nullptr);
}

void KCDeviceActions::setEngine(const QString &engine, const QString &programmer)
{
    m_engine = engine;
    m_programmer = programmer;
}

const DEVICE_KRLXDEF_ITEM *KCDeviceActions::device() const
{
    const KCDataDoc *doc = m_frame.document();
    return doc && doc->HasDeviceX() ? &doc->GetDeviceItemX() : m_devices.device();
}

QString KCDeviceActions::programmer() const
{
    const DEVICE_KRLXDEF_ITEM *device = this->device();
    if (!m_programmer.isEmpty() || !device)
        return m_programmer;
    // Without a programmer chosen, the device is one in a file of its own: flashrom's emulator
    // of it where there is one, else the virtual device.
    const QString file = QDir::temp().filePath("korel5-" + QString::fromStdString(device->name) + ".bin");
    return engineName() == KCEngineFactory::Flashrom ? KCFlashromEngine::EmulatorPrefix + file : file;
}

QString KCDeviceActions::engineName() const
{
    const DEVICE_KRLXDEF_ITEM *device = this->device();
    if (!m_engine.isEmpty() || !device)
        return m_engine;
    return device->engineEmulation.empty() ? KCEngineFactory::Virtual : KCEngineFactory::Flashrom;
}

std::unique_ptr<KCEngine> KCDeviceActions::makeEngine(QString *why)
{
    const DEVICE_KRLXDEF_ITEM *device = this->device();
    if (!device) {
        *why = tr("No device is selected.");
        return nullptr;
    }
    std::string problem;
    auto engine = KCEngineFactory::create(*device, engineName().toStdString(), programmer().toStdString(), &problem);
    if (!engine)
        *why = QString::fromStdString(problem);
    return engine;
}

KCEngineResult KCDeviceActions::runOffThread(KCEngine &engine, const std::function<KCEngineResult()> &work)
{
    KCEngineResult result;
    std::atomic<bool> done{false};
    QEventLoop loop;
    std::thread worker([&] {
        result = work();
        done = true;
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    // The loop may be told to quit before it runs: it looks again now and then.
    QTimer check;
    connect(&check, &QTimer::timeout, &loop, [&] {
        if (done)
            loop.quit();
    });
    check.start(ProgressMax);
    if (!done)
        loop.exec();
    worker.join();
    (void)engine;
    return result;
}

KCEngineResult KCDeviceActions::runCommand(Command command)
{
    static const char *const Names[] = {"Read", "Blank Check", "Erase", "Program", "Verify", "Auto"};
    KCMainProgDataExChange &host = m_frame.host();
    KCDataDoc *doc = m_frame.document();
    QString why;
    std::unique_ptr<KCEngine> engine = doc ? makeEngine(&why) : nullptr;
    if (!engine) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + (doc ? why : tr("No document.")).toStdString());
        return KCEngineResult::fail(why.toStdString());
    }
    QProgressDialog progress(tr(Names[command]), tr("Stop"), 0, ProgressMax, &m_frame);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    connect(&progress, &QProgressDialog::canceled, this, [&engine] { engine->cancel(); });
    Forwarder forwarder(this, host, &progress);
    engine->setListener(&forwarder);
    const cByteBuffer &buffer = doc->AlgoParam().buffer(0);
    const std::vector<uint8_t> image(buffer.data(), buffer.data() + buffer.size());
    std::vector<uint8_t> read;
    const KCEngineResult result = runOffThread(*engine, [&]() -> KCEngineResult {
        switch (command) {
        case Read: return engine->read(&read);
        case BlankCheck: return engine->blankCheck();
        case Erase: return engine->erase();
        case Program: return engine->program(image);
        case Verify: return engine->verify(image);
        case Auto: return engine->autoProgram(image);
        }
        return KCEngineResult::fail("unknown command");
    });
    QApplication::processEvents(); // the engine's last words before the result
    if (command == Read && result.passed())
        doc->WriteRange(0, read.data(), std::min<uint64_t>(read.size(), buffer.size()));
    host.ShowMessage(result.passed() ? std::string(Names[command]) + ": passed"
                                     : KCMessageMarks::prefix(KCMessageMarks::Error) + Names[command] + ": "
                                           + result.message);
    return result;
}

namespace {
// The counts of a run, shown live in the progress window and, as the document counted them,
// in the counter view.
class RunCounter : public KCProductionListener
{
public:
    RunCounter(QProgressDialog &progress, unsigned quantity, KCDeviceCountView *view)
        : m_progress(progress), m_quantity(quantity), m_view(view)
    {
    }
    void deviceStarted(unsigned index, const std::string &number) override
    {
        m_progress.setLabelText(QString(number.empty() ? "Device %1 of %2%3\npassed %4, failed %5"
                                                      : "Device %1 of %2, serial %3\npassed %4, failed %5")
                                    .arg(index + 1).arg(m_quantity).arg(QString::fromStdString(number))
                                    .arg(m_passed).arg(m_failed));
    }
    void deviceDone(unsigned index, const std::string &, bool passed, const std::string &) override
    {
        (passed ? m_passed : m_failed)++;
        m_progress.setValue(static_cast<int>((index + 1) * ProgressMax / m_quantity));
        if (m_view)
            m_view->DrawCountInfo();
    }

private:
    QProgressDialog &m_progress;
    unsigned m_quantity;
    KCDeviceCountView *m_view;
    unsigned m_passed = 0, m_failed = 0;
};
} // namespace

bool KCDeviceActions::productionRun(unsigned quantity)
{
    KCMainProgDataExChange &host = m_frame.host();
    KCDataDoc *doc = m_frame.document();
    QString why;
    std::unique_ptr<KCEngine> engine = doc ? makeEngine(&why) : nullptr;
    if (!engine) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + (doc ? why : tr("No document.")).toStdString());
        return false;
    }
    // The document's serial settings decide the numbers; without a definition file the
    // devices get the buffer as it is.
    std::unique_ptr<KCSerialDispenser> dispenser;
    if (!doc->serialDefPath().empty()) {
        dispenser = std::make_unique<KCSerialDispenser>(&host, doc->serialDefPath(), doc->serialFlags());
        dispenser->setPolicy(KCSerialDispenser::policyOf(doc->serialFlags()));
    }
    // A CSV serial project gives every device its row as well; a file that fails its rule
    // check runs nothing.
    std::string csvErrors;
    cKrlSerialNumberHandler *csv = doc->prepareCsvRun(&csvErrors);
    if (!csv && !csvErrors.empty()) {
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Error) + "CSV serial variables file "
                         + doc->csvSerialData().path() + " failed its rule check; no device was programmed.");
        host.ShowMessage(csvErrors);
        return false;
    }
    QProgressDialog progress(tr("Production run"), tr("Stop"), 0, ProgressMax, &m_frame);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    Forwarder forwarder(this, host, nullptr);
    engine->setListener(&forwarder);
    KCProductionRun run(*doc, *engine);
    run.setSerial(dispenser.get(), doc->serialAddress(), doc->serialByteCount());
    run.setCsv(csv);
    run.setQuantity(quantity);
    // The counter view is in sight while the devices are counted.
    KCDeviceCountView *view = m_frame.findChild<KCDeviceCountView *>();
    if (auto *dock = view ? qobject_cast<QDockWidget *>(view->parentWidget()) : nullptr) {
        dock->show();
        dock->raise();
    }
    RunCounter counter(progress, quantity, view);
    run.setListener(&counter);
    connect(&progress, &QProgressDialog::canceled, this, [&run] { run.cancel(); });
    run.setEngineCall([this](KCEngine &e, const std::vector<uint8_t> &image) {
        return runOffThread(e, [&] { return e.autoProgram(image); });
    });
    const KCProductionRun::StopReason stop = run.run();
    QApplication::processEvents();
    if (stop != KCProductionRun::QuantityReached)
        host.ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + "Production run stopped: " + run.stopText());
    host.ShowMessage("Production run: passed " + std::to_string(run.passed()) + ", failed "
                     + std::to_string(run.failed()));
    return stop == KCProductionRun::QuantityReached && run.failed() == 0;
}
