// Parses the fuzz input as a project or handler-job file: no crash, no hang, and every
// accepted file describes buffers its ranges fit in, with a message-free success.
#include "doc/cKpf2Manager.h"
#include "doc/cKpf2ReadShadowData.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    cKpf2ReadShadowData shadow;
    std::string error;
    if (!cKpf2Manager::parse(text, "fuzz.kpf2", shadow, error)) {
        // A refusal always says where and why.
        if (error.compare(0, 10, "fuzz.kpf2:") != 0)
            std::abort();
        return 0;
    }
    if (!error.empty() || shadow.buffers.empty())
        std::abort();
    for (const auto &buffer : shadow.buffers)
        for (const auto &range : buffer.ranges)
            if (range.second.empty() || range.first + range.second.size() > buffer.size)
                std::abort();
    return 0;
}
