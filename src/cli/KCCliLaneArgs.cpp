#include "KCCliLaneArgs.h"

#include "KCCliArgs.h"
#include "bufops/KCLaneJob.h"
#include "bufops/cLaneError.h"
#include "doc/KCDataDoc.h"

#include "KCCliCommand.h"

#include <cstdio>

namespace {

bool isLaneWidth(uint64_t bits)
{
    return bits == 8 || bits == 16 || bits == 32 || bits == 64;
}

} // namespace

bool KCCliLaneArgs::parseWidths(const std::string &text, uint32_t &first, uint32_t &second)
{
    const size_t colon = text.find(':');
    uint64_t a = 0, b = 0;
    if (colon == std::string::npos || !KCCliArgs::parseNumber(text.substr(0, colon), a)
        || !KCCliArgs::parseNumber(text.substr(colon + 1), b) || !isLaneWidth(a) || !isLaneWidth(b))
        return false;
    first = uint32_t(a);
    second = uint32_t(b);
    return true;
}

bool KCCliLaneArgs::reach(KCDataDoc &doc, uint64_t last, const std::string &file)
{
    if (KCLaneJob::Reach(doc, last))
        return true;
    std::fprintf(stderr, "krldv: %s: not enough memory for 0x%llX bytes\n", file.c_str(),
                 static_cast<unsigned long long>(last + 1));
    return false;
}

int KCCliLaneArgs::refused(const std::string &file, const char *verb, int code)
{
    std::fprintf(stderr, "krldv: %s: %s refused (code %d): %s\n", file.c_str(), verb, code, cLaneError::Text(code));
    return CLI_INPUT_ERROR;
}
