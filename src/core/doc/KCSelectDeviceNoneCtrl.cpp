#include "doc/KCSelectDeviceNoneCtrl.h"

#include "doc/KCDataDoc.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

int KCSelectDeviceNoneCtrl::CFGNewDevice()
{
    if (!m_active || !m_doc || m_doc->viewItems().empty())
        return 0;
    TF_RemoveTabsOnNewDevice();
    m_mainItem = TF_ModifyMainTab(m_doc->viewItems().front());
    m_mainItem.number = 0;
    m_mainItem.flags = 0;
    m_mainItem.extra1 = m_mainItem.extra2 = 0;
    TF_SetBufferLayoutViews();
    if (!m_host->IsDeviceTabStepSkipped())
        m_doc->viewItems().front() = m_mainItem;
    return 1;
}

std::string KCSelectDeviceNoneCtrl::mainCaption() const
{
    return m_host->GetHostString(KCHostStrings::NoDeviceBufferCaption);
}
