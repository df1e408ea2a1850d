#pragma once

#include "KCCliCommand.h"

// "krldv checksum FILE": the buffer checksum of a file as the document computes it.
class KCCliChecksumCommand : public KCCliCommand
{
public:
    const char *name() const override { return "checksum"; }
    const char *summary() const override { return "print the checksum of an image"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
