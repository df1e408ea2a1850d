#pragma once

#include "host/KCFormatArg.h"

#include <initializer_list>
#include <string>
#include <vector>

// printf-style formatting of host strings that cannot crash on a wrong text: the
// conversions d i u x X c s and %% with the flags '-' and '0' and a width are understood;
// a missing argument formats as nothing, a number given to %s prints as a number.
class KCFormat
{
public:
    static std::string format(const std::string &fmt, std::initializer_list<KCFormatArg> args);
    static std::string format(const std::string &fmt, const std::vector<KCFormatArg> &args);

    // Number of arguments a format string consumes (for the table's self-check).
    static int argumentCount(const std::string &fmt);
};
