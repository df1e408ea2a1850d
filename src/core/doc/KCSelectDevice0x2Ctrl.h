#pragma once

#include "doc/KCSelectDeviceCtrlBase.h"

// Devices whose one buffer holds program, ID, configuration and EEPROM areas, each shown at
// the device's own addresses.
class KCSelectDevice0x2Ctrl : public KCSelectDeviceCtrlBase
{
public:
    using KCSelectDeviceCtrlBase::KCSelectDeviceCtrlBase;

protected:
    void addDataViews() override;
};
