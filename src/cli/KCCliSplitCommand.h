#pragma once

#include "KCCliCommand.h"

// "krldv split IN --widths WIDE:NARROW -o PATTERN": one image per byte or word lane, each
// lane shuffled back in memory to check the round trip.
class KCCliSplitCommand : public KCCliCommand
{
public:
    const char *name() const override { return "split"; }
    const char *summary() const override { return "split a wide image into its byte or word lanes"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
