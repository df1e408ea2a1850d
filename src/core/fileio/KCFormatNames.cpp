#include "fileio/KCFormatNames.h"

#include "fileio/KCFileTypeTable.h"

LOADSAVE_FILETYPE KCFormatNames::loadSaveType(const std::string &formatName)
{
    const KCFileTypeRow *row = KCFileTypeTable::byFormatName(formatName);
    return row ? row->type : LS_INVALID;
}

std::string KCFormatNames::formatName(LOADSAVE_FILETYPE type)
{
    const KCFileTypeRow *row = KCFileTypeTable::row(type);
    return row && row->formatName ? row->formatName : std::string();
}
