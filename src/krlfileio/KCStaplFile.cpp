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

KCLoadResult KCStaplFile::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    // The file is stored as it is, like a binary image; the check only reports.
    KCLoadOptions raw = options;
    raw.fileOffset = 0;
    KCLoadResult result = KCBinFile(m_sink).Load(file, target, raw);
    if (!result.ok)
        return result;
    result.ok = KCStaplCheck(m_sink, file.name, file.data, file.size, options.ignoreChecksums).run();
    return result;
}

bool KCStaplFile::detect(const uint8_t *data, size_t size)
{
    KCDeviceText text(data, size);
    size_t p = text.bomLength();
    while (p < size && KCDeviceText::isSpace(data[p]))
        ++p;
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
