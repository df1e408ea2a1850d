#pragma once

#include "KCCliCommand.h"

#include <string>

class KCDataDoc;

// "krldv info FILE": what a file holds, as the reader sees it.
class KCCliInfoCommand : public KCCliCommand
{
public:
    const char *name() const override { return "info"; }
    const char *summary() const override { return "show format, records, address ranges and sums of a file"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;

private:
    // A project or handler job: its device, action, buffer 0 and the file's CRC-16.
    int showProject(KCDataDoc &doc, const std::string &path);
};
