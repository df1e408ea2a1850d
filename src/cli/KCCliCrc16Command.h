#pragma once

#include "KCCliCommand.h"

// "krldv crc16 FILE [--expect HEX]": the CRC-16 of a project or handler-job file, the figure
// an operator compares before a production run.
class KCCliCrc16Command : public KCCliCommand
{
public:
    const char *name() const override { return "crc16"; }
    const char *summary() const override { return "print the CRC-16 of a job or project file"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
