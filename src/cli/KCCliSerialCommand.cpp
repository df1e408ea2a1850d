#include "KCCliSerialCommand.h"

#include "KCCliArgs.h"
#include "KCCliSerialOptions.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "doc/KCDataDoc.h"
#include "KCFileFormatRegistry.h"
#include "fileio/KCFormatNames.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialJournal.h"
#include "serial/cKrlSerialNumberHandler.h"
#include "serial/cSerialJournalAudit.h"

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
constexpr uint64_t MaxBlock = 0x7FFFFFFF;
}

const char *KCCliSerialCommand::usage() const
{
    return "usage: krldv serial next DEFFILE [--block N] [--advance]\n"
           "                         [--repr hex-asc|dec-asc|hex-bin|dec-bin] [--little-endian]\n"
           "\n"
           "Prints the next serial number of block N (default 0) of the definition file as\n"
           "the bytes that go into the buffer, in hexadecimal, and for an ASCII representation\n"
           "or a quoted LIST element the text on a second line. A missing krdefser.ser is\n"
           "created with the default series.\n"
           "  --advance        consume the number: the file is advanced as a station does it,\n"
           "                   waiting while another station holds the file\n"
           "  --repr R         representation of a CALC number (default hex-asc)\n"
           "  --little-endian  reverse the bytes\n"
           "\n"
           "usage: krldv serial stamp IMAGE DEFFILE --address A [--count N] [--repr R] [--device NAME]\n"
           "                          [--little-endian] [--csv FILE] [--from NAME] [--to NAME] -o OUT\n"
           "       krldv serial stamp IMAGE --csv FILE [--device NAME] [--from NAME] [--to NAME] -o OUT\n"
           "\n"
           "Consumes the next number of the file's first block, writes it into the image at\n"
           "buffer address A (at most N bytes; default: the whole number) and saves the image\n"
           "as OUT (format from --to or OUT's extension). Prints the number as above.\n"
           "Only the stamped bytes change: OUT has the image's records and gaps.\n"
           "  --device NAME  load through the device's size, ranges and address offset\n"
           "  --csv FILE     also take the next row of a CSV serial variables file (krldv csv\n"
           "                 --help), write its variables and print them; the row is marked used\n"
           "                 and journaled in FILE.journal as krldv program does it\n"
           "\n"
           "usage: krldv serial journal DEFFILE [--journal FILE]\n"
           "\n"
           "Prints the journal of the definition file (DEFFILE.journal unless given), then flags\n"
           "numbers taken without a device result and numbers handed out twice, and lists\n"
           "numbers given back for reuse. Exit status 1 when anything is flagged.\n";
}

namespace {

void printNumber(const std::string &bytes, bool text)
{
    for (size_t i = 0; i < bytes.size(); ++i)
        std::printf(i ? " %02X" : "%02X", static_cast<unsigned char>(bytes[i]));
    std::printf("\n");
    if (text)
        std::printf("%s\n", bytes.c_str());
}

} // namespace

