#pragma once

#include "devopt/cParamStcBase.h"

#include <functional>
#include <string>
#include <vector>

// An option page as data: its class name (its identifier) and its controls.
struct KCOptionPageDesc
{
    std::string className;
    std::vector<cParamStcBase> controls;

    // Every control, groups before their contents.
    void forEach(const std::function<void(const cParamStcBase &)> &visit) const;
    const cParamStcBase *find(uint32_t id) const;
};
