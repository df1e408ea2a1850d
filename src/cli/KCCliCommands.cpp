#include "KCCliCommands.h"

#include "KCCliChecksumCommand.h"
#include "KCCliConvertCommand.h"
#include "KCCliCrc16Command.h"
#include "KCCliCsvCommand.h"
#include "KCCliDeviceCommand.h"
#include "KCCliDevicesCommand.h"
#include "KCCliEngineCommand.h"
#include "KCCliFillCommand.h"
#include "KCCliFindCommand.h"
#include "KCCliJoinCommand.h"
#include "KCCliInfoCommand.h"
#include "KCCliSerialCommand.h"
#include "KCCliShuffleCommand.h"
#include "KCCliSplitCommand.h"

std::vector<std::unique_ptr<KCCliCommand>> KCCliCommands::create()
{
    std::vector<std::unique_ptr<KCCliCommand>> commands;
    commands.push_back(std::make_unique<KCCliInfoCommand>());
    commands.push_back(std::make_unique<KCCliConvertCommand>());
    commands.push_back(std::make_unique<KCCliChecksumCommand>());
    commands.push_back(std::make_unique<KCCliCrc16Command>());
    commands.push_back(std::make_unique<KCCliFillCommand>());
    commands.push_back(std::make_unique<KCCliFindCommand>());
    commands.push_back(std::make_unique<KCCliSplitCommand>());
    commands.push_back(std::make_unique<KCCliShuffleCommand>());
    commands.push_back(std::make_unique<KCCliJoinCommand>());
    commands.push_back(std::make_unique<KCCliSerialCommand>());
    commands.push_back(std::make_unique<KCCliCsvCommand>());
    commands.push_back(std::make_unique<KCCliDevicesCommand>());
    commands.push_back(std::make_unique<KCCliDeviceCommand>());
    for (auto action : {KCCliEngineCommand::Program, KCCliEngineCommand::Read, KCCliEngineCommand::Verify,
                        KCCliEngineCommand::Erase, KCCliEngineCommand::Blank})
        commands.push_back(std::make_unique<KCCliEngineCommand>(action));
    return commands;
}
