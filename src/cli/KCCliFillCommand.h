#pragma once

#include "KCCliCommand.h"

// "krldv fill IMAGE --range START:END --value BYTE -o OUT": one byte value into a range of an
// image, through the document's fill; the output keeps the image's shape plus the range.
class KCCliFillCommand : public KCCliCommand
{
public:
    const char *name() const override { return "fill"; }
    const char *summary() const override { return "fill an address range of an image with one byte value"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;
};
