#pragma once

#include "KCCliCommand.h"

// "krldv convert IN OUT": reads an image in one format and writes it in another.
class KCCliConvertCommand : public KCCliCommand
{
public:
    const char *name() const override { return "convert"; }
    const char *summary() const override { return "convert an image from one file format to another"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
