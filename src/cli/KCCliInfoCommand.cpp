#include "KCCliInfoCommand.h"

#include "KCCliArgs.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "doc/KCDataDoc.h"
#include "KCFileFormatRegistry.h"
#include "doc/cBufferSum.h"
#include "fileio/cKrlCrc16.h"

#include <cstdio>

namespace {

// Ranges listed in full; more are summarised.
constexpr size_t MaxListedRanges = 16;

unsigned long long ull(uint64_t v)
{
    return static_cast<unsigned long long>(v);
}

} // namespace

const char *KCCliInfoCommand::usage() const
{
    return "usage: krldv info FILE [--format NAME] [--device NAME]\n"
           "\n"
           "Shows the format found (and whether the extension and the content agree), the\n"
           "records, the address ranges, the bytes loaded and their sum, and the buffer\n"
           "checksum over the image's extent (address 0 to the highest loaded address, gaps\n"
           "counted as fill bytes) as the checksum command gives it; for a JEDEC file the\n"
           "fuse count and both checksums, stated and computed.\n"
           "  --format NAME  bin, intel, motorola, ti, jedec, svf, stapl, otp\n"
           "  --device NAME  load through the device's size, ranges and address offset\n";
}

int KCCliInfoCommand::showProject(KCDataDoc &doc, const std::string &path)
{
    const LOADSAVE_FILETYPE type = KCCliImageLoader::projectType(path);
    if (!KCCliImageLoader::loadProject(doc, path, type))
        return CLI_INPUT_ERROR;
    std::printf("file:          %s\n", path.c_str());
    std::printf("format:        %s\n", doc.GetKPFFileFlag() == LS_HANDLERJOB ? "handler job" : "project");
    std::printf("device:        %s\n", doc.HasDeviceX() ? doc.GetDeviceName().c_str() : "(none)");
    if (!doc.AlgoParam().action().empty())
        std::printf("action:        %s\n", doc.AlgoParam().action().c_str());
    const auto ranges = doc.dataMap().ranges();
    uint64_t bytes = 0;
    for (const auto &r : ranges)
        bytes += r.second - r.first + 1;
    std::printf("buffer 0:      %llu bytes, %zu defined ranges, %llu bytes defined\n", ull(doc.GetBufferSize()),
                ranges.size(), ull(bytes));
    for (size_t i = 0; i < ranges.size() && i < MaxListedRanges; ++i)
        std::printf("  0x%08llX-0x%08llX\n", ull(ranges[i].first), ull(ranges[i].second));
    std::printf("checksum:      0x%08lX\n", doc.ComputeCheckSum(-1));
    std::printf("file CRC-16:   0x%04X  (%s)\n", cKrlCrc16().computeFile(path), cKrlCrc16::algorithmName());
    return CLI_OK;
}

int KCCliInfoCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"format", "device"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no input file given" : "only one input file is taken";
    const bool project = problem.empty() && KCCliImageLoader::projectType(a.positional()[0]) != LS_INVALID;
    if (problem.empty() && !project)
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
    if (project)
        return showProject(doc, path);
    KCCliImageLoader::Choice choice;
    if (!KCCliImageLoader::load(doc, path, a.value("format"), &choice))
        return CLI_INPUT_ERROR;
    const KCLoadResult &r = doc.lastLoadResult();

    std::printf("file:          %s\n", path.c_str());
    std::printf("format:        %s (%s), %s", choice.chosen->name, choice.chosen->description, choice.how.c_str());
    if (choice.byContent && choice.byContent != choice.chosen)
        std::printf("; the content looks like %s", choice.byContent->name);
    else if (choice.byContent)
        std::printf("; the content agrees");
    if (choice.byExtension && choice.byExtension != choice.chosen)
        std::printf("; the extension says %s", choice.byExtension->name);
    std::printf("\n");
    std::printf("records:       %llu\n", ull(r.records));
    std::printf("bytes loaded:  %llu\n", ull(r.bytesLoaded));
    std::printf("ranges:        %zu\n", r.ranges.size());
    uint32_t sum = 0;
    const uint8_t *data = doc.AlgoParam().buffer(0).data();
    const uint64_t size = doc.GetBufferSize();
    for (size_t i = 0; i < r.ranges.size(); ++i) {
        const auto &range = r.ranges[i];
        if (i < MaxListedRanges)
            std::printf("  0x%08llX-0x%08llX  %llu bytes\n", ull(range.first), ull(range.second),
                        ull(range.second - range.first + 1));
        // Ranges are file addresses; the buffer starts at the load base.
        const uint64_t base = doc.loadBase();
        if (range.first >= base && range.first - base < size)
            sum += cBufferSum::byteSum(data + (range.first - base),
                                       std::min(range.second - base, size - 1) - (range.first - base) + 1);
    }
    if (r.ranges.size() > MaxListedRanges)
        std::printf("  ... %zu more\n", r.ranges.size() - MaxListedRanges);
    std::printf("sum of loaded bytes: 0x%08X\n", sum);
    // The figure the checksum command and the application's status bar give for this file.
    if (size > 0 && size <= 0x100000000ull) {
        const uint32_t whole = static_cast<uint32_t>(doc.ComputeCheckSum(-1));
        std::printf("buffer checksum 0x%08llX-0x%08llX (gaps as 0x%02X): 0x%08X\n", ull(0), ull(size - 1),
                    host.GetFillByte(), whole);
    }
    if (r.hasStartAddress)
        std::printf("start address: 0x%08llX\n", ull(r.startAddress));
    if (r.skipped)
        std::printf("skipped:       %llu bytes outside the range\n", ull(r.skipped));
    if (r.fuseCount) {
        std::printf("fuses:         %llu\n", ull(r.fuseCount));
        if (r.hasFuseChecksum)
            std::printf("fuse checksum: stated 0x%04X, computed 0x%04X%s\n", r.statedFuseChecksum, r.computedFuseChecksum,
                        r.statedFuseChecksum == r.computedFuseChecksum ? "" : "  MISMATCH");
        else
            std::printf("fuse checksum: none stated, computed 0x%04X\n", r.computedFuseChecksum);
        if (r.hasTransmissionChecksum)
            std::printf("transmission:  stated 0x%04X, computed 0x%04X%s\n", r.statedTransmissionChecksum,
                        r.computedTransmissionChecksum,
                        r.statedTransmissionChecksum == r.computedTransmissionChecksum ? "" : "  MISMATCH");
    }
    return CLI_OK;
}
