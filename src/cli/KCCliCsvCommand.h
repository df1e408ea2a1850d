#pragma once

#include "KCCliCommand.h"

// "krldv csv check FILE [--strict]": the rule check of a CSV serial variables file;
// "krldv csv next FILE": takes the next free row as a station does.
class KCCliCsvCommand : public KCCliCommand
{
public:
    const char *name() const override { return "csv"; }
    const char *summary() const override { return "check a CSV serial variables file or take its next row"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
