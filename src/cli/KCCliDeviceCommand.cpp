#include "KCCliDeviceCommand.h"

#include "KCCliArgs.h"
#include "KCCliDeviceOption.h"
#include "devopt/KCDeviceDatabase.h"
#include "devopt/KCOptionTypeRegistry.h"

#include <cstdio>

const char *KCCliDeviceCommand::usage() const
{
    return "usage: krldv device NAME [--json]\n"
           "\n"
           "Shows one device (its name in any case): vendor, family, kind, buffer size, data\n"
           "width, byte and display ranges, address offset, layout, default file type, option\n"
           "type, keys and option bytes of its parameter record, fuse count, and the engine\n"
           "that programs it with its name for the chip.\n"
           "  --json  one JSON object, the fields named as in the database files\n";
}

int KCCliDeviceCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {}, {"json"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no device name given" : "one device name only";
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.positional()[0]);
    if (!problem.empty())
        return usageError(problem);
    KCDeviceDatabase db;
    if (!db.load(KCDeviceDatabase::defaultFolder())) {
        std::fprintf(stderr, "krldv: %s\n", db.error().c_str());
        return CLI_INPUT_ERROR;
    }
    const DEVICE_KRLXDEF_ITEM &d = *db.find(a.positional()[0]);
    if (a.has("json")) {
        std::printf("%s\n", KCDeviceDatabase::toJson(d).c_str());
        return CLI_OK;
    }
    std::printf("name:          %s\n", d.name.c_str());
    std::printf("vendor:        %s\n", d.vendor.c_str());
    std::printf("family:        %s\n", d.familyName.c_str());
    std::printf("type:          0x%08X\n", d.type);
    std::printf("kind:          0x%X\n", d.kind);
    std::printf("size:          %llu bytes\n", static_cast<unsigned long long>(d.bufferSize));
    std::printf("data width:    %d bits\n", d.dataWidth);
    std::printf("byte range:    0x%08X-0x%08X\n", d.BSA, d.BEA);
    std::printf("display range: 0x%08X-0x%08X (highest 0x%08X)\n", d.DSA, d.DEA, d.DMA);
    std::printf("address offset: 0x%08X\n", d.addressOffset);
    std::printf("layout:        %s\n", d.layout.c_str());
    std::printf("file type:     %s\n", d.defaultFileType.c_str());
    std::printf("option type:   %u\n", d.optionType);
    for (const KCOptionPageEntry &page : KCOptionTypeRegistry::shared().pages(d.optionType))
        std::printf("option page:   %s\n", page.className.c_str());
    if (d.fuseCount)
        std::printf("fuses:         %u\n", d.fuseCount);
    for (const auto &[key, value] : d.numericKeys)
        std::printf("key:           %s = %u\n", key.c_str(), value);
    for (const auto &[key, value] : d.textKeys)
        std::printf("key:           %s = \"%s\"\n", key.c_str(), value.c_str());
    for (const auto &[offset, value] : d.optionBytes)
        std::printf("option byte:   %u = 0x%02X\n", offset, value);
    std::printf("engine:        %s\n", d.engine.empty() ? "none" : (d.engine + " (chip " + d.engineChip + ")").c_str());
    return CLI_OK;
}
