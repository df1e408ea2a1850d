#include "KCCliChecksumCommand.h"

#include "KCCliArgs.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "doc/KCDataDoc.h"
#include "doc/KCHeadlessDataView.h"
#include "doc/KCLayoutNames.h"

#include <cstdio>


const char *KCCliChecksumCommand::usage() const
{
    return "usage: krldv checksum FILE [--format NAME] [--kind byte|fuse] [--range START:END] [--device NAME]\n"
           "\n"
           "Loads FILE into a buffer and prints its checksum as 0xXXXXXXXX, followed by what it\n"
           "covers: by default the image's extent, address 0 to the highest loaded address,\n"
           "gaps counted as fill bytes (0xFF), the figure the application's status bar shows.\n"
           "  --format NAME  bin, intel, motorola, ti, jedec, svf, stapl, otp\n"
           "                 (default: from the extension, then the content)\n"
           "  --kind byte    sum of all bytes modulo 2^32 (default)\n"
           "  --kind fuse    fuse-map sum: 1 << (address & 7) for every nonzero byte\n"
           "  --range S:E    only addresses S..E (inclusive; 0x for hexadecimal)\n"
           "A JEDEC file holds fuse n at address n: --kind fuse over 0..QF-1 gives the\n"
           "file's fuse checksum in its low 16 bits.\n"
           "  --device NAME  load through the device's size, ranges and address offset\n";
}

int KCCliChecksumCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"kind", "range", "format", "device"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    const std::string kind = a.value("kind", "byte");
    uint64_t start = 0, end = 0;
    const bool ranged = a.has("range");
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no input file given" : "only one input file is taken";
    if (problem.empty() && kind != "byte" && kind != "fuse")
        problem = "--kind takes byte or fuse, not " + kind;
    if (problem.empty() && ranged && (!KCCliArgs::parseRange(a.value("range"), start, end) || end > 0xFFFFFFFFull))
        problem = "--range takes START:END with START <= END below 4 GiB, not " + a.value("range");
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
    const std::string &path = a.positional()[0];
    if (!KCCliImageLoader::load(doc, path, a.value("format")))
        return CLI_INPUT_ERROR;

    // The document takes its checksum kind from the layout of the view showing the buffer.
    KCHeadlessDataView view(kind == "fuse" ? LAYOUT_JEDVIEW : LAYOUT_BYTEVIEW);
    doc.AddView(&view);
    doc.viewItems()[0].view = &view;
    TAG_BUFFER_PARAM *param = doc.mainBufferParam();
    const uint64_t size = doc.GetBufferSize();
    uint32_t sum = 0;
    if (ranged) {
        if (end >= size) {
            std::fprintf(stderr, "krldv: %s: range 0x%llX:0x%llX reaches beyond the data (%llu bytes)\n",
                         path.c_str(), static_cast<unsigned long long>(start), static_cast<unsigned long long>(end),
                         static_cast<unsigned long long>(size));
            return CLI_INPUT_ERROR;
        }
        param->checksumKind = kind == "fuse" ? CHECKSUM_KIND_FUSEMAP : CHECKSUM_KIND_BYTESUM;
        sum = doc.checksumOf(start, end);
    } else {
        // The same figure the application's status bar shows for this file: the whole extent.
        if (size > 0x100000000ull) {
            std::fprintf(stderr, "krldv: %s: larger than 4 GiB; give --range\n", path.c_str());
            return CLI_INPUT_ERROR;
        }
        sum = static_cast<uint32_t>(doc.ComputeCheckSum(-1));
        start = param->checksumStart;
        end = size ? param->checksumEnd : 0;
    }
    if (size == 0)
        std::printf("0x%08X  (no data)\n", sum);
    else
        std::printf("0x%08X  %s 0x%08llX-0x%08llX, gaps as 0x%02X\n", sum, kind == "fuse" ? "fuse sum" : "byte sum",
                    static_cast<unsigned long long>(start), static_cast<unsigned long long>(end), host.GetFillByte());
    doc.viewItems()[0].view = nullptr;
    return CLI_OK;
}
