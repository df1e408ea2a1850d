#pragma once

#include "KCCliCommand.h"

// "krldv serial next DEFFILE ...": the next number of a serial definition file, optionally
// consumed as a programming station consumes it; "krldv serial stamp IMAGE DEFFILE ...":
// consumes the next number into an image, as before programming a device.
class KCCliSerialCommand : public KCCliCommand
{
public:
    const char *name() const override { return "serial"; }
    const char *summary() const override { return "show or take the next serial number of a definition file"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;

private:
    int runNext(const std::string &defFile, int block, unsigned flags, bool advance);
    int runStamp(const std::vector<std::string> &args);
    int runJournal(const std::vector<std::string> &args);
};
