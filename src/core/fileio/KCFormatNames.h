#pragma once

#include "fileio/KCFileTypes.h"

#include <string>

// Links the document's file types to the format library's names ("intel", "jedec", ...).
class KCFormatNames
{
public:
    // LS_INVALID for a name no file type stands for.
    static LOADSAVE_FILETYPE loadSaveType(const std::string &formatName);
    // Empty for types without a format (projects, definitions).
    static std::string formatName(LOADSAVE_FILETYPE type);
};
