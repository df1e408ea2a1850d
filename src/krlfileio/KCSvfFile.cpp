#include "KCSvfFile.h"

#include "KCBinFile.h"
#include "KCDeviceText.h"
#include "KCSvfSyntaxCheck.h"

#include <cstring>

namespace {

const char *const kCommands[] = {"ENDDR", "ENDIR", "FREQUENCY", "HDR", "HIR", "PIO",  "PIOMAP",
                                 "RUNTEST", "SDR", "SIR", "STATE", "TDR", "TIR", "TRST"};

} // namespace

KCLoadResult KCSvfFile::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    // The file is stored as it is, like a binary image; the check only reports.
    KCLoadOptions raw = options;
    raw.fileOffset = 0;
    KCLoadResult result = KCBinFile(m_sink).Load(file, target, raw);
    if (!result.ok)
        return result;
    result.ok = KCSvfSyntaxCheck(m_sink, file.name, file.data, file.size, kMaxLineLength, kMaxMessages).run();
    return result;
}

bool KCSvfFile::detect(const uint8_t *data, size_t size)
{
    KCDeviceText text(data, size);
    size_t p = text.bomLength();
    while (p < size && KCDeviceText::isSpace(data[p]))
        ++p;
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
