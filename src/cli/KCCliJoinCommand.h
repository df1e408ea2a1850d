#pragma once

#include "KCCliCommand.h"

// "krldv join --widths NARROW:WIDE LANE0 LANE1 ... -o OUT": the lanes of a split back into
// one wide image.
class KCCliJoinCommand : public KCCliCommand
{
public:
    const char *name() const override { return "join"; }
    const char *summary() const override { return "join lane images into one wide image"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
