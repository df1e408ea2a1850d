#pragma once

#include "KCCliCommand.h"
#include "fileio/KCFileTypes.h"

#include <string>

class KCDataDoc;
struct KCFileFormatInfo;

// "krldv convert IN OUT": reads an image in one format and writes it in another.
class KCCliConvertCommand : public KCCliCommand
{
public:
    const char *name() const override { return "convert"; }
    const char *summary() const override { return "convert an image from one file format to another"; }
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;

private:
    // A project (.kpf2) or handler job (.handlerjob) on either side.
    int convertProject(KCDataDoc &doc, const std::string &in, const std::string &out, LOADSAVE_FILETYPE projectIn,
                       LOADSAVE_FILETYPE projectOut, const KCFileFormatInfo *to);
};
