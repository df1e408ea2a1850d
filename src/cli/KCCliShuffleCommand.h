#pragma once

#include "KCCliCommand.h"

// "krldv shuffle NARROW --widths NARROW:WIDE --lane L -o OUT": a narrow image into one lane
// of a wide one.
class KCCliShuffleCommand : public KCCliCommand
{
public:
    const char *name() const override { return "shuffle"; }
    const char *summary() const override { return "write a narrow image into one lane of a wide image"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
