#include "doc/cAlgoParam.h"

cAlgoParam::cAlgoParam(unsigned long bufferId, void *hardwareParam, void *mainObject, int maxBuffers)
    : m_bufferId(bufferId), m_hardwareParam(hardwareParam), m_mainObject(mainObject), m_maxBuffers(maxBuffers)
{
    m_algoUiData.dataWidth = 8;
}

cByteBuffer &cAlgoParam::buffer(size_t index)
{
    return index < m_buffers.size() ? *m_buffers[index] : m_fallback;
}

const cByteBuffer &cAlgoParam::buffer(size_t index) const
{
    return index < m_buffers.size() ? *m_buffers[index] : m_fallback;
}

bool cAlgoParam::addBuffer(uint64_t size, uint8_t fill)
{
    if (m_maxBuffers >= 0 && m_buffers.size() >= static_cast<size_t>(m_maxBuffers))
        return false;
    auto buf = std::make_unique<cByteBuffer>();
    if (!buf->resize(size, fill))
        return false;
    m_buffers.push_back(std::move(buf));
    return true;
}
