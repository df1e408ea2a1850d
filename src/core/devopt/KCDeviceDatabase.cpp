#include "devopt/KCDeviceDatabase.h"

#include "doc/KCLayoutNames.h"
#include "host/KCHostStringTable.h"
#include "host/KCNumberText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <dirent.h>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

using json = nlohmann::json;

constexpr const char *DevicesFolder = "/devices";
constexpr const char *FileSuffix = ".json";
constexpr uint32_t TypeShift = 16;
constexpr int BitsPerByte = 8;
// A family file larger than this is no device list.
constexpr std::streamoff MaxFileBytes = 4 << 20;

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return s;
}

struct BadEntry : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Numbers are JSON numbers or texts such as "0x08000000".
uint64_t number(const json &v, const std::string &what, uint64_t max = UINT32_MAX)
{
    uint64_t n = 0;
    if (v.is_number_unsigned())
        n = v.get<uint64_t>();
    else if (v.is_string()) {
        if (!KCNumberText::parse(v.get<std::string>(), n, max))
            throw BadEntry(what + ": \"" + v.get<std::string>() + "\" is not a number up to " + std::to_string(max));
    } else {
        throw BadEntry(what + ": a whole number is expected");
    }
    if (n > max)
        throw BadEntry(what + ": " + std::to_string(n) + " is larger than " + std::to_string(max));
    return n;
}

std::string text(const json &v, const std::string &what)
{
    if (!v.is_string())
        throw BadEntry(what + ": a text is expected");
    return v.get<std::string>();
}

// The line of the first occurrence of `needle` in `text` (1-based), 0 when not found.
size_t lineOf(const std::string &textOfFile, const std::string &needle)
{
    const size_t at = textOfFile.find(needle);
    return at == std::string::npos ? 0 : size_t(std::count(textOfFile.begin(), textOfFile.begin() + long(at), '\n')) + 1;
}

void apply(DEVICE_KRLXDEF_ITEM &d, const std::string &key, const json &v, std::set<std::string> &given)
{
    given.insert(key);
    if (key == "name") d.name = text(v, key);
    else if (key == "vendor") d.vendor = text(v, key);
    else if (key == "type") d.type = uint32_t(number(v, key));
    else if (key == "kind") d.kind = uint32_t(number(v, key));
    else if (key == "size") d.bufferSize = number(v, key, uint64_t(UINT32_MAX) + 1);
    else if (key == "dataWidth") d.dataWidth = int(number(v, key, 64));
    else if (key == "BSA") d.BSA = uint32_t(number(v, key));
    else if (key == "BEA") d.BEA = uint32_t(number(v, key));
    else if (key == "DSA") d.DSA = uint32_t(number(v, key));
    else if (key == "DEA") d.DEA = uint32_t(number(v, key));
    else if (key == "DMA") d.DMA = uint32_t(number(v, key));
    else if (key == "addressOffset") d.addressOffset = uint32_t(number(v, key));
    else if (key == "optionType") d.optionType = uint32_t(number(v, key));
    else if (key == "layout") d.layout = text(v, key);
    else if (key == "defaultFileType") d.defaultFileType = text(v, key);
    else if (key == "fuseCount") d.fuseCount = uint32_t(number(v, key));
    else if (key == "engine") d.engine = text(v, key);
    else if (key == "engineChip") d.engineChip = text(v, key);
    else if (key == "engineEmulation") d.engineEmulation = text(v, key);
    else if (key == "optionBytes" || key == "numericKeys" || key == "textKeys") {
        if (!v.is_object())
            throw BadEntry(key + ": an object of names and values is expected");
        if (key == "optionBytes") {
            d.optionBytes.clear();
            for (const auto &[offset, value] : v.items())
                d.optionBytes.emplace_back(uint32_t(number(json(offset), key + " offset")),
                                           uint8_t(number(value, key + " " + offset, 0xFF)));
        } else if (key == "numericKeys") {
            d.numericKeys.clear();
            for (const auto &[name, value] : v.items())
                d.numericKeys.emplace_back(name, uint32_t(number(value, key + " " + name)));
        } else {
            d.textKeys.clear();
            for (const auto &[name, value] : v.items())
                d.textKeys.emplace_back(name, text(value, key + " " + name));
        }
    } else {
        throw BadEntry("unknown field \"" + key + "\"");
    }
}

