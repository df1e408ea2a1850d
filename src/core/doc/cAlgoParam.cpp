#include "doc/cAlgoParam.h"

#include "doc/KCAlgoKeys.h"

#include <cstring>

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

bool cAlgoParam::CfgAlgoDataOnDeviceSelect(const DEVICE_KRLXDEF_ITEM &device)
{
    m_algoUiData = TAG_UI_ALGODATA_KRL3{};
    TAG_UI_ALGODATA_KRL3 &d = m_algoUiData;
    d.BSA = device.BSA;
    d.BEA = device.BEA;
    d.DSA = device.DSA;
    d.DEA = device.DEA;
    d.DMA = device.DMA;
    d.bufferSize = uint32_t(device.bufferSize);
    d.dataWidth = int16_t(device.dataWidth);
    d.addressOffset = device.addressOffset;
    for (const auto &[offset, value] : device.optionBytes)
        if (offset >= ALGODATA_OPTION_FIELDS && offset < ALGODATA_TEXT_FIELDS)
            reinterpret_cast<uint8_t *>(&d)[offset] = value;
    if (!KCAlgoKeys(d).build(device.numericKeys, device.textKeys)) {
        m_algoUiData = TAG_UI_ALGODATA_KRL3{};
        return false;
    }
    d.deviceRangeValid = 1;
    m_deviceName = device.name;
    m_deviceType = device.type;
    return true;
}

void cAlgoParam::clearDevice(const std::string &noDeviceName)
{
    m_algoUiData = TAG_UI_ALGODATA_KRL3{};
    m_algoUiData.dataWidth = 8;
    m_deviceName = noDeviceName;
    m_deviceType = 0;
}
