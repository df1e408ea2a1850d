#pragma once

#include <string>

class KCDataDoc;
struct DEVICE_KRLXDEF_ITEM;

// The --device option of the image commands: the document is bound to a device of the
// database before it loads, so the device's size, ranges and address offset apply.
class KCCliDeviceOption
{
public:
    // Why the name cannot be used (the database unreadable, no such device), or empty; an
    // empty name is no device.
    static std::string problem(const std::string &name);
    // Selects the device in `doc`; false with a message on standard error.
    static bool select(KCDataDoc &doc, const std::string &name);
    // The device's record, or nullptr (problem() tells why).
    static const DEVICE_KRLXDEF_ITEM *find(const std::string &name);
};
