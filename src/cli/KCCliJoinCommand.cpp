#include "KCCliJoinCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCCliLaneArgs.h"
#include "KCFileFormatRegistry.h"
#include "bufops/KCLaneJob.h"
#include "doc/KCDataDoc.h"
#include "fileio/KCFormatNames.h"

#include <cstdio>
#include <memory>

const char *KCCliJoinCommand::usage() const
{
    return "usage: krldv join --widths NARROW:WIDE LANE0 LANE1 ... [--format NAME] [--to NAME] -o OUT\n"
           "\n"
           "Joins WIDE/NARROW lane images (widths in bits: 8, 16, 32, 64), given lane 0 first,\n"
           "into one wide image: the data of lane L go to lane L of each wide unit, as a split\n"
           "took them out. Bytes no lane defines hold the fill byte (0xFF).\n"
           "  --format NAME  the lanes' format (default: from the extension, then the content)\n"
           "  --to NAME      OUT's format (default: from its extension)\n"
           "Exit 1 when a lane cannot be read or the join is refused (the code and why).\n";
}

int KCCliJoinCommand::run(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args, {"widths", "format", "to", "output"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    uint32_t narrow = 0, wide = 0;
    if (problem.empty() && (!a.has("widths") || !KCCliLaneArgs::parseWidths(a.value("widths"), narrow, wide)))
        problem = "--widths takes NARROW:WIDE in bits, each 8, 16, 32 or 64";
    if (problem.empty() && wide <= narrow)
        problem = "--widths takes the narrow width first: NARROW:WIDE with NARROW < WIDE";
    if (problem.empty() && a.positional().size() != wide / narrow)
        problem = "give " + std::to_string(wide / narrow) + " lane images, lane 0 first";
    if (problem.empty() && !a.has("output"))
        problem = "give the output image with -o OUT";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty())
        to = KCCliImageLoader::outputFormat(a.value("output"), a.value("to"), problem);
    for (size_t i = 0; problem.empty() && i < a.positional().size(); ++i)
        problem = KCCliImageLoader::formatProblem(a.positional()[i], a.value("format"));
    if (!problem.empty())
        return usageError(problem);

    KCCliHost host;
    KCDataDoc joined;
    joined.undoHistory().setBudget(0);
    joined.setSparse(true);
    joined.makeSparseImage(0);
    std::vector<std::unique_ptr<KCDataDoc>> lanes;
    std::vector<KCDataDoc *> parts;
    for (const std::string &path : a.positional()) {
        lanes.push_back(std::make_unique<KCDataDoc>());
        if (!KCCliImageLoader::load(*lanes.back(), path, a.value("format")))
            return CLI_INPUT_ERROR;
        parts.push_back(lanes.back().get());
    }
    std::pair<uint64_t, uint64_t> range;
    try {
        range = KCLaneJob::Join(parts, narrow, wide, joined);
    } catch (int code) {
        return KCCliLaneArgs::refused(a.value("output"), "join", code);
    }
    if (range.first > range.second) {
        std::fprintf(stderr, "krldv: %s: the lanes hold no data to join\n", a.positional()[0].c_str());
        return CLI_INPUT_ERROR;
    }
    joined.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    return joined.OnSaveDocument(a.value("output").c_str()) ? CLI_OK : CLI_INPUT_ERROR;
}
