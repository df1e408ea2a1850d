#include "KCCliFillCommand.h"

#include "KCCliArgs.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCFileFormatRegistry.h"
#include "doc/KCDataDoc.h"
#include "fileio/KCFormatNames.h"

#include <cstdio>

namespace {

constexpr uint64_t MaxAddress = 0xFFFFFFFFull;
constexpr uint64_t MaxByte = 0xFF;

} // namespace

const char *KCCliFillCommand::usage() const
{
    return "usage: krldv fill IMAGE --range START:END --value BYTE [--format NAME] [--to NAME] -o OUT [--device NAME]\n"
           "\n"
           "Loads IMAGE, sets every byte from START to END (inclusive) to BYTE and writes OUT.\n"
           "OUT keeps the image's shape: what was loaded plus the filled range, gaps elsewhere\n"
           "staying gaps in record formats. A range past the image's end extends it.\n"
           "  --format NAME  IMAGE's format (default: from the extension, then the content)\n"
           "  --to NAME      OUT's format (default: from its extension)\n"
           "Addresses and BYTE take 0x for hexadecimal; - is standard input or output.\n"
           "  --device NAME  load through the device's size, ranges and address offset\n";
}

int KCCliFillCommand::run(const std::vector<std::string> &rawArgs)
{
    std::vector<std::string> args;
    for (const std::string &arg : rawArgs)
        args.push_back(arg == "-o" ? "--output" : arg);
    const KCCliArgs a(args, {"range", "value", "format", "to", "output", "device"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    uint64_t first = 0, last = 0, value = 0;
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no image given" : "only one image is taken";
    if (problem.empty() && (!a.has("range") || !KCCliArgs::parseRange(a.value("range"), first, last) || last > MaxAddress))
        problem = "--range takes START:END with START <= END below 4 GiB";
    if (problem.empty() && (!a.has("value") || !KCCliArgs::parseNumber(a.value("value"), value, MaxByte)))
        problem = "--value takes a byte value 0..255 (0x for hexadecimal)";
    if (problem.empty() && !a.has("output"))
        problem = "give the output image with -o OUT";
    const KCFileFormatInfo *to = nullptr;
    if (problem.empty())
        to = KCCliImageLoader::outputFormat(a.value("output"), a.value("to"), problem);
    if (problem.empty())
        problem = KCCliImageLoader::formatProblem(a.positional()[0], a.value("format"));
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.value("device"));
    if (!problem.empty())
        return usageError(problem);

    KCCliHost host;
    KCDataDoc doc;
    if (!KCCliDeviceOption::select(doc, a.value("device")))
        return CLI_INPUT_ERROR;
    const std::string &image = a.positional()[0];
    if (!KCCliImageLoader::load(doc, image, a.value("format")))
        return CLI_INPUT_ERROR;
    // A range past the end extends the image with fill first, as a device buffer would be.
    cByteBuffer &buffer = doc.AlgoParam().buffer(0);
    if (last >= buffer.size()) {
        if (!buffer.resize(last + 1, host.GetFillByte())) {
            std::fprintf(stderr, "krldv: %s: not enough memory for 0x%llX bytes\n", image.c_str(),
                         static_cast<unsigned long long>(last + 1));
            return CLI_INPUT_ERROR;
        }
    }
    doc.FillRange(first, last, static_cast<uint8_t>(value));
    doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    return doc.OnSaveDocument(a.value("output").c_str()) ? CLI_OK : CLI_INPUT_ERROR;
}