// Ranges and layout that follow from what the device gave.
void complete(DEVICE_KRLXDEF_ITEM &d, const std::set<std::string> &given)
{
    if (d.bufferSize == 0)
        throw BadEntry("size: missing or 0");
    if (d.dataWidth != 8 && d.dataWidth != 16 && d.dataWidth != 32 && d.dataWidth != 64)
        throw BadEntry("dataWidth: " + std::to_string(d.dataWidth) + " is not 8, 16, 32 or 64");
    const uint32_t last = uint32_t(d.bufferSize - 1);
    const uint32_t unitBytes = uint32_t(d.dataWidth / BitsPerByte);
    if (!given.count("BEA"))
        d.BEA = last;
    if (!given.count("DEA"))
        d.DEA = d.DSA + (d.BEA - d.BSA + 1) / unitBytes - 1;
    if (!given.count("DMA"))
        d.DMA = d.DEA;
    if (d.layout.empty())
        d.layout = KCDeviceDatabase::layoutOfKind(d.kind, d.fuseCount, d.dataWidth);
    if (d.defaultFileType.empty())
        d.defaultFileType = d.fuseCount ? "jedec" : "intel";
}

} // namespace

std::string KCDeviceDatabase::layoutOfKind(uint32_t kind, uint32_t fuseCount, int dataWidth)
{
    if (kind == DEVICE_KIND_OFFSET)
        return LAYOUT_BYTEVIEW_OFFSET;
    if (kind == DEVICE_KIND_PIC18F)
        return LAYOUT_BYTEVIEW_PIC18F;
    if (fuseCount)
        return LAYOUT_JEDVIEW;
    return dataWidth == 16 ? LAYOUT_WORDVIEW : LAYOUT_BYTEVIEW;
}

std::string KCDeviceDatabase::defaultFolder()
{
    return KCHostStringTable::dataDirectory() + DevicesFolder;
}

bool KCDeviceDatabase::load(const std::string &folder)
{
    std::vector<std::string> names;
    DIR *dir = ::opendir(folder.c_str());
    if (!dir) {
        m_error = folder + ": cannot read the device folder";
        return false;
    }
    while (const dirent *e = ::readdir(dir)) {
        const std::string name = e->d_name;
        if (name.size() > std::string(FileSuffix).size() &&
            name.compare(name.size() - std::string(FileSuffix).size(), std::string::npos, FileSuffix) == 0)
            names.push_back(name);
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    KCDeviceDatabase all;
    for (const std::string &name : names)
        if (!all.loadFile(folder + "/" + name)) {
            m_error = all.m_error;
            return false;
        }
    *this = std::move(all);
    return true;
}

bool KCDeviceDatabase::loadFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        m_error = path + ": cannot be opened";
        return false;
    }
    in.seekg(0, std::ios::end);
    if (in.tellg() > MaxFileBytes) {
        m_error = path + ": larger than a device list can be";
        return false;
    }
    in.seekg(0);
    std::ostringstream s;
    s << in.rdbuf();
    return loadText(s.str(), path);
}

