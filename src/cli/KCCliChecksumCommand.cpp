#include "KCCliChecksumCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "KCDataDoc.h"
#include "KCHeadlessDataView.h"
#include "KCLayoutNames.h"

#include <cstdio>


const char *KCCliChecksumCommand::usage() const
{
    return "usage: krldv checksum FILE [--format NAME] [--kind byte|fuse] [--range START:END]\n"
           "\n"
           "Loads FILE into a buffer and prints its checksum as 0xXXXXXXXX.\n"
           "  --format NAME  bin, intel, motorola, ti, jedec, svf, stapl, otp\n"
           "                 (default: from the extension, then the content)\n"
           "  --kind byte    sum of all bytes modulo 2^32 (default)\n"
           "  --kind fuse    fuse-map sum: 1 << (address & 7) for every nonzero byte\n"
           "  --range S:E    only addresses S..E (inclusive; 0x for hexadecimal)\n"
           "A JEDEC file holds fuse n at address n: --kind fuse over 0..QF-1 gives the\n"
           "file's fuse checksum in its low 16 bits.\n";
}

int KCCliChecksumCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"kind", "range", "format"}, {});
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
    if (!problem.empty()) {
        std::fprintf(stderr, "krldv checksum: %s\n%s", problem.c_str(), usage());
        return CLI_USAGE_ERROR;
    }

    KCCliHost host;
    KCDataDoc doc;
    const std::string &path = a.positional()[0];
    if (!KCCliImageLoader::load(doc, path, a.value("format")))
        return CLI_INPUT_ERROR;

    // The document takes its checksum kind from the layout of the view showing the buffer.
    KCHeadlessDataView view(kind == "fuse" ? LAYOUT_JEDVIEW : LAYOUT_BYTEVIEW);
    doc.AddView(&view);
    doc.viewItems()[0].view = &view;
    TAG_BUFFER_PARAM *param = doc.mainBufferParam();
    if (ranged) {
        param->LBSA = static_cast<uint32_t>(start);
        param->LBEA = static_cast<uint32_t>(end);
        if (end >= doc.GetBufferSize()) {
            std::fprintf(stderr, "krldv: %s: range 0x%llX:0x%llX reaches beyond the data (%llu bytes)\n",
                         path.c_str(), static_cast<unsigned long long>(start), static_cast<unsigned long long>(end),
                         static_cast<unsigned long long>(doc.GetBufferSize()));
            return CLI_INPUT_ERROR;
        }
    } else {
        param->LBSA = param->LBEA = 0xFFFFFFFF;
        if (doc.GetBufferSize() > 0x100000000ull) {
            std::fprintf(stderr, "krldv: %s: larger than 4 GiB; give --range\n", path.c_str());
            return CLI_INPUT_ERROR;
        }
    }
    const unsigned long sum = doc.ComputeCheckSum(-1);
    std::printf("0x%08lX\n", sum);
    doc.viewItems()[0].view = nullptr;
    return CLI_OK;
}
