#include "KCCliSerialCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCSerialDefCtrl.h"

#include <cstdio>
#include <map>

namespace {
using Ctrl = KCSerialDefCtrl;

const std::map<std::string, unsigned> Representations = {
    {"hex-asc", Ctrl::FlagHex | Ctrl::FlagAsc},
    {"dec-asc", Ctrl::FlagDec | Ctrl::FlagAsc},
    {"hex-bin", Ctrl::FlagHex | Ctrl::FlagBin},
    {"dec-bin", Ctrl::FlagDec | Ctrl::FlagBin},
};
const char *const DefaultRepresentation = "hex-asc";
constexpr uint64_t MaxBlock = 0x7FFFFFFF;
}

const char *KCCliSerialCommand::usage() const
{
    return "usage: krldv serial next DEFFILE [--block N] [--advance]\n"
           "                         [--repr hex-asc|dec-asc|hex-bin|dec-bin] [--little-endian]\n"
           "\n"
           "Prints the next serial number of block N (default 0) of the definition file as\n"
           "the bytes that go into the buffer, in hexadecimal, and for an ASCII representation\n"
           "or a quoted LIST element the text on a second line. A missing krdefser.ser is\n"
           "created with the default series.\n"
           "  --advance        consume the number: the file is advanced as a station does it,\n"
           "                   waiting while another station holds the file\n"
           "  --repr R         representation of a CALC number (default hex-asc)\n"
           "  --little-endian  reverse the bytes\n";
}

int KCCliSerialCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"block", "repr"}, {"advance", "little-endian"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const std::vector<std::string> &p = a.positional();
    if (problem.empty() && (p.empty() || p[0] != "next"))
        problem = p.empty() ? "no subcommand given" : "unknown subcommand " + p[0];
    if (problem.empty() && p.size() != 2)
        problem = p.size() < 2 ? "no definition file given" : "only one definition file is taken";
    uint64_t block = 0;
    if (problem.empty() && a.has("block") && !KCCliArgs::parseNumber(a.value("block"), block, MaxBlock))
        problem = "--block takes a block number, not " + a.value("block");
    const std::string repr = a.value("repr", DefaultRepresentation);
    const auto representation = Representations.find(repr);
    if (problem.empty() && representation == Representations.end())
        problem = "--repr takes hex-asc, dec-asc, hex-bin or dec-bin, not " + repr;
    if (!problem.empty()) {
        std::fprintf(stderr, "krldv serial: %s\n%s", problem.c_str(), usage());
        return CLI_USAGE_ERROR;
    }
    const unsigned endian = a.has("little-endian") ? Ctrl::FlagLittleEndian : Ctrl::FlagBigEndian;
    return runNext(p[1], static_cast<int>(block), representation->second | endian, a.has("advance"));
}

int KCCliSerialCommand::runNext(const std::string &defFile, int block, unsigned flags, bool advance)
{
    if (defFile.size() > Ctrl::MaxPathLength) {
        std::fprintf(stderr, "krldv: %s: the path is longer than %zu characters\n", defFile.c_str(),
                     Ctrl::MaxPathLength);
        return CLI_INPUT_ERROR;
    }
    KCCliHost host;
    host.setVerbose(true); // the definition file's diagnostics are what the user asked for
    Ctrl ctrl(&host, defFile);
    unsigned length = 0, value = 0;
    std::string bytes;
    char data[Ctrl::DataBufferSize];
    if (!ctrl.SERIAL_GetNextSerialNumber(block, &flags, &length, &value, data, &bytes, advance, 1)) {
        if (ctrl.fileText().empty())
            std::fprintf(stderr, "krldv: %s: cannot read the serial number definition\n", defFile.c_str());
        else if (ctrl.blockCount() == 0)
            std::fprintf(stderr, "krldv: %s: no complete block (is a \"}\" missing?)\n", defFile.c_str());
        else if (block >= ctrl.blockCount())
            std::fprintf(stderr, "krldv: %s: there is no block %d (the file has %d)\n", defFile.c_str(), block,
                         ctrl.blockCount());
        else
            std::fprintf(stderr, "krldv: %s: block %d gives no serial number\n", defFile.c_str(), block);
        return CLI_INPUT_ERROR;
    }
    for (size_t i = 0; i < bytes.size(); ++i)
        std::printf(i ? " %02X" : "%02X", static_cast<unsigned char>(bytes[i]));
    std::printf("\n");
    const bool text = (flags & Ctrl::FlagCalc) ? (flags & Ctrl::FlagAsc) != 0 : data[0] == '"';
    if (text)
        std::printf("%s\n", bytes.c_str());
    return CLI_OK;
}
