#pragma once

#include "KCCliCommand.h"

// "krldv device NAME": everything the database says of one device.
class KCCliDeviceCommand : public KCCliCommand
{
public:
    const char *name() const override { return "device"; }
    const char *summary() const override { return "show one device of the database"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
