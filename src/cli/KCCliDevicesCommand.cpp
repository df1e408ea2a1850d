#include "KCCliDevicesCommand.h"

#include "KCCliArgs.h"
#include "devopt/KCDeviceDatabase.h"

#include <cstdio>

const char *KCCliDevicesCommand::usage() const
{
    return "usage: krldv devices [PATTERN] [--json]\n"
           "\n"
           "Lists the devices whose name or vendor contains PATTERN (any case), all without\n"
           "one: name, vendor, kind, size in bytes, data width, layout and programming engine.\n"
           "Exit status 1 when none matches.\n"
           "  --json  one JSON array, the fields named as in the database files\n";
}

int KCCliDevicesCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {}, {"json"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() > 1)
        problem = "one pattern at most";
    if (!problem.empty())
        return usageError(problem);
    KCDeviceDatabase db;
    if (!db.load(KCDeviceDatabase::defaultFolder())) {
        std::fprintf(stderr, "krldv: %s\n", db.error().c_str());
        return CLI_INPUT_ERROR;
    }
    const auto found = db.match(a.positional().empty() ? std::string() : a.positional()[0]);
    if (a.has("json")) {
        std::printf("%s\n", KCDeviceDatabase::toJson(found).c_str());
    } else {
        std::printf("%-14s %-20s %-4s %10s %5s %-20s %s\n", "NAME", "VENDOR", "KIND", "SIZE", "WIDTH", "LAYOUT",
                    "ENGINE");
        for (const DEVICE_KRLXDEF_ITEM *d : found)
            std::printf("%-14s %-20s 0x%-2X %10llu %5d %-20s %s\n", d->name.c_str(), d->vendor.c_str(), d->kind,
                        static_cast<unsigned long long>(d->bufferSize), d->dataWidth, d->layout.c_str(),
                        d->engine.empty() ? "-" : d->engine.c_str());
    }
    return found.empty() ? CLI_INPUT_ERROR : CLI_OK;
}
