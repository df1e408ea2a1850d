#include "KCCheckedTextImage.h"

#include "KCBinFile.h"
#include "KCDeviceText.h"

KCLoadResult KCCheckedTextImage::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    KCLoadOptions raw = options;
    raw.fileOffset = 0;
    KCLoadResult result = KCBinFile(m_sink).Load(file, target, raw);
    if (result.ok)
        result.ok = check(file, options);
    return result;
}

size_t KCCheckedTextImage::firstSignificant(const uint8_t *data, size_t size)
{
    size_t p = KCDeviceText(data, size).bomLength();
    while (p < size && KCDeviceText::isSpace(data[p]))
        ++p;
    return p;
}
