#include "KCCliCsvCommand.h"

#include "KCCliArgs.h"
#include "KCCliSerialOptions.h"
#include "KCCliDeviceOption.h"
#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <cstdio>

const char *KCCliCsvCommand::usage() const
{
    return "usage: krldv csv check FILE [--strict] [--device NAME]\n"
           "       krldv csv next FILE [--device NAME]\n"
           "\n"
           "check: the rule check of a CSV serial variables file; every problem is listed with\n"
           "its line. Exit status 0 when the file passes.\n"
           "  --strict       warnings (values shorter than their bytes, unknown directives) fail\n"
           "  --device NAME  the variables must lie inside the device\n"
           "next: takes the next free row, marks it used and journals it (FILE.journal), waiting\n"
           "while another station holds the file; prints each variable's address and bytes.\n"
           "\n"
           "The file:  #var,NAME,ADDRESS,BYTES,asc|hex   one line per variable\n"
           "           #key,NAME                         the unique column (default: the first)\n"
           "           USED,NAME,...                     the header row\n"
           "           ,VALUE,...                        one row per device, USED empty while free\n";
}

int KCCliCsvCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"device"}, {"strict"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const std::vector<std::string> &p = a.positional();
    if (problem.empty() && (p.size() != 2 || (p[0] != "check" && p[0] != "next")))
        problem = "give check or next and one file";
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.value("device"));
    if (!problem.empty())
        return usageError(problem);
    cKrlSerialNumberHandler handler(p[1], a.has("strict") ? cKrlSerialNumberHandler::ModeStrict
                                                          : cKrlSerialNumberHandler::ModeLenient);
    if (a.has("device"))
        handler.setDeviceSize(KCCliDeviceOption::find(a.value("device"))->bufferSize);
    if (p[0] == "check") {
        const bool ok = handler.readCSVSerialNumberFile();
        std::fputs(handler.getErrors().c_str(), stderr);
        std::printf("%s: %s, %zu variables, %u free rows\n", p[1].c_str(), ok ? "passed" : "failed",
                    handler.variables().size(), handler.freeRows());
        return ok ? CLI_OK : CLI_INPUT_ERROR;
    }
    unsigned row = 0;
    std::vector<std::pair<uint32_t, std::string>> values;
    std::string why;
    if (!handler.takeNextRow(&row, &values, &why)) {
        std::fprintf(stderr, "krldv: %s\n", why.c_str());
        return CLI_INPUT_ERROR;
    }
    KCCliSerialOptions::printRow(row, values);
    return CLI_OK;
}