int KCCliSerialCommand::runStamp(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args, {"address", "count", "repr", "from", "to", "output", "device", "csv"}, {"little-endian"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const std::vector<std::string> &p = a.positional();
    const bool withCsv = a.has("csv");
    const bool withNumber = p.size() == 3;
    uint64_t address = 0, count = Ctrl::MaxElementLength;
    if (problem.empty() && !withNumber && !(withCsv && p.size() == 2))
        problem = withCsv ? "give an image and at most one definition file" : "give an image and a definition file";
    if (problem.empty() && withNumber
        && (!a.has("address") || !KCCliArgs::parseNumber(a.value("address"), address, 0xFFFFFFFF)))
        problem = "--address takes the buffer address of the number (0x for hexadecimal)";
    if (problem.empty() && !withNumber && (a.has("address") || a.has("count")))
        problem = "--address and --count go with a definition file";
    if (problem.empty() && a.has("count")
        && (!KCCliArgs::parseNumber(a.value("count"), count, Ctrl::MaxElementLength) || count == 0))
        problem = "--count takes 1.." + std::to_string(Ctrl::MaxElementLength) + ", not " + a.value("count");
    const auto representation = Representations.find(a.value("repr", DefaultRepresentation));
    if (problem.empty() && representation == Representations.end())
        problem = "--repr takes hex-asc, dec-asc, hex-bin or dec-bin, not " + a.value("repr");
    if (problem.empty() && !a.has("output"))
        problem = "give the output image with -o OUT";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty())
        to = KCCliImageLoader::outputFormat(a.value("output"), a.value("to"), problem);
    if (problem.empty())
        problem = KCCliImageLoader::formatProblem(p[1], a.value("from"));
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.value("device"));
    if (!problem.empty())
        return usageError(problem);

    KCCliHost host;
    KCDataDoc doc;
    if (!KCCliDeviceOption::select(doc, a.value("device")))
        return CLI_INPUT_ERROR;
    const std::string &image = p[1];
    const std::string defFile = withNumber ? p[2] : std::string();
    const std::string source = withNumber ? defFile : a.value("csv");
    if (!KCCliImageLoader::load(doc, image, a.value("from")))
        return CLI_INPUT_ERROR;
    const KCCliSerialOptions::Number number{
        defFile, static_cast<unsigned>(address), static_cast<unsigned>(count),
        representation->second | (a.has("little-endian") ? Ctrl::FlagLittleEndian : Ctrl::FlagBigEndian)};
    if (withNumber && !KCCliSerialOptions::enableNumber(doc, host, number))
        return CLI_INPUT_ERROR;
    host.setVerbose(false);
    // Everything that can be known to fail is checked before a number or row is taken, so
    // none is consumed for nothing: the number whole in its place, the CSV file passing its
    // rule check, the output writable.
    std::string why = withNumber ? doc.serialState().stampProblem() : std::string();
    const std::string &output = a.value("output");
    if (why.empty())
        why = KCCliArgs::outputProblem(output);
    if (!why.empty()) {
        std::fprintf(stderr, "krldv: %s: %s; nothing was taken from %s\n", image.c_str(), why.c_str(), source.c_str());
        return CLI_INPUT_ERROR;
    }
    std::unique_ptr<cKrlSerialNumberHandler> csv;
    unsigned row = 0;
    std::vector<std::pair<uint32_t, std::string>> values;
    if (withCsv) {
        csv = KCCliSerialOptions::openCsv(a.value("csv"), doc.GetBufferSize(), KCSerialDispenser::Discard, number, &host);
        if (!csv)
            return CLI_INPUT_ERROR;
        if (!csv->takeNextRow(&row, &values, &why)) {
            std::fprintf(stderr, "krldv: %s\n", why.c_str());
            return CLI_INPUT_ERROR;
        }
        for (const auto &v : values)
            doc.WriteRange(v.first, reinterpret_cast<const uint8_t *>(v.second.data()), v.second.size());
    }
    // The row's result is journaled as a device's is: written, or lost with the image.
    auto rowDone = [&](bool written) {
        std::string ignored;
        if (csv)
            csv->recordRow(row, written, &ignored);
    };
    if (withNumber && !doc.serialState().takeNext(why)) {
        rowDone(false);
        std::fprintf(stderr, "krldv: %s: %s\n", defFile.c_str(), why.c_str());
        return CLI_INPUT_ERROR;
    }
    doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    if (!doc.OnSaveDocument(output.c_str())) {
        rowDone(false);
        std::fprintf(stderr, "krldv: %s: not written; what was taken from %s is lost\n", output.c_str(),
                     source.c_str());
        return CLI_INPUT_ERROR;
    }
    rowDone(true);
    if (withNumber)
        printNumber(doc.serialNumberText().substr(0, count), doc.serialFlags() & Ctrl::FlagAsc);
    if (withCsv)
        KCCliSerialOptions::printRow(row, values);
    return CLI_OK;
}

