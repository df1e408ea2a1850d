#include "KCCliCommands.h"

#include <cstdio>
#include <cstring>

namespace {

void printOverview(const std::vector<std::unique_ptr<KCCliCommand>> &commands, FILE *out)
{
    std::fprintf(out, "usage: krldv COMMAND [ARGS]   (krldv COMMAND --help for details)\n\ncommands:\n");
    for (const auto &c : commands)
        std::fprintf(out, "  %-10s %s\n", c->name(), c->summary());
}

} // namespace

int main(int argc, char *argv[])
{
    const auto commands = KCCliCommands::create();
    if (argc < 2) {
        printOverview(commands, stderr);
        return CLI_USAGE_ERROR;
    }
    if (!std::strcmp(argv[1], "--version")) {
        std::printf("krldv %s\n", KRLDV_VERSION);
        return CLI_OK;
    }
    if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "help")) {
        printOverview(commands, stdout);
        return CLI_OK;
    }
    for (const auto &c : commands)
        if (argv[1] == std::string(c->name()))
            return c->run(std::vector<std::string>(argv + 2, argv + argc));
    std::fprintf(stderr, "krldv: unknown command '%s'\nusage: krldv COMMAND [ARGS]; see krldv --help\n", argv[1]);
    return CLI_USAGE_ERROR;
}
