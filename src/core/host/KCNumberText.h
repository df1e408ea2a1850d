#pragma once

#include <cstdint>
#include <string>

// Numbers and address ranges as people type them into the command line and the dialogs:
// blanks around them are ignored, "0x" (or "0X") makes a number hexadecimal, and a field
// that shows hexadecimal anyway takes its digits without the prefix too. The serial-number
// definition file keeps its own stricter rules.
class KCNumberText
{
public:
    // False for an empty text, a stray character or a value above max.
    static bool parse(const std::string &text, uint64_t &value, uint64_t max = UINT64_MAX, int defaultBase = 10);
    // The value of one hexadecimal digit typed as a character, -1 for any other character.
    static int hexDigitValue(unsigned ch);
    // "START:END" with START <= END <= max.
    static bool parseRange(const std::string &text, uint64_t &first, uint64_t &last, uint64_t max = UINT64_MAX,
                           int defaultBase = 10);
};
