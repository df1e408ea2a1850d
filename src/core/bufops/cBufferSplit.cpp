#include "bufops/cBufferSplit.h"

#include "bufops/cBufferAccess.h"
#include "bufops/cLaneCopy.h"
#include "bufops/cLaneError.h"

namespace {

constexpr uint32_t BitsPerByte = 8;

} // namespace

cBufferSplit::cBufferSplit(KCByteArray &source, uint32_t sourceWidth, KCByteArray &dest, uint32_t destWidth)
    : m_source(source), m_dest(dest), m_sourceWidth(sourceWidth), m_sourceUnit(sourceWidth / BitsPerByte),
      m_destWidth(destWidth), m_destUnit(destWidth / BitsPerByte)
{
    if (sourceWidth == 0)
        throw cLaneError::SourceWidthZero;
    if (sourceWidth % BitsPerByte)
        throw cLaneError::SourceWidthNotBytes;
    if (destWidth == 0)
        throw cLaneError::DestWidthZero;
    if (destWidth % BitsPerByte)
        throw cLaneError::DestWidthNotBytes;
    if (m_sourceUnit <= m_destUnit)
        throw cLaneError::SourceNotWider;
    if (m_sourceUnit % m_destUnit)
        throw cLaneError::SourceNotMultipleOfDest;
}

cBufferSplit::~cBufferSplit() = default;

void cBufferSplit::checkRange(uint64_t first, uint64_t last) const
{
    if (last < first || (last - first + 1) % m_sourceUnit)
        throw cLaneError::RangeNotWholeUnits;
}

void cBufferSplit::RunPerByte(uint64_t first, uint64_t last, uint32_t lane)
{
    checkRange(first, last);
    uint64_t dest = GetDestStart(first);
    for (uint64_t unit = uint64_t(m_destUnit) * lane + first; unit <= last; unit += m_sourceUnit) {
        for (uint32_t i = 0; i < m_destUnit; ++i, ++dest) {
            if (!cBufferAccess::SetByte(m_dest, dest, cBufferAccess::GetByte(m_source, unit + i)))
                throw cLaneError::ByteRefused;
        }
    }
}

void cBufferSplit::Run(uint64_t first, uint64_t last, uint32_t lane)
{
    checkRange(first, last);
    const uint64_t start = uint64_t(m_destUnit) * lane + first;
    if (start > last)
        return;
    const uint64_t units = (last - start) / m_sourceUnit + 1;
    const uint64_t dest = GetDestStart(first);
    const uint64_t sourceEnd = start + (units - 1) * m_sourceUnit + m_destUnit; // one past the last read
    const uint64_t destEnd = dest + units * m_destUnit;
    const bool contiguous = &m_source != &m_dest && m_source.data() && m_dest.data();
    if (!contiguous || sourceEnd > m_source.size() || destEnd > m_dest.size()) {
        RunPerByte(first, last, lane);
        return;
    }
    cLaneCopy::Gather(m_dest.data() + dest, m_source.data() + start, m_sourceUnit, m_destUnit, units);
}

void cBufferSplit::RunAllLanes(KCByteArray &source, uint32_t sourceWidth, const std::vector<KCByteArray *> &dests,
                               uint32_t destWidth, uint64_t first, uint64_t last)
{
    std::vector<cBufferSplit> lanes;
    for (KCByteArray *dest : dests)
        lanes.emplace_back(source, sourceWidth, *dest, destWidth);
    if (lanes.empty())
        return;
    const cBufferSplit &any = lanes.front();
    any.checkRange(first, last);
    const uint64_t units = (last - first + 1) / any.m_sourceUnit;
    const uint64_t dest = any.GetDestStart(first);
    bool onePass = dests.size() == any.m_sourceUnit / any.m_destUnit && source.data() && last < source.size();
    std::vector<uint8_t *> out;
    for (KCByteArray *d : dests) {
        onePass = onePass && d != &source && d->data() && dest + units * any.m_destUnit <= d->size();
        out.push_back(onePass ? d->data() + dest : nullptr);
    }
    if (!onePass) {
        for (uint32_t lane = 0; lane < lanes.size(); ++lane)
            lanes[lane].Run(first, last, lane);
        return;
    }
    cLaneCopy::GatherLanes(out.data(), source.data() + first, any.m_sourceUnit, any.m_destUnit, units);
}
