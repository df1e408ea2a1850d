#include "KCCliSplitCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCCliLaneArgs.h"
#include "KCFileFormatRegistry.h"
#include "bufops/KCLaneJob.h"
#include "bufops/cLaneError.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "fileio/KCFormatNames.h"

#include <cstdio>
#include <memory>

namespace {

constexpr uint64_t MaxAddress = 0xFFFFFFFFull;
constexpr uint32_t BitsPerByte = 8;
const std::string LaneMark = "{lane}";

std::string lanePath(const std::string &pattern, uint32_t lane)
{
    std::string path = pattern;
    for (size_t at = path.find(LaneMark); at != std::string::npos; at = path.find(LaneMark, at))
        path.replace(at, LaneMark.size(), std::to_string(lane));
    return path;
}

} // namespace

const char *KCCliSplitCommand::usage() const
{
    return "usage: krldv split IN --widths WIDE:NARROW [--range START:END] [--format NAME] [--to NAME] -o PATTERN\n"
           "\n"
           "Splits IN into its WIDE/NARROW lanes (widths in bits: 8, 16, 32, 64), lane 0 at the\n"
           "lowest address of each wide unit. Lane L takes the NARROW bits of every wide unit\n"
           "from START to END and is written to PATTERN with {lane} replaced by L, at address\n"
           "START / (WIDE/8) * (NARROW/8) onwards. Prints each lane's file, name, address range\n"
           "and byte sum, then whether the lanes shuffled back give IN's range byte for byte.\n"
           "  --range START:END  default: IN's data, widened to whole wide units; its length\n"
           "                     must be a whole number of wide units\n"
           "  --format NAME      IN's format (default: from the extension, then the content)\n"
           "  --to NAME          the lanes' format (default: from PATTERN's extension)\n"
           "Addresses take 0x for hexadecimal. Exit 1 when the split is refused (the code and why).\n";
}

int KCCliSplitCommand::run(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args, {"widths", "range", "format", "to", "output"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    uint32_t wide = 0, narrow = 0;
    uint64_t first = 0, last = 0;
    const std::string pattern = a.value("output");
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no image given" : "only one image is taken";
    if (problem.empty() && (!a.has("widths") || !KCCliLaneArgs::parseWidths(a.value("widths"), wide, narrow)))
        problem = "--widths takes WIDE:NARROW in bits, each 8, 16, 32 or 64";
    if (problem.empty() && wide <= narrow)
        problem = "--widths takes the wide width first: WIDE:NARROW with WIDE > NARROW";
    if (problem.empty() && a.has("range")
        && (!KCCliArgs::parseRange(a.value("range"), first, last) || last > MaxAddress))
        problem = "--range takes START:END with START <= END below 4 GiB";
    if (problem.empty() && pattern.empty())
        problem = "give the lane files with -o PATTERN";
    if (problem.empty() && pattern.find(LaneMark) == std::string::npos)
        problem = "PATTERN must hold {lane}, the lane number: rom-{lane}.bin";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty())
        to = KCCliImageLoader::outputFormat(lanePath(pattern, 0), a.value("to"), problem);
    if (problem.empty())
        problem = KCCliImageLoader::formatProblem(a.positional()[0], a.value("format"));
    if (!problem.empty())
        return usageError(problem);
    const uint32_t wideUnit = wide / BitsPerByte, narrowUnit = narrow / BitsPerByte;

    const uint32_t lanes = wide / narrow;
    for (uint32_t lane = 0; lane < lanes; ++lane) {
        const std::string why = KCCliArgs::outputProblem(lanePath(pattern, lane));
        if (!why.empty()) {
            std::fprintf(stderr, "krldv: %s: %s\n", lanePath(pattern, lane).c_str(), why.c_str());
            return CLI_INPUT_ERROR;
        }
    }
    KCCliHost host;
    KCDataDoc source;
    const std::string &in = a.positional()[0];
    if (!KCCliImageLoader::load(source, in, a.value("format")))
        return CLI_INPUT_ERROR;
    if (!a.has("range") && !KCLaneJob::DataRange(source, wideUnit, first, last)) {
        std::fprintf(stderr, "krldv: %s: the image holds no data to split\n", in.c_str());
        return CLI_INPUT_ERROR;
    }
    if (!KCCliLaneArgs::reach(source, last, in))
        return CLI_INPUT_ERROR;
    if (first % wideUnit)
        std::fprintf(stderr, "krldv: %s: warning: 0x%llX is inside a wide unit: lane 0 starts there\n", in.c_str(),
                     static_cast<unsigned long long>(first));

    // The range as a whole must be whole units, whatever data it holds.
    if ((last - first + 1) % wideUnit)
        return KCCliLaneArgs::refused(in, "split", cLaneError::RangeNotWholeUnits);
    const std::vector<KCAddressRange> runs = KCLaneJob::DataRuns(source, first, last, wideUnit);
    if (runs.empty()) {
        std::fprintf(stderr, "krldv: %s: no data in 0x%llX-0x%llX to split\n", in.c_str(),
                     static_cast<unsigned long long>(first), static_cast<unsigned long long>(last));
        return CLI_INPUT_ERROR;
    }
    std::vector<std::unique_ptr<KCDataDoc>> docs;
    std::vector<KCDataDoc *> targets;
    std::vector<const KCDataDoc *> parts;
    const uint64_t destFirst = first / wideUnit * narrowUnit;
    const uint64_t destLast = (last / wideUnit + 1) * narrowUnit - 1;
    for (uint32_t lane = 0; lane < lanes; ++lane) {
        docs.push_back(std::make_unique<KCDataDoc>());
        KCDataDoc &doc = *docs.back();
        doc.undoHistory().setBudget(0);
        doc.setSparse(true); // memory follows the data, as for the image
        if (!KCLaneJob::PrepareLaneDoc(doc, destLast + 1, source.GetFileName(), narrow, wide, lane)) {
            std::fprintf(stderr, "krldv: %s: not enough memory for the lanes\n", in.c_str());
            return CLI_INPUT_ERROR;
        }
        targets.push_back(&doc);
        parts.push_back(&doc);
    }
    std::optional<uint64_t> differs;
    try {
        // Run by run: the image's gaps stay gaps in every lane.
        for (const KCAddressRange &run : runs) {
            KCLaneJob::SplitLanes(source, run.first, run.second, wide, narrow, targets);
            if (!differs)
                differs = KCLaneJob::RoundTrip(source, run.first, run.second, wide, narrow, parts);
        }
    } catch (int code) {
        return KCCliLaneArgs::refused(in, "split", code);
    }
    for (uint32_t lane = 0; lane < lanes; ++lane) {
        KCDataDoc &doc = *docs[lane];
        KCLaneJob::SetDataRange(doc, destFirst, destLast);
        doc.ComputeCheckSum(-1);
        const std::string path = lanePath(pattern, lane);
        doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
        if (!doc.OnSaveDocument(path.c_str()))
            return CLI_INPUT_ERROR;
        std::printf("%s  lane %u \"%s\"  0x%08llX-0x%08llX  sum 0x%08X\n", path.c_str(), lane,
                    cLaneNames::NameOf(narrow, wide, lane).c_str(), static_cast<unsigned long long>(destFirst),
                    static_cast<unsigned long long>(destLast), KCLaneJob::ByteSum(doc, destFirst, destLast));
    }
    if (differs)
        std::printf("round trip: differs at 0x%08llX\n", static_cast<unsigned long long>(*differs));
    else
        std::printf("round trip: identical\n");
    return CLI_OK;
}