int KCCliSerialCommand::run(const std::vector<std::string> &args)
{
    if (!args.empty() && args[0] == "stamp")
        return runStamp(args);
    if (!args.empty() && args[0] == "journal")
        return runJournal(args);
    const KCCliArgs a(args, {"block", "repr"}, {"advance", "little-endian"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const std::vector<std::string> &p = a.positional();
    if (problem.empty() && (p.empty() || p[0] != "next"))
        problem = p.empty() ? "no subcommand given" : "unknown subcommand " + p[0];
    if (problem.empty() && p.size() != 2)
        problem = p.size() < 2 ? "no definition file given" : "only one definition file is taken";
    uint64_t block = 0;
    if (problem.empty() && a.has("block") && !KCCliArgs::parseNumber(a.value("block"), block, MaxBlock))
        problem = "--block takes a block number, not " + a.value("block");
    const std::string repr = a.value("repr", DefaultRepresentation);
    const auto representation = Representations.find(repr);
    if (problem.empty() && representation == Representations.end())
        problem = "--repr takes hex-asc, dec-asc, hex-bin or dec-bin, not " + repr;
    if (!problem.empty())
        return usageError(problem);
    const unsigned endian = a.has("little-endian") ? Ctrl::FlagLittleEndian : Ctrl::FlagBigEndian;
    return runNext(p[1], static_cast<int>(block), representation->second | endian, a.has("advance"));
}

int KCCliSerialCommand::runNext(const std::string &defFile, int block, unsigned flags, bool advance)
{
    if (defFile.size() > Ctrl::MaxPathLength) {
        std::fprintf(stderr, "krldv: %s: the path is longer than %zu characters\n", defFile.c_str(),
                     Ctrl::MaxPathLength);
        return CLI_INPUT_ERROR;
    }
    KCCliHost host;
    host.setVerbose(true); // the definition file's diagnostics are what the user asked for
    Ctrl ctrl(&host, defFile);
    unsigned length = 0, value = 0;
    std::string bytes;
    char data[Ctrl::DataBufferSize];
    if (!ctrl.SERIAL_GetNextSerialNumber(block, &flags, &length, &value, data, &bytes, advance, 1)) {
        if (host.shownCount() > 0)
            return CLI_INPUT_ERROR; // the definition's own message told the cause
        if (ctrl.fileText().empty())
            std::fprintf(stderr, "krldv: %s: cannot read the serial number definition\n", defFile.c_str());
        else if (ctrl.blockCount() == 0)
            std::fprintf(stderr, "krldv: %s: no complete block (is a \"}\" missing?)\n", defFile.c_str());
        else if (block >= ctrl.blockCount())
            std::fprintf(stderr, "krldv: %s: there is no block %d (the file has %d)\n", defFile.c_str(), block,
                         ctrl.blockCount());
        else
            std::fprintf(stderr, "krldv: %s: block %d gives no serial number\n", defFile.c_str(), block);
        return CLI_INPUT_ERROR;
    }
    const bool text = (flags & Ctrl::FlagCalc) ? (flags & Ctrl::FlagAsc) != 0 : data[0] == '"';
    printNumber(bytes, text);
    return CLI_OK;
}

int KCCliSerialCommand::runJournal(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"journal"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() != 2)
        problem = "give one definition file";
    if (!problem.empty())
        return usageError(problem);
    KCSerialJournal journal(a.value("journal", KCSerialJournal::pathFor(a.positional()[1])));
    std::vector<TAG_SERIAL_JOURNAL_EVENT> events;
    if (!journal.read(&events)) {
        std::fprintf(stderr, "krldv: %s\n", journal.error().c_str());
        return CLI_INPUT_ERROR;
    }
    std::fputs(journal.error().c_str(), stderr); // lines that could not be read
    for (const TAG_SERIAL_JOURNAL_EVENT &e : events)
        std::printf("%s\n", KCSerialJournal::format(e).c_str());
    const cSerialJournalAudit audit(events);
    for (const TAG_SERIAL_JOURNAL_EVENT &e : audit.open())
        std::printf("no result: %s taken by %s (line %d)\n", e.key.c_str(), e.station.c_str(), e.line);
    for (const TAG_SERIAL_JOURNAL_EVENT &e : audit.repeats())
        std::printf("repeated: %s taken again by %s (line %d)\n", e.key.c_str(), e.station.c_str(), e.line);
    for (const TAG_SERIAL_JOURNAL_EVENT &e : audit.reuseList())
        std::printf("for reuse: %s\n", e.key.c_str());
    std::printf("passed %u, failed %u, without result %zu, repeated %zu\n", audit.passed(), audit.failed(),
                audit.open().size(), audit.repeats().size());
    return audit.open().empty() && audit.repeats().empty() && journal.error().empty() ? CLI_OK : CLI_INPUT_ERROR;
}
