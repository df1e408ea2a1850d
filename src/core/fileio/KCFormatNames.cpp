#include "KCFormatNames.h"

namespace {

struct Link
{
    LOADSAVE_FILETYPE type;
    const char *name;
};

const Link Links[] = {
    {LS_BINARY, "bin"},  {LS_INTELHEX, "intel"}, {LS_MOTOROLA, "motorola"},   {LS_TIHEX, "ti"},
    {LS_JEDEC, "jedec"}, {LS_SVF, "svf"},        {LS_HOLTEK_OTP, "otp"},       {LS_STAPL, "stapl"},
};

} // namespace

LOADSAVE_FILETYPE KCFormatNames::loadSaveType(const std::string &formatName)
{
    for (const Link &l : Links)
        if (formatName == l.name)
            return l.type;
    return LS_INVALID;
}

std::string KCFormatNames::formatName(LOADSAVE_FILETYPE type)
{
    for (const Link &l : Links)
        if (type == l.type)
            return l.name;
    return {};
}
