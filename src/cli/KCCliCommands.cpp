#include "KCCliCommands.h"

#include "KCCliChecksumCommand.h"

std::vector<std::unique_ptr<KCCliCommand>> KCCliCommands::create()
{
    std::vector<std::unique_ptr<KCCliCommand>> commands;
    commands.push_back(std::make_unique<KCCliChecksumCommand>());
    return commands;
}
