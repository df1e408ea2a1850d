#pragma once

#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"
#include "doc/cByteBuffer.h"

#include <memory>
#include <string>
#include <vector>

// The selected device's algorithm parameters: the device's data buffers, its name and
// parameter record. The document always edits buffer 0.
class cAlgoParam
{
public:
    cAlgoParam(unsigned long bufferId, void *hardwareParam, void *mainObject, int maxBuffers);

    unsigned long bufferId() const { return m_bufferId; }
    void *hardwareParam() const { return m_hardwareParam; }
    void *mainObject() const { return m_mainObject; }
    int maxBuffers() const { return m_maxBuffers; }

    // Buffer `index`; the fallback buffer when the list is shorter.
    cByteBuffer &buffer(size_t index);
    const cByteBuffer &buffer(size_t index) const;
    size_t bufferCount() const { return m_buffers.size(); }
    // Appends a buffer of `size` bytes filled with `fill`; false when the limit is reached
    // or the memory cannot be had.
    bool addBuffer(uint64_t size, uint8_t fill);

    const std::string &deviceName() const { return m_deviceName; }
    void setDeviceName(const std::string &name) { m_deviceName = name; }
    uint32_t deviceType() const { return m_deviceType; }
    void setDeviceType(uint32_t type) { m_deviceType = type; }

    // Fills the parameter record for a device: its ranges, width, offset, option bytes and
    // keys; the device range becomes valid. False (record cleared, range invalid) when the
    // device's keys do not fit the record.
    bool CfgAlgoDataOnDeviceSelect(const DEVICE_KRLXDEF_ITEM &device);
    // Back to no device: the record is cleared and the device range invalid.
    void clearDevice(const std::string &noDeviceName);

    TAG_UI_ALGODATA_KRL3 &algoUiData() { return m_algoUiData; }
    // The device action a handler job fixes ("Program", "Verify", ...); empty when none is.
    const std::string &action() const { return m_action; }
    void setAction(const std::string &action) { m_action = action; }
    const TAG_UI_ALGODATA_KRL3 &algoUiData() const { return m_algoUiData; }

private:
    unsigned long m_bufferId;
    void *m_hardwareParam;
    void *m_mainObject;
    int m_maxBuffers;
    std::vector<std::unique_ptr<cByteBuffer>> m_buffers;
    cByteBuffer m_fallback;
    std::string m_deviceName;
    uint32_t m_deviceType = 0;
    TAG_UI_ALGODATA_KRL3 m_algoUiData{};
    std::string m_action;
};
