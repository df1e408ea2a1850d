#include "engine/KCEngineFactory.h"

#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "engine/KCFlashromEngine.h"
#include "engine/KCVirtualDeviceEngine.h"

std::unique_ptr<KCEngine> KCEngineFactory::create(const DEVICE_KRLXDEF_ITEM &device, const std::string &engineName,
                                                  const std::string &programmer, std::string *why)
{
    const std::string engine = engineName.empty() ? (device.engine.empty() ? Virtual : device.engine) : engineName;
    if (engine == Virtual)
        return KCVirtualDeviceEngine::fromSpec(programmer, device.bufferSize, why);
    if (engine != Flashrom) {
        *why = "no engine is called " + engine + " (flashrom or virtual)";
        return nullptr;
    }
    if (device.engineChip.empty()) {
        *why = device.name + " is not programmed by flashrom";
        return nullptr;
    }
    if (programmer.empty()) {
        *why = "flashrom needs its programmer, e.g. ch341a_spi or emulator:FILE";
        return nullptr;
    }
    std::string spec = programmer;
    const std::string prefix = KCFlashromEngine::EmulatorPrefix;
    if (programmer.compare(0, prefix.size(), prefix) == 0) {
        if (device.engineEmulation.empty()) {
            *why = "flashrom has no emulator of " + device.name;
            return nullptr;
        }
        const std::string chipFile = programmer.substr(prefix.size());
        *why = KCFlashromEngine::prepareEmulatedChip(chipFile, device.bufferSize);
        if (!why->empty())
            return nullptr;
        spec = KCFlashromEngine::emulatorSpec(device.engineEmulation, chipFile);
    }
    return std::make_unique<KCFlashromEngine>(spec, device.engineChip, device.bufferSize);
}
