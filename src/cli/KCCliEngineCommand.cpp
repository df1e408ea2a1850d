#include "KCCliEngineCommand.h"

#include "KCCliArgs.h"
#include "KCCliSerialOptions.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCFileFormatRegistry.h"
#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "doc/KCDataDoc.h"
#include "engine/KCEngine.h"
#include "engine/KCEngineFactory.h"
#include "engine/KCEngineListener.h"
#include "engine/KCProductionListener.h"
#include "engine/KCProductionRun.h"
#include "fileio/KCFormatNames.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialDispenser.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <csignal>
#include <cstdio>
#include <map>
#include <memory>

namespace {

using Ctrl = KCSerialDefCtrl;

const std::map<std::string, unsigned> Representations = {
    {"hex-asc", Ctrl::FlagHex | Ctrl::FlagAsc},
    {"dec-asc", Ctrl::FlagDec | Ctrl::FlagAsc},
    {"hex-bin", Ctrl::FlagHex | Ctrl::FlagBin},
    {"dec-bin", Ctrl::FlagDec | Ctrl::FlagBin},
};
const char *const DefaultRepresentation = "hex-asc";
constexpr uint64_t MaxQuantity = 1000000;
constexpr uint64_t MaxTimeLimitSeconds = 86400;
constexpr unsigned MsPerSecond = 1000;

const char *const Names[] = {"program", "read", "verify", "erase", "blank"};
const char *const Summaries[] = {
    "program devices with an image, optionally with serial numbers (a production run)",
    "read a device into an image file",
    "verify a device against an image",
    "erase a device",
    "check that a device is blank",
};

const char *const CommonUsage =
    "  --device NAME        the device (krldv devices lists them)\n"
    "  --engine E           flashrom or virtual (default: the device's engine)\n"
    "  --programmer SPEC    flashrom: its -p argument (ch341a_spi, linux_spi:dev=..., ...) or\n"
    "                       emulator:FILE for flashrom's emulator of the chip backed by FILE;\n"
    "                       virtual: FILE[,fail=RATE][,verify-fault=RATE][,seed=N]\n"
    "  --time-limit S       seconds one engine run may take (default 120); a run that takes\n"
    "                       longer is killed and its device failed\n"
    "  --verbose            show the engine's output\n";

// The engine and run the SIGINT handler stops; set while one is under way.
std::atomic<KCProductionRun *> g_run{nullptr};
std::atomic<KCEngine *> g_engine{nullptr};

void onInterrupt(int)
{
    if (KCProductionRun *run = g_run.load())
        run->cancel();
    else if (KCEngine *engine = g_engine.load())
        engine->cancel();
}

class Reporter : public KCEngineListener, public KCProductionListener
{
public:
    explicit Reporter(bool verbose) : m_verbose(verbose) {}
    void engineMessage(const std::string &line) override
    {
        if (m_verbose)
            std::fprintf(stderr, "%s\n", line.c_str());
    }
    void engineProgress(const std::string &, unsigned) override {}
    void deviceStarted(unsigned, const std::string &) override {}
    void deviceDone(unsigned index, const std::string &number, bool passed, const std::string &why) override
    {
        std::printf("device %u%s%s: %s%s%s\n", index + 1, number.empty() ? "" : " serial ", number.c_str(),
                    passed ? "passed" : "failed", why.empty() ? "" : ": ", why.c_str());
        std::fflush(stdout);
    }

private:
    bool m_verbose;
};

} // namespace

const char *KCCliEngineCommand::name() const
{
    return Names[m_action];
}

const char *KCCliEngineCommand::summary() const
{
    return Summaries[m_action];
}

