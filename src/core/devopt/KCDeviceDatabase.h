#pragma once

#include "doc/DEVICE_KRLXDEF_ITEM.h"

#include <string>
#include <vector>

// The devices the programmer knows, read from one JSON file per family (data/devices). A
// family gives defaults; each device overrides only what differs. Address ranges left out
// follow from the size and data width. Loading stops at the first bad file with a message
// that names the file, the line and what is wrong; nothing half-read is kept.
class KCDeviceDatabase
{
public:
    // Reads every *.json of `folder` in name order; false with error() on a bad file.
    bool load(const std::string &folder);
    // Reads one family file (a path) or its text; false with error().
    bool loadFile(const std::string &path);
    bool loadText(const std::string &text, const std::string &fileName);
    // The database in the program's data folder.
    static std::string defaultFolder();

    const std::vector<DEVICE_KRLXDEF_ITEM> &devices() const { return m_devices; }
    const std::vector<std::string> &families() const { return m_families; }
    // The device of that name, ignoring case; nullptr when none.
    const DEVICE_KRLXDEF_ITEM *find(const std::string &name) const;
    // Devices whose name or vendor contains `pattern`, ignoring case; all for an empty one.
    std::vector<const DEVICE_KRLXDEF_ITEM *> match(const std::string &pattern) const;
    const std::string &error() const { return m_error; }

    // The layout a device of this kind opens in, unless the device names one.
    static std::string layoutOfKind(uint32_t kind, uint32_t fuseCount, int dataWidth);

private:
    std::vector<DEVICE_KRLXDEF_ITEM> m_devices;
    std::vector<std::string> m_families;
    std::string m_error;
};
