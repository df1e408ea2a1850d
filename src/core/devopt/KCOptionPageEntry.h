#pragma once

#include <cstdint>
#include <string>

// One page an option type's builder adds: the host's dialog template and caption string,
// and the page class that describes its controls.
struct KCOptionPageEntry
{
    uint32_t templateId = 0;
    uint32_t captionId = 0;
    std::string className;

    bool operator==(const KCOptionPageEntry &o) const
    {
        return templateId == o.templateId && captionId == o.captionId && className == o.className;
    }
};