const char *KCCliEngineCommand::usage() const
{
    static std::string text[5];
    std::string &t = text[m_action];
    if (!t.empty())
        return t.c_str();
    switch (m_action) {
    case Program:
        t = "usage: krldv program IMAGE --device NAME --programmer SPEC [--engine E] [--quantity Q]\n"
            "                     [--serial DEFFILE --address A [--count N] [--repr R] [--little-endian]]\n"
            "                     [--journal FILE] [--policy discard|reuse] [--csv FILE] [--from FORMAT]\n"
            "\n"
            "A production run: per device the next serial number is taken from DEFFILE's first\n"
            "block and written into the image at buffer address A, then the device is erased,\n"
            "programmed and verified. Each device's result is printed, then \"passed P, failed F\".\n"
            "Exit status 0 only when all Q devices passed. Ctrl-C stops after killing the engine.\n"
            "  --quantity Q    devices to program (default 1)\n"
            "  --journal FILE  where numbers and results are journaled (default DEFFILE.journal)\n"
            "  --policy P      a failed device's number and CSV row: discard (used up, the default)\n"
            "                  or reuse (handed out again next)\n"
            "  --csv FILE      a CSV serial variables file: each device takes its next free row\n"
            "                  (krldv csv --help describes the file); journaled in FILE.journal\n";
        break;
    case Read:
        t = "usage: krldv read --device NAME --programmer SPEC [--engine E] -o OUT [--to FORMAT]\n\n"
            "Reads the device into OUT (format from --to or OUT's extension).\n";
        break;
    case Verify:
        t = "usage: krldv verify IMAGE --device NAME --programmer SPEC [--engine E] [--from FORMAT]\n\n"
            "Compares the device with IMAGE.\n";
        break;
    case Erase:
        t = "usage: krldv erase --device NAME --programmer SPEC [--engine E]\n\nErases the device.\n";
        break;
    case Blank:
        t = "usage: krldv blank --device NAME --programmer SPEC [--engine E]\n\n"
            "Checks that every byte of the device is erased.\n";
        break;
    }
    t += "\n";
    t += CommonUsage;
    return t.c_str();
}

