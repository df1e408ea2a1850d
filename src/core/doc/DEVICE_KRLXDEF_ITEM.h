#pragma once

#include <cstdint>
#include <string>

// The device a document is bound to, as the device database describes it.
struct DEVICE_KRLXDEF_ITEM
{
    std::string name;
    std::string vendor;
    uint32_t type = 0;
    uint32_t family = 0;
    uint64_t bufferSize = 0;
    int dataWidth = 8;

    bool operator==(const DEVICE_KRLXDEF_ITEM &o) const
    {
        return name == o.name && vendor == o.vendor && type == o.type && family == o.family
               && bufferSize == o.bufferSize && dataWidth == o.dataWidth;
    }
};
