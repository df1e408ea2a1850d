#pragma once

#include "doc/KCSelectDeviceCtrlBase.h"

// Devices whose addresses are shown shifted by the device's address offset (flash far up in
// the address space): the main item tells its buffer organisation and carries the offset.
class KCSelectDevice0x1Ctrl : public KCSelectDeviceCtrlBase
{
public:
    using KCSelectDeviceCtrlBase::KCSelectDeviceCtrlBase;

    static constexpr int BufferOrganisationNumber = 2;
    static constexpr int BufferOrganisationFlags = 4;

protected:
    void prepareMainItem(TAG_DATADOC_VIEWITEM &item) const override;
    void addDataViews() override;
};
