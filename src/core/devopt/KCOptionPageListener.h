#pragma once

#include "devopt/KCControlState.h"
#include "devopt/cParamStcBase.h"

// Told when a control of an option page is to show a new state.
class KCOptionPageListener
{
public:
    virtual ~KCOptionPageListener() = default;
    virtual void controlRefreshed(const cParamStcBase &control, const KCControlState &state) = 0;
};
