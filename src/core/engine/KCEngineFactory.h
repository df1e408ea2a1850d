#pragma once

#include <memory>
#include <string>

class KCEngine;
struct DEVICE_KRLXDEF_ITEM;

// Makes the engine that programs a device: flashrom under the device's chip name, or the
// virtual device. flashrom's "emulator:FILE" programmer stands for its emulator of the
// device's chip, backed by FILE (made as an erased chip when missing).
class KCEngineFactory
{
public:
    static constexpr const char *Flashrom = "flashrom";
    static constexpr const char *Virtual = "virtual";

    // `engineName` empty: the device's own engine. Null with `why` when it cannot be made.
    static std::unique_ptr<KCEngine> create(const DEVICE_KRLXDEF_ITEM &device, const std::string &engineName,
                                            const std::string &programmer, std::string *why);
};
