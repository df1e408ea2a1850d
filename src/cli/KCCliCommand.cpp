#include "KCCliCommand.h"

#include <cstdio>

int KCCliCommand::usageError(const std::string &problem) const
{
    // The usage lines are the help's first paragraph.
    const std::string help = usage();
    const size_t blank = help.find("\n\n");
    const std::string lines = help.substr(0, blank == std::string::npos ? help.size() : blank + 1);
    std::fprintf(stderr, "krldv %s: %s\n%ssee krldv %s --help\n", name(), problem.c_str(), lines.c_str(), name());
    return CLI_USAGE_ERROR;
}