int KCCliEngineCommand::run(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args,
                      {"device", "engine", "programmer", "time-limit", "quantity", "serial", "address", "count",
                       "repr", "journal", "policy", "from", "to", "output", "csv"},
                      {"little-endian", "verbose"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const std::vector<std::string> &p = a.positional();
    const bool takesImage = m_action == Program || m_action == Verify;
    if (problem.empty() && p.size() != (takesImage ? 1u : 0u))
        problem = takesImage ? "give one image" : std::string("krldv ") + name() + " takes no image";
    if (problem.empty() && !a.has("device"))
        problem = "give the device with --device NAME";
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.value("device"));
    uint64_t quantity = 1, timeLimit = KCEngine::DefaultTimeLimitMs / MsPerSecond, address = 0,
             count = Ctrl::MaxElementLength;
    if (problem.empty() && a.has("time-limit")
        && (!KCCliArgs::parseNumber(a.value("time-limit"), timeLimit, MaxTimeLimitSeconds) || timeLimit == 0))
        problem = "--time-limit takes seconds, 1 to " + std::to_string(MaxTimeLimitSeconds);
    if (problem.empty() && a.has("quantity")
        && (!KCCliArgs::parseNumber(a.value("quantity"), quantity, MaxQuantity) || quantity == 0))
        problem = "--quantity takes 1 to " + std::to_string(MaxQuantity) + " devices";
    const bool serial = a.has("serial");
    if (problem.empty() && m_action != Program
        && (serial || a.has("quantity") || a.has("journal") || a.has("policy") || a.has("csv")))
        problem = "serial numbers and quantities belong to krldv program";
    if (problem.empty() && serial
        && (!a.has("address") || !KCCliArgs::parseNumber(a.value("address"), address, 0xFFFFFFFF)))
        problem = "--address takes the buffer address of the serial number (0x for hexadecimal)";
    if (problem.empty() && a.has("count")
        && (!KCCliArgs::parseNumber(a.value("count"), count, Ctrl::MaxElementLength) || count == 0))
        problem = "--count takes 1.." + std::to_string(Ctrl::MaxElementLength);
    const auto representation = Representations.find(a.value("repr", DefaultRepresentation));
    if (problem.empty() && representation == Representations.end())
        problem = "--repr takes hex-asc, dec-asc, hex-bin or dec-bin, not " + a.value("repr");
    KCSerialDispenser::Policy policy = KCSerialDispenser::Discard;
    if (problem.empty() && a.has("policy") && !KCSerialDispenser::parsePolicy(a.value("policy"), &policy))
        problem = "--policy takes discard or reuse, not " + a.value("policy");
    if (problem.empty() && !serial && (a.has("address") || a.has("journal")))
        problem = "--address and --journal go with --serial DEFFILE";
    if (problem.empty() && a.has("policy") && !serial && !a.has("csv"))
        problem = "--policy goes with --serial DEFFILE or --csv FILE";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty() && m_action == Read) {
        if (!a.has("output"))
            problem = "give the output image with -o OUT";
        else
            to = KCCliImageLoader::outputFormat(a.value("output"), a.value("to"), problem);
    }
    if (problem.empty() && takesImage)
        problem = KCCliImageLoader::formatProblem(p[0], a.value("from"));
    if (!problem.empty())
        return usageError(problem);

    const DEVICE_KRLXDEF_ITEM *device = KCCliDeviceOption::find(a.value("device"));
    std::string why;
    std::unique_ptr<KCEngine> engine = KCEngineFactory::create(*device, a.value("engine"), a.value("programmer"), &why);
    if (!engine) {
        std::fprintf(stderr, "krldv: %s\n", why.c_str());
        return CLI_INPUT_ERROR;
    }
    Reporter reporter(a.has("verbose"));
    engine->setListener(&reporter);
    engine->setTimeLimitMs(static_cast<unsigned>(timeLimit * MsPerSecond));

    KCCliHost host;
    KCDataDoc doc;
    if (!KCCliDeviceOption::select(doc, a.value("device")))
        return CLI_INPUT_ERROR;
    if (takesImage && !KCCliImageLoader::load(doc, p[0], a.value("from")))
        return CLI_INPUT_ERROR;

    g_engine = engine.get();
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
    const cByteBuffer &buffer = doc.AlgoParam().buffer(0);
    KCEngineResult result;
    switch (m_action) {
    case Program:
        break;
    case Read: {
        std::vector<uint8_t> image;
        result = engine->read(&image);
        if (result.passed()) {
            doc.WriteRange(0, image.data(), std::min<uint64_t>(image.size(), buffer.size()));
            doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
            if (!doc.OnSaveDocument(a.value("output").c_str()))
                result = KCEngineResult::fail(a.value("output") + ": not written");
        }
        break;
    }
    case Verify:
        result = engine->verify(std::vector<uint8_t>(buffer.data(), buffer.data() + buffer.size()));
        break;
    case Erase:
        result = engine->erase();
        break;
    case Blank:
        result = engine->blankCheck();
        break;
    }
    if (m_action != Program) {
        g_engine = nullptr;
        std::printf("%s: %s%s%s\n", name(), result.passed() ? "passed" : "failed", result.passed() ? "" : ": ",
                    result.message.c_str());
        return result.passed() ? CLI_OK : CLI_INPUT_ERROR;
    }

    std::unique_ptr<KCSerialDispenser> dispenser;
    KCCliSerialOptions::Number number;
    if (serial) {
        number = {a.value("serial"), static_cast<unsigned>(address), static_cast<unsigned>(count),
                  representation->second | (a.has("little-endian") ? Ctrl::FlagLittleEndian : Ctrl::FlagBigEndian)};
        // The document's own check refuses a number that would be cut or fall outside.
        if (!KCCliSerialOptions::enableNumber(doc, host, number))
            return CLI_INPUT_ERROR;
        const std::string stamp = doc.serialState().stampProblem();
        if (!stamp.empty()) {
            std::fprintf(stderr, "krldv: %s: %s; no number was taken\n", p[0].c_str(), stamp.c_str());
            return CLI_INPUT_ERROR;
        }
        dispenser = std::make_unique<KCSerialDispenser>(&host, number.defFile, number.flags);
        dispenser->setPolicy(policy);
        if (a.has("journal"))
            dispenser->setJournalPath(a.value("journal"));
    }
    std::unique_ptr<cKrlSerialNumberHandler> csv;
    if (a.has("csv")) {
        csv = KCCliSerialOptions::openCsv(a.value("csv"), buffer.size(), policy, number, &host);
        if (!csv)
            return CLI_INPUT_ERROR;
    }
    KCProductionRun run(doc, *engine);
    run.setCsv(csv.get());
    run.setSerial(dispenser.get(), static_cast<unsigned>(address), static_cast<unsigned>(count));
    run.setQuantity(static_cast<unsigned>(quantity));
    run.setListener(&reporter);
    g_run = &run;
    const KCProductionRun::StopReason stop = run.run();
    g_run = nullptr;
    g_engine = nullptr;
    if (stop != KCProductionRun::QuantityReached)
        std::fprintf(stderr, "krldv: the run stopped after %u devices: %s\n", run.passed() + run.failed(),
                     run.stopText().c_str());
    std::printf("passed %u, failed %u\n", run.passed(), run.failed());
    return stop == KCProductionRun::QuantityReached && run.failed() == 0 ? CLI_OK : CLI_INPUT_ERROR;
}
