#pragma once

#include "KCCliCommand.h"

#include <memory>
#include <vector>

// The table of all commands of the command-line tool.
class KCCliCommands
{
public:
    static std::vector<std::unique_ptr<KCCliCommand>> create();
};
