#include "bufops/cBufferShuffle.h"

#include "bufops/cBufferAccess.h"
#include "bufops/cLaneCopy.h"
#include "bufops/cLaneError.h"

namespace {

constexpr uint32_t BitsPerByte = 8;

} // namespace

cBufferShuffle::cBufferShuffle(KCByteArray &source, uint32_t sourceWidth, KCByteArray &dest, uint32_t destWidth)
    : m_source(source), m_dest(dest), m_sourceWidth(sourceWidth), m_sourceUnit(sourceWidth / BitsPerByte),
      m_destWidth(destWidth), m_destUnit(destWidth / BitsPerByte), m_laneCount(0)
{
    if (sourceWidth == 0)
        throw cLaneError::SourceWidthZero;
    if (sourceWidth % BitsPerByte)
        throw cLaneError::SourceWidthNotBytes;
    if (destWidth == 0)
        throw cLaneError::DestWidthZero;
    if (destWidth % BitsPerByte)
        throw cLaneError::DestWidthNotBytes;
    if (m_destUnit % m_sourceUnit)
        throw cLaneError::DestNotMultipleOfSource;
    m_laneCount = m_destUnit / m_sourceUnit;
}

cBufferShuffle::~cBufferShuffle() = default;

uint64_t cBufferShuffle::MapAddress(uint64_t address, uint32_t lane) const
{
    if (lane >= m_destUnit)
        throw cLaneError::LaneOutsideUnit;
    const uint64_t offset = address % m_sourceUnit;
    return uint64_t(m_sourceUnit) * lane + offset + (address - offset) * m_laneCount;
}

void cBufferShuffle::RunPerByte(uint64_t first, uint64_t last, uint32_t lane)
{
    for (uint64_t a = first; a <= last; ++a) {
        if (!cBufferAccess::SetByte(m_dest, MapAddress(a, lane), cBufferAccess::GetByte(m_source, a)))
            throw cLaneError::ByteRefused;
        if (a == last)
            break;
    }
}

void cBufferShuffle::Run(uint64_t first, uint64_t last, uint32_t lane)
{
    if (first > last)
        return;
    const uint64_t destLast = MapAddress(last, lane);
    // Within one buffer a chunk could overlap its own source: that case keeps the byte order.
    const bool contiguous = &m_source != &m_dest && m_source.data() && m_dest.data();
    if (!contiguous || last >= m_source.size() || destLast >= m_dest.size()) {
        RunPerByte(first, last, lane);
        return;
    }
    const uint8_t *src = m_source.data();
    uint8_t *dst = m_dest.data();
    uint64_t a = first;
    for (; a <= last && a % m_sourceUnit; ++a)
        dst[MapAddress(a, lane)] = src[a];
    if (a > last)
        return;
    const uint64_t units = (last - a + 1) / m_sourceUnit;
    if (units) {
        cLaneCopy::Scatter(dst + MapAddress(a, lane), m_destUnit, src + a, m_sourceUnit, units);
        a += units * m_sourceUnit;
    }
    for (; a <= last; ++a)
        dst[MapAddress(a, lane)] = src[a];
}
