#pragma once

#include "doc/KCSelectDeviceCtrlBase.h"

// No device: the buffer is the image, shown in the standard layouts.
class KCSelectDeviceNoneCtrl : public KCSelectDeviceCtrlBase
{
public:
    using KCSelectDeviceCtrlBase::KCSelectDeviceCtrlBase;

    int CFGNewDevice() override;
    void SetFileTypeOnDeviceSelect() override {}

protected:
    void addDataViews() override {}
    std::string mainCaption() const override;
};
