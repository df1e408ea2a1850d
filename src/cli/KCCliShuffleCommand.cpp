#include "KCCliShuffleCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCCliLaneArgs.h"
#include "KCFileFormatRegistry.h"
#include "bufops/KCLaneJob.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "fileio/KCFormatNames.h"

#include <cstdio>

namespace {

constexpr uint64_t MaxAddress = 0xFFFFFFFFull;
constexpr uint32_t BitsPerByte = 8;

} // namespace

const char *KCCliShuffleCommand::usage() const
{
    return "usage: krldv shuffle NARROW --widths NARROW:WIDE --lane L [--into WIDE_FILE] [--range START:END]\n"
           "                      [--format NAME] [--to NAME] -o OUT\n"
           "\n"
           "Writes NARROW's bytes START..END into lane L (0 at the lowest address of each wide\n"
           "unit) of WIDE_FILE, or of a fresh image of fill bytes (0xFF), and saves it as OUT.\n"
           "Widths in bits: 8, 16, 32, 64. The other lanes keep their bytes.\n"
           "  --range START:END  default: NARROW's data, widened to whole narrow units\n"
           "  --format NAME      the inputs' format (default: from the extension, then the content)\n"
           "  --to NAME          OUT's format (default: from its extension)\n"
           "Addresses take 0x for hexadecimal. Exit 1 when the shuffle is refused (the code and why).\n";
}

int KCCliShuffleCommand::run(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args, {"widths", "lane", "into", "range", "format", "to", "output"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    uint32_t narrow = 0, wide = 0;
    uint64_t first = 0, last = 0, lane = 0;
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no narrow image given" : "only one narrow image is taken";
    if (problem.empty() && (!a.has("widths") || !KCCliLaneArgs::parseWidths(a.value("widths"), narrow, wide)))
        problem = "--widths takes NARROW:WIDE in bits, each 8, 16, 32 or 64";
    if (problem.empty() && wide < narrow)
        problem = "--widths takes the narrow width first: NARROW:WIDE with NARROW <= WIDE";
    if (problem.empty() && (!a.has("lane") || !KCCliArgs::parseNumber(a.value("lane"), lane) || lane >= wide / narrow))
        problem = "--lane takes a lane number below " + std::to_string(wide / (narrow ? narrow : 1));
    if (problem.empty() && a.has("range")
        && (!KCCliArgs::parseRange(a.value("range"), first, last) || last > MaxAddress))
        problem = "--range takes START:END with START <= END below 4 GiB";
    if (problem.empty() && !a.has("output"))
        problem = "give the output image with -o OUT";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty())
        to = KCCliImageLoader::outputFormat(a.value("output"), a.value("to"), problem);
    if (problem.empty())
        problem = KCCliImageLoader::formatProblem(a.positional()[0], a.value("format"));
    if (!problem.empty())
        return usageError(problem);
    const uint32_t wideUnit = wide / BitsPerByte, narrowUnit = narrow / BitsPerByte;

    KCCliHost host;
    KCDataDoc source, dest;
    const std::string &in = a.positional()[0];
    if (!KCCliImageLoader::load(source, in, a.value("format")))
        return CLI_INPUT_ERROR;
    if (!a.has("range") && !KCLaneJob::DataRange(source, narrowUnit, first, last)) {
        std::fprintf(stderr, "krldv: %s: the image holds no data to shuffle\n", in.c_str());
        return CLI_INPUT_ERROR;
    }
    const std::string into = a.has("into") ? a.value("into") : a.value("output");
    if (a.has("into")) {
        if (!KCCliImageLoader::load(dest, into, a.value("format")))
            return CLI_INPUT_ERROR;
    } else {
        dest.undoHistory().setBudget(0);
        dest.setSparse(true);
        dest.makeSparseImage(0);
    }
    const uint64_t destLast = (last / narrowUnit + 1) * wideUnit - 1;
    if (!KCCliLaneArgs::reach(source, last, in) || !KCCliLaneArgs::reach(dest, destLast, into))
        return CLI_INPUT_ERROR;
    const std::pair<uint64_t, uint64_t> range{first / narrowUnit * wideUnit, destLast};
    try {
        // Run by run: the narrow image's gaps stay gaps in the wide one.
        for (const KCAddressRange &run : KCLaneJob::DataRuns(source, first, last, narrowUnit))
            KCLaneJob::Shuffle(source, run.first, run.second, narrow, wide, static_cast<uint32_t>(lane), dest);
    } catch (int code) {
        return KCCliLaneArgs::refused(in, "shuffle", code);
    }
    KCLaneJob::SetDataRange(dest, range.first, range.second);
    dest.ComputeCheckSum(-1);
    dest.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    if (!dest.OnSaveDocument(a.value("output").c_str()))
        return CLI_INPUT_ERROR;
    std::printf("%s  lane %llu \"%s\"  0x%08llX-0x%08llX\n", a.value("output").c_str(),
                static_cast<unsigned long long>(lane),
                cLaneNames::NameOf(narrow, wide, static_cast<uint32_t>(lane)).c_str(),
                static_cast<unsigned long long>(range.first), static_cast<unsigned long long>(range.second));
    return CLI_OK;
}
