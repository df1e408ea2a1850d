#include "bufops/KCBufferFillModel.h"

#include "doc/KCDataDoc.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>

namespace {

constexpr unsigned ByteMask = 0xFF;

} // namespace

KCBufferFillModel::KCBufferFillModel(KCDataDoc &doc) : m_doc(doc)
{
    const uint64_t size = doc.GetBufferSize();
    if (!doc.TF_GetBufferParam(nullptr, nullptr, nullptr, -1) || size == 0)
        return;
    m_valid = true;
    m_maxAddress = size - 1;
    const KCDataMap &map = doc.dataMap();
    m_start = map.isEmpty() ? 0 : map.lowest();
    m_end = map.isEmpty() ? m_maxAddress : std::min(map.highest(), m_maxAddress);
    m_value = doc.host()->GetFillByte();
}

KCBufferFillModel::Result KCBufferFillModel::apply(uint64_t start, uint64_t end, unsigned value)
{
    if (start > end)
        return StartAfterEnd;
    if (!m_doc.confirmChangeSize(end - start + 1))
        return Refused;
    // Only the low eight bits of the value count.
    const bool done = m_doc.FillRange(start, end, static_cast<uint8_t>(value & ByteMask));
    m_doc.ComputeCheckSum(-1);
    return done ? Filled : Refused;
}
