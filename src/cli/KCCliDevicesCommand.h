#pragma once

#include "KCCliCommand.h"

// "krldv devices [PATTERN]": the devices of the database, one a line or as JSON.
class KCCliDevicesCommand : public KCCliCommand
{
public:
    const char *name() const override { return "devices"; }
    const char *summary() const override { return "list the devices of the database"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
