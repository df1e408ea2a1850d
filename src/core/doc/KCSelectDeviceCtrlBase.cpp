#include "doc/KCSelectDeviceCtrlBase.h"

#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "doc/KCUiAdrDataManager.h"
#include "fileio/KCFormatNames.h"
#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

namespace {

// Configuration modes of the host.
constexpr int ConfigureOnSelection = 0;
// Scroll flags of the views a device opens.
constexpr int DeviceViewScrollFlags = 0;

} // namespace

KCSelectDeviceCtrlBase::KCSelectDeviceCtrlBase(KCDataDoc *doc) : m_doc(doc)
{
}

int KCSelectDeviceCtrlBase::attach()
{
    m_active = false;
    if (!m_doc)
        return 0;
    KCMainProgDataExChange *host = m_doc->host();
    if (!host || !host->HasDeviceSelectWindow())
        return 0;
    m_host = host;
    m_active = true;
    if (!CFGNewDevice())
        return 0;
    KCUiAdrDataManager manager(m_doc->mainBufferParam(), &m_doc->AlgoParam().algoUiData());
    if (host->GetDeviceConfigMode() == ConfigureOnSelection)
        manager.CfgSelectConditionDevice();
    else
        manager.CfgOnDevLoadDefaults();
    SetFileTypeOnDeviceSelect();
    return 1;
}

int KCSelectDeviceCtrlBase::CFGNewDevice()
{
    if (!m_active || !m_doc || m_doc->GetDeviceItemX().name.empty() || m_doc->viewItems().empty())
        return 0;
    TF_RemoveTabsOnNewDevice();
    m_mainItem = TF_ModifyMainTab(m_doc->viewItems().front());
    InitBufferParam(m_mainItem.bufferParam);
    TF_SetBufferLayoutViews();
    if (m_host->IsDeviceTabStepSkipped())
        return 1;
    m_doc->viewItems().front() = m_mainItem;
    return SetDeviceDataSheetTab() && PostTabCreate();
}

void KCSelectDeviceCtrlBase::CleanUpOnNewDevice()
{
    m_dataViews.clear();
}

void KCSelectDeviceCtrlBase::SetFileTypeOnDeviceSelect()
{
    TAG_BUFFER_PARAM *param = m_doc ? m_doc->mainBufferParam() : nullptr;
    if (!param)
        return;
    const LOADSAVE_FILETYPE type = KCFormatNames::loadSaveType(m_doc->GetDeviceItemX().defaultFileType);
    if (type != LS_INVALID)
        param->fileType = type;
}

int KCSelectDeviceCtrlBase::SetDeviceDataSheetTab()
{
    return 1;
}

int KCSelectDeviceCtrlBase::PostTabCreate()
{
    return 1;
}

void KCSelectDeviceCtrlBase::InitBufferParam(TAG_BUFFER_PARAM *param) const
{
    if (!param || !m_doc)
        return;
    const TAG_UI_ALGODATA_KRL3 &algo = m_doc->AlgoParam().algoUiData();
    param->loadRangeFromDevice = 1;
    param->saveRangeFromDevice = 1;
    param->LBSA = algo.BSA;
    param->LBEA = algo.BEA;
    param->SBSA = algo.BSA;
    param->SBEA = algo.BEA;
    param->checksumKind = m_doc->GetDeviceItemX().fuseCount ? CHECKSUM_KIND_FUSEMAP : CHECKSUM_KIND_BYTESUM;
}

bool KCSelectDeviceCtrlBase::HasHandlerViewTab() const
{
    if (!m_doc)
        return false;
    for (const TAG_DATADOC_VIEWITEM &item : m_doc->viewItems())
        if (item.kind == VIEWITEM_KIND_HANDLER)
            return true;
    return false;
}

void KCSelectDeviceCtrlBase::TF_RemoveTabsOnNewDevice()
{
    // The main buffer stays; the previous device's own tabs go.
    TF_RemoveViewTab(VIEWITEM_KIND_DEVICEHELP);
    if (HasHandlerViewTab())
        TF_RemoveViewTab(VIEWITEM_KIND_HANDLER);
}

void KCSelectDeviceCtrlBase::TF_RemoveViewTab(int itemKind)
{
    std::vector<TAG_DATADOC_VIEWITEM> &items = m_doc->viewItems();
    for (size_t i = items.size(); i-- > 1;)
        if (items[i].kind == itemKind)
            items.erase(items.begin() + long(i));
}

void KCSelectDeviceCtrlBase::TF_SetBufferLayoutViews()
{
    m_dataViews.clear();
    addDataViews();
}

TAG_DATADOC_VIEWITEM KCSelectDeviceCtrlBase::TF_ModifyMainTab(TAG_DATADOC_VIEWITEM item) const
{
    prepareMainItem(item);
    item.text1 = mainCaption();
    return item;
}

std::string KCSelectDeviceCtrlBase::mainCaption() const
{
    return KCFormat::format(m_host->GetHostString(KCHostStrings::DeviceBufferCaption), {m_doc->GetDeviceItemX().name});
}

void KCSelectDeviceCtrlBase::addDataViews()
{
    const TAG_UI_ALGODATA_KRL3 &algo = m_doc->AlgoParam().algoUiData();
    const std::string &layout = m_doc->GetDeviceItemX().layout;
    m_dataViews.emplace_back(layout.empty() ? std::string(LAYOUT_BYTEVIEW) : layout, DeviceViewScrollFlags,
                             int64_t(algo.BSA), int64_t(algo.BEA));
}
