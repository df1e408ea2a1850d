// Where the document's serial numbers are written: buffer 0, through the document's own
// writes, so the checksum, the data map and undo follow.
#include "doc/KCDataDoc.h"

bool KCDataDoc::hasSerialTarget()
{
    return TF_GetBufferParam(nullptr, nullptr, nullptr, -1) != nullptr;
}

uint8_t KCDataDoc::serialByte(uint64_t address) const
{
    return GetData(static_cast<uint32_t>(address));
}

void KCDataDoc::writeSerialByte(uint64_t address, uint8_t value)
{
    SetData(value, static_cast<uint32_t>(address));
}

void KCDataDoc::endSerialWrite(bool changed)
{
    endAction();
    if (changed)
        UpdateAllViews(nullptr, DOCHINT_DATA);
}

void KCDataDoc::serialSettingsChanged()
{
    SetModifiedFlag(1);
    UpdateAllViews(nullptr, DOCHINT_ALL);
}
