#pragma once

#include <string>
#include <vector>

// Exit statuses of the command-line tool.
enum KCCliExit : int { CLI_OK = 0, CLI_INPUT_ERROR = 1, CLI_USAGE_ERROR = 2 };

// One command of the command-line tool ("krldv NAME ..."); registered in KCCliCommands.
class KCCliCommand
{
public:
    virtual ~KCCliCommand() = default;
    virtual const char *name() const = 0;
    virtual const char *summary() const = 0; // one line for the overview
    virtual const char *usage() const = 0;   // the full help text
    // args excludes the command name; returns a KCCliExit value.
    virtual int run(const std::vector<std::string> &args) = 0;

protected:
    // A usage error: the problem, the usage line and where the whole help is; exit status 2.
    int usageError(const std::string &problem) const;
};
