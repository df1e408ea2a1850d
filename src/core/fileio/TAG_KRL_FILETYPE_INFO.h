#pragma once

#include "fileio/KCFileTypes.h"

#include <string>

// One row of a file dialog's file-type list.
struct TAG_KRL_FILETYPE_INFO
{
    FILTERTYPE filterType = FILTER_INVALID;
    std::string extension;             // extension text, possibly "|"-separated
    LOADSAVE_FILETYPE loadSaveType = LS_INVALID;
    std::string description;
};
