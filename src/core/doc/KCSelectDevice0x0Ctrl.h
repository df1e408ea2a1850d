#pragma once

#include "doc/KCSelectDeviceCtrlBase.h"

// Devices shown in the standard byte, word or fuse-map layouts over their range.
class KCSelectDevice0x0Ctrl : public KCSelectDeviceCtrlBase
{
public:
    using KCSelectDeviceCtrlBase::KCSelectDeviceCtrlBase;
};
