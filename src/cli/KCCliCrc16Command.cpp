#include "KCCliCrc16Command.h"

#include "KCCliArgs.h"
#include "fileio/cKrlCrc16.h"

#include <cstdio>
#include <sys/stat.h>

const char *KCCliCrc16Command::usage() const
{
    return "usage: krldv crc16 FILE [--expect HEX]\n"
           "\n"
           "Prints the CRC-16 of the whole file as 0xXXXX, the checksum shown when a handler\n"
           "job is saved: polynomial 0x1021, most significant bit first, register from 0xFFFF,\n"
           "each byte shifted into the register, no final XOR (\"123456789\" gives 0xA69D).\n"
           "An empty or unreadable file gives 0x0000.\n"
           "  --expect HEX  exit 0 when the low 16 bits of HEX equal the CRC, 1 otherwise;\n"
           "                HEX is read as the checksum dialog reads it (\"11A69D\" matches 0xA69D)\n";
}

int KCCliCrc16Command::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"expect"}, {});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no input file given" : "only one input file is taken";
    if (!problem.empty())
        return usageError(problem);

    const std::string &path = a.positional()[0];
    // The checksum of a missing file is 0 by definition; say so, since it is rarely meant.
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        std::fprintf(stderr, "krldv: %s: cannot be read; its CRC-16 counts as 0\n", path.c_str());
    const uint16_t crc = cKrlCrc16().computeFile(path);
    std::printf("0x%04X\n", crc);
    if (!a.has("expect"))
        return CLI_OK;
    if (cKrlCrc16::entryMatches(a.value("expect"), crc))
        return CLI_OK;
    std::fprintf(stderr, "krldv: %s: CRC-16 is 0x%04X, expected %s\n", path.c_str(), crc, a.value("expect").c_str());
    return CLI_INPUT_ERROR;
}
