#include "KCStaplFile.h"

#include "KCBinFile.h"
#include "KCDeviceText.h"
#include "KCStaplCheck.h"

namespace {

// Statement keywords that open a STAPL file; FREQUENCY, STATE and TRST are left out because
// serial vector files open with them too.
const char *const kKeywords[] = {"ACTION", "BOOLEAN", "CALL", "CRC", "DATA", "DRSCAN", "DRSTOP", "ENDDATA",
                                 "ENDPROC", "EXIT", "EXPORT", "FOR", "GOTO", "IF", "INTEGER", "IRSCAN",
                                 "IRSTOP", "LET", "NEXT", "NOTE", "PADDING", "POP", "POSTDR", "POSTIR",
                                 "PREDR", "PREIR", "PRINT", "PROCEDURE", "PUSH", "REM", "RETURN", "VECTOR",
                                 "VMAP", "WAIT"};

} // namespace

bool KCStaplFile::check(const KCInputFile &file, const KCLoadOptions &options)
{
    return KCStaplCheck(m_sink, file.name, file.data, file.size, options.ignoreChecksums).run();
}

bool KCStaplFile::detect(const uint8_t *data, size_t size)
{
    size_t p = firstSignificant(data, size);
    if (p >= size)
        return false;
    if (data[p] == '\'')
        return true;
    size_t end = p;
    while (end < size && (((data[end] | 0x20) >= 'a' && (data[end] | 0x20) <= 'z') || data[end] == '_'))
        ++end;
    if (end == p || (end < size && !KCDeviceText::isSpace(data[end]) && data[end] != ';'))
        return false;
    for (const char *keyword : kKeywords) {
        size_t i = 0;
        while (p + i < end && keyword[i] && (data[p + i] & ~0x20) == uint8_t(keyword[i]))
            ++i;
        if (p + i == end && !keyword[i])
            return true;
    }
    return false;
}
