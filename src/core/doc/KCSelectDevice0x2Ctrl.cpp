#include "doc/KCSelectDevice0x2Ctrl.h"

#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"

void KCSelectDevice0x2Ctrl::addDataViews()
{
    // The areas and their addresses are the layout's own.
    m_dataViews.emplace_back(LAYOUT_BYTEVIEW_PIC18F, 0, 0, int64_t(m_doc->AlgoParam().algoUiData().bufferSize) - 1);
}
