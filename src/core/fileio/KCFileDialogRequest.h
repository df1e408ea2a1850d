#pragma once

#include "fileio/KCFileTypes.h"

#include <string>

// What the document asks of the host's file dialog, and what the user chose.
struct KCFileDialogRequest
{
    CALLFROMMENUE origin = CALLFROM_OPEN;
    unsigned flags = 0;                          // toolkit-independent option bits (kept for the host)
    std::string initialPath;
    FILTERTYPE filterType = FILTER_ALL;          // filter to preselect
    LOADSAVE_FILETYPE loadSaveType = LS_BINARY;  // format to preselect
    // Results when the dialog ends with OK:
    std::string path;
    FILTERTYPE chosenFilterType = FILTER_ALL;
    LOADSAVE_FILETYPE chosenLoadSaveType = LS_BINARY;
};
