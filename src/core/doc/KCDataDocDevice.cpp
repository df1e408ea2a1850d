// Device selection of the document: which control configures it, and what is kept when
// a configuration fails.
#include "doc/KCDataDoc.h"

#include "doc/KCSelectDevice0x0Ctrl.h"
#include "doc/KCSelectDevice0x1Ctrl.h"
#include "doc/KCSelectDevice0x2Ctrl.h"
#include "doc/KCSelectDeviceNoneCtrl.h"
#include "host/KCMainProgDataExChange.h"

namespace {

std::unique_ptr<KCSelectDeviceCtrlBase> controlForKind(uint32_t kind, KCDataDoc *doc)
{
    switch (kind) {
    case DEVICE_KIND_STANDARD: return std::make_unique<KCSelectDevice0x0Ctrl>(doc);
    case DEVICE_KIND_OFFSET: return std::make_unique<KCSelectDevice0x1Ctrl>(doc);
    case DEVICE_KIND_PIC18F: return std::make_unique<KCSelectDevice0x2Ctrl>(doc);
    default: return nullptr;
    }
}

} // namespace

// What a failed selection puts back.
struct KCDataDoc::DeviceState
{
    DEVICE_KRLXDEF_ITEM item;
    TAG_UI_ALGODATA_KRL3 record;
    std::string name;
    uint32_t type;
    TAG_BUFFER_PARAM param;
    std::vector<TAG_DATADOC_VIEWITEM> items;
};

KCDataDoc::DeviceState KCDataDoc::deviceState()
{
    return {m_deviceItem,           m_algoParam->algoUiData(), m_algoParam->deviceName(), m_algoParam->deviceType(),
            *mainBufferParam(),     m_viewItems};
}

void KCDataDoc::restoreDeviceState(const DeviceState &state)
{
    m_deviceItem = state.item;
    m_algoParam->algoUiData() = state.record;
    m_algoParam->setDeviceName(state.name);
    m_algoParam->setDeviceType(state.type);
    *mainBufferParam() = state.param;
    m_viewItems = state.items;
}

uint64_t KCDataDoc::definedBytesFrom(uint64_t size) const
{
    return m_dataMap.countIn(size, UINT64_MAX);
}

int KCDataDoc::selectDeviceForFile(const DEVICE_KRLXDEF_ITEM &device)
{
    TAG_BUFFER_PARAM *param = mainBufferParam();
    const LOADSAVE_FILETYPE named = param->fileType;
    const FILTERTYPE filter = param->filterType;
    const int ok = selectDevice(device);
    if (ok && filter != FILTER_ALL) {
        param = mainBufferParam();
        param->fileType = named;
        param->filterType = filter;
    }
    return ok;
}

int KCDataDoc::selectDevice(const DEVICE_KRLXDEF_ITEM &device)
{
    if (device.name.empty() || device.bufferSize == 0 || !m_host->HasDeviceSelectWindow())
        return 0;
    std::unique_ptr<KCSelectDeviceCtrlBase> control = controlForKind(device.kind, this);
    if (!control)
        return 0;

    const DeviceState before = deviceState();
    SetDeviceItemX(&device);
    if (!m_algoParam->CfgAlgoDataOnDeviceSelect(device) || !control->attach()) {
        restoreDeviceState(before);
        return 0;
    }
    if (m_selectDeviceCtrl)
        m_selectDeviceCtrl->CleanUpOnNewDevice();
    m_selectDeviceCtrl = std::move(control);
    m_loadBase = device.addressOffset;

    // The device fixes the buffer. Bytes inside it stay; anything beyond is cut off.
    cByteBuffer &buffer = m_algoParam->buffer(0);
    if (buffer.size() != device.bufferSize) {
        // A fresh, untouched buffer holds nothing to keep: it becomes the device's blank one.
        const bool fresh = !HavePathName() && !IsModified();
        materializeGaps();
        const bool cuts = !fresh && definedBytesFrom(device.bufferSize) != 0;
        buffer.resize(device.bufferSize, fillByte());
        m_dataMap.truncate(device.bufferSize);
        m_changedMap.truncate(device.bufferSize);
        if (fresh)
            defineWholeBuffer();
        m_undo.clear(!cuts && !IsModified());
        if (cuts)
            SetModifiedFlag(1);
    }
    UpdateAllViews(nullptr, DOCHINT_DEVICE);
    ComputeCheckSum(-1);
    return 1;
}

int KCDataDoc::deselectDeviceItem()
{
    auto control = std::make_unique<KCSelectDeviceNoneCtrl>(this);
    const DeviceState before = deviceState();
    ResetDeviceItemX();
    m_algoParam->clearDevice(m_host->GetNoDeviceName());
    TAG_BUFFER_PARAM &param = *mainBufferParam();
    param.LBSA = param.LBEA = param.SBSA = param.SBEA = 0xFFFFFFFF;
    param.loadRangeFromDevice = param.saveRangeFromDevice = 0;
    if (!control->attach()) {
        restoreDeviceState(before);
        return 0;
    }
    if (m_selectDeviceCtrl)
        m_selectDeviceCtrl->CleanUpOnNewDevice();
    m_selectDeviceCtrl = std::move(control);
    m_loadBase = 0;
    UpdateAllViews(nullptr, DOCHINT_DEVICE);
    ComputeCheckSum(-1);
    return 1;
}
