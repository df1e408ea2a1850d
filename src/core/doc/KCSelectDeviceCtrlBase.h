#pragma once

#include "doc/KCDataViewControl.h"
#include "doc/TAG_DATADOC_VIEWITEM.h"

#include <vector>

class KCDataDoc;
class KCMainProgDataExChange;
struct TAG_BUFFER_PARAM;

// Reconfigures a document for the device just selected: buffer parameters, the main tab's
// view item, the data views and their layouts, the default file type. One subclass per
// device kind; the document holds one and replaces it when the kind changes. Every step that
// fails returns 0 and leaves the previous configuration to the document to restore.
class KCSelectDeviceCtrlBase
{
public:
    explicit KCSelectDeviceCtrlBase(KCDataDoc *doc);
    virtual ~KCSelectDeviceCtrlBase() = default;
    KCSelectDeviceCtrlBase(const KCSelectDeviceCtrlBase &) = default;
    KCSelectDeviceCtrlBase &operator=(const KCSelectDeviceCtrlBase &) = default;

    // Finds the host's device-select window (without it the control stays inactive and
    // returns 0), runs the kind's configuration, then lets the buffer parameters follow the
    // device as the host's configuration mode says.
    int attach();
    bool isActive() const { return m_active; }

    virtual int CFGNewDevice();
    virtual void CleanUpOnNewDevice();
    virtual void SetFileTypeOnDeviceSelect();
    virtual int SetDeviceDataSheetTab();
    virtual int PostTabCreate();

    void InitBufferParam(TAG_BUFFER_PARAM *param) const;
    bool HasHandlerViewTab() const;
    void TF_RemoveTabsOnNewDevice();
    void TF_RemoveViewTab(int itemKind);
    void TF_SetBufferLayoutViews();
    TAG_DATADOC_VIEWITEM TF_ModifyMainTab(TAG_DATADOC_VIEWITEM item) const;

    const TAG_DATADOC_VIEWITEM &mainItem() const { return m_mainItem; }
    // The data views the device's buffers are shown in.
    const std::vector<KCDataViewControl> &dataViews() const { return m_dataViews; }

protected:
    // The kind's own view-item fields, set before the common steps.
    virtual void prepareMainItem(TAG_DATADOC_VIEWITEM &) const {}
    // The layout the device's bytes are shown in and the views to open for it.
    virtual void addDataViews();
    // The main tab's caption.
    virtual std::string mainCaption() const;

    KCDataDoc *m_doc;
    KCMainProgDataExChange *m_host = nullptr;
    bool m_active = false;
    TAG_DATADOC_VIEWITEM m_mainItem;
    std::vector<KCDataViewControl> m_dataViews;
};
