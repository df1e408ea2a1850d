#include "doc/KCSelectDevice0x1Ctrl.h"

#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"

void KCSelectDevice0x1Ctrl::prepareMainItem(TAG_DATADOC_VIEWITEM &item) const
{
    item.number = BufferOrganisationNumber;
    item.flags = BufferOrganisationFlags;
    const uint32_t offset = m_doc->AlgoParam().algoUiData().addressOffset;
    item.extra1 = int(offset);
    item.extra2 = int(offset);
}

void KCSelectDevice0x1Ctrl::addDataViews()
{
    const TAG_UI_ALGODATA_KRL3 &algo = m_doc->AlgoParam().algoUiData();
    m_dataViews.emplace_back(LAYOUT_BYTEVIEW_OFFSET, 0, int64_t(algo.BSA), int64_t(algo.BEA), int32_t(algo.addressOffset));
}