bool KCDeviceDatabase::loadText(const std::string &content, const std::string &fileName)
{
    json doc;
    try {
        doc = json::parse(content);
    } catch (const json::parse_error &e) {
        const size_t at = std::min<size_t>(e.byte ? e.byte - 1 : 0, content.size());
        const size_t line = size_t(std::count(content.begin(), content.begin() + long(at), '\n')) + 1;
        const std::string what = e.what();
        const size_t colon = what.rfind(": ");
        m_error = fileName + ": line " + std::to_string(line) + ": " +
                  (colon == std::string::npos ? what : what.substr(colon + 2));
        return false;
    }
    std::vector<DEVICE_KRLXDEF_ITEM> added;
    std::string where = fileName;
    try {
        if (!doc.is_object() || !doc.contains("family") || !doc.contains("devices") || !doc["devices"].is_array())
            throw BadEntry("a family file holds \"family\", optional \"defaults\", \"typeBase\" and a \"devices\" list");
        const std::string family = text(doc["family"], "family");
        const uint32_t typeBase = doc.contains("typeBase") ? uint32_t(number(doc["typeBase"], "typeBase", 0xFFFF)) : 0;
        DEVICE_KRLXDEF_ITEM defaults;
        defaults.familyName = family;
        defaults.family = uint32_t(m_families.size());
        std::set<std::string> defaultGiven;
        for (const auto &[key, value] : doc.items()) {
            if (key == "family" || key == "devices" || key == "typeBase")
                continue;
            if (key != "defaults")
                throw BadEntry("unknown field \"" + key + "\"");
            if (!value.is_object())
                throw BadEntry("defaults: an object is expected");
            for (const auto &[k, v] : value.items()) {
                if (k == "name")
                    throw BadEntry("defaults: a family gives no device name");
                apply(defaults, k, v, defaultGiven);
            }
        }
        uint32_t index = 0;
        for (const json &entry : doc["devices"]) {
            ++index;
            DEVICE_KRLXDEF_ITEM d = defaults;
            std::set<std::string> given = defaultGiven;
            if (!entry.is_object() || !entry.contains("name"))
                throw BadEntry("device " + std::to_string(index) + ": an object with a \"name\" is expected");
            const std::string name = text(entry["name"], "name");
            const size_t line = lineOf(content, "\"" + name + "\"");
            where = fileName + (line ? ": line " + std::to_string(line) : std::string()) + ": " + name;
            for (const auto &[k, v] : entry.items())
                apply(d, k, v, given);
            if (!given.count("type"))
                d.type = typeBase << TypeShift | index;
            complete(d, given);
            if (find(d.name) || std::any_of(added.begin(), added.end(), [&](const DEVICE_KRLXDEF_ITEM &o) {
                    return lower(o.name) == lower(d.name);
                }))
                throw BadEntry("the name is given twice");
            added.push_back(std::move(d));
        }
        where = fileName;
        m_families.push_back(family);
    } catch (const BadEntry &e) {
        m_error = where + ": " + e.what();
        return false;
    } catch (const json::exception &e) {
        m_error = where + ": " + e.what();
        return false;
    }
    m_devices.insert(m_devices.end(), added.begin(), added.end());
    return true;
}

namespace {

json jsonOf(const DEVICE_KRLXDEF_ITEM &d)
{
    json j = {{"name", d.name},
              {"vendor", d.vendor},
              {"family", d.familyName},
              {"type", d.type},
              {"kind", d.kind},
              {"size", d.bufferSize},
              {"dataWidth", d.dataWidth},
              {"BSA", d.BSA},
              {"BEA", d.BEA},
              {"DSA", d.DSA},
              {"DEA", d.DEA},
              {"DMA", d.DMA},
              {"addressOffset", d.addressOffset},
              {"optionType", d.optionType},
              {"layout", d.layout},
              {"defaultFileType", d.defaultFileType},
              {"fuseCount", d.fuseCount},
              {"engine", d.engine},
              {"engineChip", d.engineChip},
              {"engineEmulation", d.engineEmulation}};
    json bytes = json::object();
    for (const auto &[offset, value] : d.optionBytes)
        bytes[std::to_string(offset)] = value;
    json numeric = json::object();
    for (const auto &[key, value] : d.numericKeys)
        numeric[key] = value;
    json texts = json::object();
    for (const auto &[key, value] : d.textKeys)
        texts[key] = value;
    j["optionBytes"] = bytes;
    j["numericKeys"] = numeric;
    j["textKeys"] = texts;
    return j;
}

} // namespace

std::string KCDeviceDatabase::toJson(const DEVICE_KRLXDEF_ITEM &device, int indent)
{
    return jsonOf(device).dump(indent);
}

std::string KCDeviceDatabase::toJson(const std::vector<const DEVICE_KRLXDEF_ITEM *> &devices, int indent)
{
    json all = json::array();
    for (const DEVICE_KRLXDEF_ITEM *d : devices)
        all.push_back(jsonOf(*d));
    return all.dump(indent);
}

const DEVICE_KRLXDEF_ITEM *KCDeviceDatabase::find(const std::string &name) const
{
    const std::string key = lower(name);
    for (const DEVICE_KRLXDEF_ITEM &d : m_devices)
        if (lower(d.name) == key)
            return &d;
    return nullptr;
}

std::vector<const DEVICE_KRLXDEF_ITEM *> KCDeviceDatabase::match(const std::string &pattern) const
{
    const std::string key = lower(pattern);
    std::vector<const DEVICE_KRLXDEF_ITEM *> found;
    for (const DEVICE_KRLXDEF_ITEM &d : m_devices)
        if (key.empty() || lower(d.name).find(key) != std::string::npos || lower(d.vendor).find(key) != std::string::npos)
            found.push_back(&d);
    return found;
}
