#include "KCSvfFile.h"

#include "KCBinFile.h"
#include "KCDeviceText.h"
#include "KCSvfSyntaxCheck.h"

#include <cstring>

namespace {

const char *const kCommands[] = {"ENDDR", "ENDIR", "FREQUENCY", "HDR", "HIR", "PIO",  "PIOMAP",
                                 "RUNTEST", "SDR", "SIR", "STATE", "TDR", "TIR", "TRST"};

} // namespace

bool KCSvfFile::check(const KCInputFile &file, const KCLoadOptions &)
{
    return KCSvfSyntaxCheck(m_sink, file.name, file.data, file.size, kMaxLineLength, kMaxMessages).run();
}

bool KCSvfFile::detect(const uint8_t *data, size_t size)
{
    size_t p = firstSignificant(data, size);
    if (p >= size)
        return false;
    if (data[p] == '!' || (data[p] == '/' && p + 1 < size && data[p + 1] == '/'))
        return true;
    size_t end = p;
    while (end < size && ((data[end] | 0x20) >= 'a' && (data[end] | 0x20) <= 'z'))
        ++end;
    if (end == p || (end < size && !KCDeviceText::isSpace(data[end]) && data[end] != ';' && data[end] != '('))
        return false;
    for (const char *command : kCommands) {
        const size_t n = strlen(command);
        if (n != end - p)
            continue;
        size_t i = 0;
        while (i < n && (data[p + i] & ~0x20) == uint8_t(command[i]))
            ++i;
        if (i == n)
            return true;
    }
    return false;
}
