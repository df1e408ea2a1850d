#include "host/KCNumberText.h"

#include <cctype>

namespace {

constexpr int Hexadecimal = 16;

} // namespace

bool KCNumberText::parse(const std::string &text, uint64_t &value, uint64_t max, int defaultBase)
{
    size_t i = text.find_first_not_of(" \t");
    size_t end = text.find_last_not_of(" \t");
    if (i == std::string::npos)
        return false;
    ++end;
    int base = defaultBase;
    if (end - i > 2 && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        base = Hexadecimal;
        i += 2;
    }
    uint64_t v = 0;
    for (; i < end; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        unsigned digit;
        if (std::isdigit(c))
            digit = c - '0';
        else if (base == Hexadecimal && std::isxdigit(c))
            digit = static_cast<unsigned>(std::tolower(c) - 'a' + 10);
        else
            return false;
        if (digit >= unsigned(base) || v > (max - digit) / unsigned(base))
            return false;
        v = v * unsigned(base) + digit;
    }
    value = v;
    return true;
}

bool KCNumberText::parseRange(const std::string &text, uint64_t &first, uint64_t &last, uint64_t max, int defaultBase)
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        return false;
    uint64_t a = 0, b = 0;
    if (!parse(text.substr(0, colon), a, max, defaultBase) || !parse(text.substr(colon + 1), b, max, defaultBase)
        || a > b)
        return false;
    first = a;
    last = b;
    return true;
}

int KCNumberText::hexDigitValue(unsigned ch)
{
    constexpr int DecimalDigits = 10;
    if (ch >= '0' && ch <= '9')
        return static_cast<int>(ch - '0');
    if (ch >= 'a' && ch <= 'f')
        return static_cast<int>(ch - 'a' + DecimalDigits);
    if (ch >= 'A' && ch <= 'F')
        return static_cast<int>(ch - 'A' + DecimalDigits);
    return -1;
}
