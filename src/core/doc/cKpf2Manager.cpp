#include "doc/cKpf2Manager.h"

#include "doc/KCDataDoc.h"
#include "doc/cKpf2ReadShadowData.h"
#include "fileio/KCSaveFile.h"
#include "host/KCMainProgDataExChange.h"
#include "host/KCMessageMarks.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <unistd.h>

using nlohmann::json;

namespace {

// Bytes per hexadecimal text line: one diffable line per 32 bytes.
constexpr size_t HexLineBytes = 32;
// A project's buffers are held in memory whole; this bounds what a file can ask for.
constexpr uint64_t MaxBufferBytes = uint64_t(1) << 32;

// The workspace-tree items, the window placement and the CSV serial project came with
// version 2; a version 1 file keeps the device's own items and the host's placement.
constexpr int WorkspaceVersion = 2;
// In the order of the PLACEMENT_ values.
const char *const PlacementStates[] = {"normal", "minimized", "maximized"};
constexpr int PlacementStateCount = int(sizeof PlacementStates / sizeof *PlacementStates);

const char *const KindProject = "project";
const char *const KindHandlerJob = "handler job";

// The JSON pointer of the first string below `value` that is not UTF-8; empty when all are.
std::string firstNonUtf8Text(const json &value, const std::string &at)
{
    if (value.is_string()) {
        try {
            (void)value.dump();
        } catch (const json::type_error &) {
            return at.empty() ? "/" : at;
        }
        return {};
    }
    if (value.is_object()) {
        for (const auto &[key, item] : value.items())
            if (std::string found = firstNonUtf8Text(item, at + "/" + key); !found.empty())
                return found;
    } else if (value.is_array()) {
        for (size_t i = 0; i < value.size(); ++i)
            if (std::string found = firstNonUtf8Text(value[i], at + "/" + std::to_string(i)); !found.empty())
                return found;
    }
    return {};
}

// A refusal of the file: what is wrong and the JSON pointer of where.
struct ReadError
{
    std::string pointer;
    std::string what;
};

std::vector<std::string> hexLines(const uint8_t *data, size_t count)
{
    static const char digits[] = "0123456789ABCDEF";
    std::vector<std::string> lines;
    for (size_t at = 0; at < count; at += HexLineBytes) {
        const size_t n = std::min(HexLineBytes, count - at);
        std::string line(n * 2, '0');
        for (size_t i = 0; i < n; ++i) {
            line[2 * i] = digits[data[at + i] >> 4];
            line[2 * i + 1] = digits[data[at + i] & 0xF];
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

uint32_t byteSum(const std::vector<uint8_t> &bytes, uint32_t sum)
{
    for (uint8_t b : bytes)
        sum += b;
    return sum;
}

// An input iterator that remembers how far the parser has read, so that each value can be
// given the line it is on.
struct CountingIterator
{
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    const char *p;
    const char *base;
    size_t *furthest;

    reference operator*() const
    {
        const size_t pos = size_t(p - base) + 1;
        if (pos > *furthest)
            *furthest = pos;
        return *p;
    }
    CountingIterator &operator++()
    {
        ++p;
        return *this;
    }
    CountingIterator operator++(int)
    {
        CountingIterator old = *this;
        ++p;
        return old;
    }
    bool operator==(const CountingIterator &o) const { return p == o.p; }
    bool operator!=(const CountingIterator &o) const { return p != o.p; }
};

// The JSON document with the line of every value, by JSON pointer.
class LinedJson
{
public:
    LinedJson(const std::string &text) : m_text(text) {}

    json parse()
    {
        size_t &furthest = m_furthest;
        CountingIterator first{m_text.data(), m_text.data(), &furthest};
        CountingIterator last{m_text.data() + m_text.size(), m_text.data(), &furthest};
        auto callback = [&](int, json::parse_event_t event, json &parsed) {
            const int line = lineBefore(furthest);
            switch (event) {
            case json::parse_event_t::key:
                m_frames.back().key = parsed.get<std::string>();
                m_lines[m_frames.back().pointer + "/" + m_frames.back().key] = line;
                break;
            case json::parse_event_t::object_start:
            case json::parse_event_t::array_start: {
                const std::string at = childPointer();
                m_lines.emplace(at, line);
                m_frames.push_back({event == json::parse_event_t::array_start, 0, {}, at});
                break;
            }
            case json::parse_event_t::object_end:
            case json::parse_event_t::array_end: m_frames.pop_back(); break;
            case json::parse_event_t::value:
                if (!m_frames.empty() && m_frames.back().array)
                    m_lines.emplace(childPointer(), line);
                break;
            }
            return true;
        };
        return json::parse(first, last, callback);
    }

    // 1-based line of a pointer, or of the nearest enclosing value that has one.
    int lineOf(std::string pointer) const
    {
        while (true) {
            const auto it = m_lines.find(pointer);
            if (it != m_lines.end())
                return it->second;
            const size_t slash = pointer.find_last_of('/');
            if (slash == std::string::npos)
                return 1;
            pointer.erase(slash);
        }
    }

    // The line the parser had reached.
    int lineReached() const { return lineBefore(m_furthest); }

    int lineOfOffset(size_t offset) const
    {
        offset = std::min(offset, m_text.size());
        return 1 + int(std::count(m_text.begin(), m_text.begin() + offset, '\n'));
    }

private:
    struct Frame
    {
        bool array;
        size_t index;
        std::string key;
        std::string pointer;
    };
    const std::string &m_text;
    size_t m_furthest = 0;
    std::vector<Frame> m_frames;
    std::map<std::string, int> m_lines;

    std::string childPointer()
    {
        if (m_frames.empty())
            return "";
        Frame &f = m_frames.back();
        return f.pointer + "/" + (f.array ? std::to_string(f.index++) : f.key);
    }

    // The line of the last character read that is part of a value, not the separator or
    // line end the parser looked ahead at.
    int lineBefore(size_t end) const
    {
        size_t pos = std::min(end, m_text.size());
        while (pos > 0 && std::strchr(" \t\r\n,:", m_text[pos - 1]))
            --pos;
        return lineOfOffset(pos > 0 ? pos - 1 : 0);
    }
};

// Strict field access: every field is required and of its type.
class Reader
{
public:
    const json &field(const json &obj, const std::string &at, const char *key) const
    {
        if (!obj.is_object())
            throw ReadError{at, "an object was expected"};
        const auto it = obj.find(key);
        if (it == obj.end())
            throw ReadError{at, std::string("the field \"") + key + "\" is missing"};
        return *it;
    }
    uint64_t number(const json &obj, const std::string &at, const char *key, uint64_t max) const
    {
        const json &v = field(obj, at, key);
        if (!v.is_number_unsigned() || v.get<uint64_t>() > max)
            throw ReadError{at + "/" + key, std::string("\"") + key + "\" must be a whole number from 0 to "
                                                + std::to_string(max)};
        return v.get<uint64_t>();
    }
    // A whole number in [min, max]; an unsigned one too large for int64 is refused, not wrapped.
    int int32(const json &obj, const std::string &at, const char *key, int64_t min, int64_t max) const
    {
        const json &v = field(obj, at, key);
        const bool ok = v.is_number_integer() && (!v.is_number_unsigned() || v.get<uint64_t>() <= uint64_t(max))
                        && v.get<int64_t>() >= min && v.get<int64_t>() <= max;
        if (!ok)
            throw ReadError{at + "/" + key, std::string("\"") + key + "\" must be a whole number from "
                                                + std::to_string(min) + " to " + std::to_string(max)};
        return int(v.get<int64_t>());
    }
    std::string text(const json &obj, const std::string &at, const char *key) const
    {
        const json &v = field(obj, at, key);
        if (!v.is_string())
            throw ReadError{at + "/" + key, std::string("\"") + key + "\" must be a text"};
        return v.get<std::string>();
    }
    std::vector<uint8_t> hex(const json &obj, const std::string &at, const char *key) const
    {
        const json &v = field(obj, at, key);
        const std::string here = at + "/" + key;
        if (!v.is_array())
            throw ReadError{here, std::string("\"") + key + "\" must be a list of hexadecimal lines"};
        std::vector<uint8_t> bytes;
        for (size_t i = 0; i < v.size(); ++i) {
            const std::string lineAt = here + "/" + std::to_string(i);
            if (!v[i].is_string())
                throw ReadError{lineAt, "a hexadecimal text was expected"};
            const std::string &s = v[i].get_ref<const std::string &>();
            if (s.size() % 2 || s.empty())
                throw ReadError{lineAt, "an even number of hexadecimal digits was expected"};
            for (size_t k = 0; k < s.size(); k += 2) {
                const int hi = digit(s[k]), lo = digit(s[k + 1]);
                if (hi < 0 || lo < 0)
                    throw ReadError{lineAt, "\"" + s.substr(k, 2) + "\" is not a hexadecimal byte"};
                bytes.push_back(uint8_t(hi << 4 | lo));
            }
        }
        return bytes;
    }

private:
    static int digit(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        return -1;
    }
};

json deviceJson(const DEVICE_KRLXDEF_ITEM &d, const TAG_UI_ALGODATA_KRL3 &record)
{
    json keysN = json::array(), keysT = json::array(), options = json::array();
    for (const auto &k : d.numericKeys)
        keysN.push_back({k.first, k.second});
    for (const auto &k : d.textKeys)
        keysT.push_back({k.first, k.second});
    for (const auto &o : d.optionBytes)
        options.push_back({o.first, o.second});
    return json{{"name", d.name},
                {"vendor", d.vendor},
                {"type", d.type},
                {"family", d.family},
                {"kind", d.kind},
                {"bufferSize", d.bufferSize},
                {"dataWidth", d.dataWidth},
                {"BSA", d.BSA},
                {"BEA", d.BEA},
                {"DSA", d.DSA},
                {"DEA", d.DEA},
                {"DMA", d.DMA},
                {"addressOffset", d.addressOffset},
                {"optionType", d.optionType},
                {"familyName", d.familyName},
                {"layout", d.layout},
                {"defaultFileType", d.defaultFileType},
                {"fuseCount", d.fuseCount},
                {"optionBytes", options},
                {"numericKeys", keysN},
                {"textKeys", keysT},
                {"engine", d.engine},
                {"engineChip", d.engineChip},
                {"engineEmulation", d.engineEmulation},
                {"record", hexLines(reinterpret_cast<const uint8_t *>(&record), sizeof record)}};
}

DEVICE_KRLXDEF_ITEM readDevice(const Reader &r, const json &d, const std::string &at, TAG_UI_ALGODATA_KRL3 &record)
{
    DEVICE_KRLXDEF_ITEM item;
    const uint64_t u32 = 0xFFFFFFFFu;
    item.name = r.text(d, at, "name");
    if (item.name.empty())
        throw ReadError{at + "/name", "the device has no name"};
    item.vendor = r.text(d, at, "vendor");
    item.type = uint32_t(r.number(d, at, "type", u32));
    item.family = uint32_t(r.number(d, at, "family", u32));
    item.kind = uint32_t(r.number(d, at, "kind", u32));
    item.bufferSize = r.number(d, at, "bufferSize", MaxBufferBytes);
    item.dataWidth = int(r.number(d, at, "dataWidth", 64));
    item.BSA = uint32_t(r.number(d, at, "BSA", u32));
    item.BEA = uint32_t(r.number(d, at, "BEA", u32));
    item.DSA = uint32_t(r.number(d, at, "DSA", u32));
    item.DEA = uint32_t(r.number(d, at, "DEA", u32));
    item.DMA = uint32_t(r.number(d, at, "DMA", u32));
    item.addressOffset = uint32_t(r.number(d, at, "addressOffset", u32));
    item.optionType = uint32_t(r.number(d, at, "optionType", u32));
    item.familyName = r.text(d, at, "familyName");
    item.layout = r.text(d, at, "layout");
    item.defaultFileType = r.text(d, at, "defaultFileType");
    item.fuseCount = uint32_t(r.number(d, at, "fuseCount", u32));
    const auto pairs = [&](const char *key, auto &&take) {
        const json &list = r.field(d, at, key);
        const std::string here = at + "/" + key;
        if (!list.is_array())
            throw ReadError{here, std::string("\"") + key + "\" must be a list"};
        for (size_t i = 0; i < list.size(); ++i) {
            const json &p = list[i];
            if (!p.is_array() || p.size() != 2)
                throw ReadError{here + "/" + std::to_string(i), "a pair was expected"};
            take(p, here + "/" + std::to_string(i));
        }
    };
    pairs("optionBytes", [&](const json &p, const std::string &here) {
        if (!p[0].is_number_unsigned() || !p[1].is_number_unsigned() || p[0].get<uint64_t>() >= sizeof record
            || p[1].get<uint64_t>() > 0xFF)
            throw ReadError{here, "an option byte is a record offset and a byte value"};
        item.optionBytes.emplace_back(p[0].get<uint32_t>(), p[1].get<uint8_t>());
    });
    pairs("numericKeys", [&](const json &p, const std::string &here) {
        if (!p[0].is_string() || !p[1].is_number_unsigned() || p[1].get<uint64_t>() > u32)
            throw ReadError{here, "a numeric key is a name and a 32-bit value"};
        item.numericKeys.emplace_back(p[0].get<std::string>(), p[1].get<uint32_t>());
    });
    pairs("textKeys", [&](const json &p, const std::string &here) {
        if (!p[0].is_string() || !p[1].is_string())
            throw ReadError{here, "a text key is a name and a text"};
        item.textKeys.emplace_back(p[0].get<std::string>(), p[1].get<std::string>());
    });
    item.engine = r.text(d, at, "engine");
    item.engineChip = r.text(d, at, "engineChip");
    item.engineEmulation = r.text(d, at, "engineEmulation");
    const std::vector<uint8_t> bytes = r.hex(d, at, "record");
    if (bytes.size() != sizeof record)
        throw ReadError{at + "/record", "the parameter record must have " + std::to_string(sizeof record)
                                            + " bytes, not " + std::to_string(bytes.size())};
    std::memcpy(&record, bytes.data(), sizeof record);
    return item;
}

json rangeJson(uint32_t first, uint32_t last, int fromDevice)
{
    return json{{"first", first}, {"last", last}, {"fromDevice", fromDevice}};
}

void readRange(const Reader &r, const json &obj, const std::string &at, const char *key, uint32_t &first,
               uint32_t &last, int &fromDevice)
{
    const json &v = r.field(obj, at, key);
    const std::string here = at + "/" + key;
    first = uint32_t(r.number(v, here, "first", 0xFFFFFFFFu));
    last = uint32_t(r.number(v, here, "last", 0xFFFFFFFFu));
    fromDevice = int(r.number(v, here, "fromDevice", 1));
}

json viewItemsJson(const std::vector<TAG_DATADOC_VIEWITEM> &items)
{
    // The run-time links (buffer id, buffer parameters, window) are the session's, not the file's.
    json list = json::array();
    for (const TAG_DATADOC_VIEWITEM &i : items)
        list.push_back({{"kind", i.kind},
                        {"number", i.number},
                        {"flags", i.flags},
                        {"text1", i.text1},
                        {"text2", i.text2},
                        {"text3", i.text3},
                        {"extra1", i.extra1},
                        {"extra2", i.extra2}});
    return list;
}

std::vector<TAG_DATADOC_VIEWITEM> readViewItems(const Reader &r, const json &root)
{
    const json &list = r.field(root, "", "viewItems");
    if (!list.is_array() || list.empty())
        throw ReadError{"/viewItems", "a project holds a list of at least one view item"};
    std::vector<TAG_DATADOC_VIEWITEM> items;
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string at = "/viewItems/" + std::to_string(i);
        TAG_DATADOC_VIEWITEM item;
        item.kind = r.int32(list[i], at, "kind", 0, INT32_MAX);
        switch (item.kind) {
        case VIEWITEM_KIND_MAIN:
        case VIEWITEM_KIND_BUFFERVIEW:
        case VIEWITEM_KIND_DEVICEHELP:
        case VIEWITEM_KIND_HANDLER:
        case VIEWITEM_KIND_COUNTER: break;
        default: throw ReadError{at + "/kind", "no view item has the kind " + std::to_string(item.kind)};
        }
        // The selected view falls back to the first item, which must therefore show the buffer.
        if (i == 0 && item.kind != VIEWITEM_KIND_BUFFERVIEW)
            throw ReadError{at + "/kind", "the first view item is the buffer's view, of kind "
                                              + std::to_string(VIEWITEM_KIND_BUFFERVIEW)};
        item.number = r.int32(list[i], at, "number", INT32_MIN, INT32_MAX);
        item.flags = r.int32(list[i], at, "flags", INT32_MIN, INT32_MAX);
        item.text1 = r.text(list[i], at, "text1");
        item.text2 = r.text(list[i], at, "text2");
        item.text3 = r.text(list[i], at, "text3");
        item.extra1 = r.int32(list[i], at, "extra1", INT32_MIN, INT32_MAX);
        item.extra2 = r.int32(list[i], at, "extra2", INT32_MIN, INT32_MAX);
        items.push_back(std::move(item));
    }
    return items;
}

json placementJson(const std::optional<TAG_WINDOW_PLACEMENT> &p)
{
    // A window without a size is nowhere to go back to.
    if (!p || p->width < 1 || p->height < 1)
        return nullptr;
    const int state = p->showState >= 0 && p->showState < PlacementStateCount ? p->showState : PLACEMENT_NORMAL;
    return json{{"x", p->x}, {"y", p->y}, {"width", p->width}, {"height", p->height}, {"state", PlacementStates[state]}};
}

std::optional<TAG_WINDOW_PLACEMENT> readPlacement(const Reader &r, const json &root)
{
    const json &v = r.field(root, "", "windowPlacement");
    if (v.is_null())
        return std::nullopt;
    const std::string at = "/windowPlacement";
    TAG_WINDOW_PLACEMENT p;
    p.x = r.int32(v, at, "x", INT32_MIN, INT32_MAX);
    p.y = r.int32(v, at, "y", INT32_MIN, INT32_MAX);
    p.width = r.int32(v, at, "width", 1, INT32_MAX);
    p.height = r.int32(v, at, "height", 1, INT32_MAX);
    const std::string state = r.text(v, at, "state");
    const auto known = std::find(std::begin(PlacementStates), std::end(PlacementStates), state);
    if (known == std::end(PlacementStates))
        throw ReadError{at + "/state", "the state \"" + state + "\" is none of \"normal\", \"minimized\" and \"maximized\""};
    p.showState = int(known - std::begin(PlacementStates));
    return p;
}

json csvSerialJson(const cCSVSerialDataContent &csv)
{
    if (csv.empty())
        return nullptr;
    // Hexadecimal like the buffers: the file's bytes need not be UTF-8.
    const auto *bytes = reinterpret_cast<const uint8_t *>(csv.content().data());
    return json{{"path", csv.path()}, {"content", hexLines(bytes, csv.content().size())}};
}

std::optional<cCSVSerialDataContent> readCSVSerial(const Reader &r, const json &root)
{
    const json &v = r.field(root, "", "csvSerial");
    if (v.is_null())
        return std::nullopt;
    const std::string at = "/csvSerial";
    std::string path = r.text(v, at, "path");
    if (path.empty())
        throw ReadError{at + "/path", "the CSV serial project names no file"};
    const std::vector<uint8_t> bytes = r.hex(v, at, "content");
    return cCSVSerialDataContent(std::move(path), std::string(bytes.begin(), bytes.end()));
}

} // namespace

const char *cKpf2Manager::formatName()
{
    return "krldv project";
}

cKpf2Manager::cKpf2Manager(KCDataDoc &doc, const std::string &path) : m_doc(doc), m_path(path) {}

std::string cKpf2Manager::text(int option, int flag, std::string *error) const
{
    const cAlgoParam &algo = m_doc.AlgoParam();
    const bool job = flag == WRITE_HANDLERJOB;
    json buffers = json::array();
    for (size_t b = 0; b < algo.bufferCount(); ++b) {
        const cByteBuffer &buffer = algo.buffer(b);
        // Buffer 0 is the document's, with its defined ranges; the others are kept whole.
        std::vector<KCAddressRange> defined;
        if (b == 0)
            defined = m_doc.dataMap().ranges();
        else if (buffer.size())
            defined.push_back({0, buffer.size() - 1});
        json ranges = json::array();
        uint32_t sum = 0;
        for (const auto &r : defined) {
            if (r.first >= buffer.size())
                continue;
            const uint64_t last = std::min<uint64_t>(r.second, buffer.size() - 1);
            // A sparse document's gaps read as zero: a defined range never lies in one.
            const uint8_t *data = buffer.data() + r.first;
            const std::vector<uint8_t> bytes(data, data + (last - r.first + 1));
            sum = byteSum(bytes, sum);
            ranges.push_back({{"first", r.first}, {"bytes", hexLines(bytes.data(), bytes.size())}});
        }
        buffers.push_back({{"size", buffer.size()}, {"fill", m_doc.fillByte()}, {"byteSum", sum}, {"ranges", ranges}});
    }

    KCDataDoc &doc = m_doc;
    const TAG_BUFFER_PARAM *param = doc.mainBufferParam();
    json root;
    root["format"] = formatName();
    root["version"] = FormatVersion;
    root["kind"] = job ? KindHandlerJob : KindProject;
    root["device"] = doc.HasDeviceX() ? deviceJson(doc.GetDeviceItemX(), algo.algoUiData()) : json(nullptr);
    root["buffers"] = buffers;
    root["bufferSettings"] = {{"load", rangeJson(param->LBSA, param->LBEA, param->loadRangeFromDevice)},
                              {"save", rangeJson(param->SBSA, param->SBEA, param->saveRangeFromDevice)},
                              {"fileType", int(param->fileType)},
                              {"filterType", int(param->filterType)},
                              {"optionFlags", param->optionFlags},
                              {"saveFlags", param->saveFlags}};
    const auto saveRange = doc.explicitSaveRange();
    root["saveRange"] = saveRange ? json{saveRange->first, saveRange->second} : json(nullptr);
    root["dataFile"] = doc.projectDataFile().empty()
                           ? json(nullptr)
                           : json{{"path", doc.projectDataFile()}, {"fileType", int(doc.projectDataFileType())}};
    root["serial"] = {{"mode", doc.serialMode()},
                      {"flags", doc.serialFlags()},
                      {"byteCount", doc.serialByteCount()},
                      {"address", doc.serialAddress()},
                      {"definitionFile", doc.serialDefPath()}};
    KCMainProgDataExChange *host = doc.host();
    root["counts"] = {{"pass", host ? host->GetPassCount() : -1},
                      {"fail", host ? host->GetFailCount() : -1},
                      {"target", host ? host->GetTargetCount() : 0}};
    root["viewItems"] = viewItemsJson(doc.viewItems());
    root["windowPlacement"] = placementJson(doc.windowPlacement());
    root["csvSerial"] = csvSerialJson(doc.csvSerialData());
    if (job)
        root["handlerJob"] = {{"action", algo.action()}, {"optionBox", option ? 1 : 0}};
    try {
        return root.dump(1) + "\n";
    } catch (const json::type_error &) {
        // Texts come from the user, from file names and from older binary projects, which
        // need not be UTF-8; saving them altered would change what the project names.
        if (error)
            *error = m_path + ": cannot be written: the text at " + firstNonUtf8Text(root, "")
                     + " is not UTF-8; nothing was saved";
        return {};
    }
}

int cKpf2Manager::write(int option, int flag)
{
    m_error.clear();
    const std::string content = text(option, flag, &m_error);
    if (content.empty())
        return 0;
    KCSaveFile file;
    if (!file.open(m_path)) {
        m_error = file.errorText();
        return 0;
    }
    size_t done = 0;
    while (done < content.size()) {
        const ssize_t n = ::write(file.fd(), content.data() + done, content.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            m_error = "cannot write " + m_path + ": " + std::strerror(errno);
            file.abort();
            return 0;
        }
        done += size_t(n);
    }
    if (!file.commit()) {
        m_error = file.errorText();
        return 0;
    }
    return 1;
}

int cKpf2Manager::takeOverCSVSerialData(cCSVSerialDataContent &content)
{
    KCMainProgDataExChange *host = m_doc.host();
    if (content.path().size() > MaxSerialProjectPath) {
        if (host)
            host->ShowMessage("Path of serial project file is too long.");
        return 0;
    }
    if (!m_doc.prepareCSVSerialDataProject(content)) {
        if (host)
            host->ShowMessage(KCMessageMarks::prefix(KCMessageMarks::Warning) + content.path()
                              + " : a serial number run is using the document's CSV file; the project's is not taken");
        return 0;
    }
    return 1;
}

int cKpf2Manager::read(cKpf2ReadShadowData &shadow)
{
    m_error.clear();
    std::ifstream in(m_path, std::ios::binary);
    if (!in) {
        m_error = m_path + ": cannot be opened: " + std::strerror(errno);
        return 0;
    }
    std::ostringstream content;
    content << in.rdbuf();
    if (in.bad()) {
        m_error = m_path + ": cannot be read";
        return 0;
    }
    return parse(content.str(), m_path, shadow, m_error);
}

int cKpf2Manager::parse(const std::string &text, const std::string &name, cKpf2ReadShadowData &out,
                        std::string &error)
{
    LinedJson lined(text);
    json root;
    try {
        root = lined.parse();
    } catch (const json::parse_error &e) {
        // The library's message repeats its own position; the line is what a person needs.
        std::string what = e.what();
        const size_t detail = what.find("syntax error");
        error = name + ":" + std::to_string(lined.lineOfOffset(e.byte ? e.byte - 1 : 0)) + ": not a project file: "
                + (detail == std::string::npos ? what : what.substr(detail));
        return 0;
    } catch (const json::exception &e) {
        // A number too large for any field, for instance.
        std::string what = e.what();
        const size_t detail = what.find("] ");
        error = name + ":" + std::to_string(lined.lineReached())
                + ": not a project file: " + (detail == std::string::npos ? what : what.substr(detail + 2));
        return 0;
    }
    cKpf2ReadShadowData shadow;
    const Reader r;
    try {
        if (!root.is_object())
            throw ReadError{"", "not a project file: the file is not a JSON object"};
        if (r.text(root, "", "format") != formatName())
            throw ReadError{"/format", std::string("not a project file: the format is not \"") + formatName() + "\""};
        const json &version = r.field(root, "", "version");
        if (!version.is_number_integer() || version.get<int64_t>() < FirstFormatVersion
            || version.get<int64_t>() > FormatVersion)
            throw ReadError{"/version", "version " + version.dump() + " is not known; this program reads versions "
                                            + std::to_string(FirstFormatVersion) + " to "
                                            + std::to_string(FormatVersion)};
        shadow.version = version.get<int>();
        const std::string kind = r.text(root, "", "kind");
        if (kind != KindProject && kind != KindHandlerJob)
            throw ReadError{"/kind", "the kind \"" + kind + "\" is neither \"" + KindProject + "\" nor \""
                                         + KindHandlerJob + "\""};
        shadow.kind = kind == KindProject ? LS_KPF2 : LS_HANDLERJOB;

        const json &device = r.field(root, "", "device");
        if (!device.is_null())
            shadow.device = readDevice(r, device, "/device", shadow.record);

        const json &buffers = r.field(root, "", "buffers");
        if (!buffers.is_array() || buffers.empty())
            throw ReadError{"/buffers", "a project holds a list of at least one buffer"};
        for (size_t b = 0; b < buffers.size(); ++b) {
            const std::string at = "/buffers/" + std::to_string(b);
            cKpf2ReadShadowData::Buffer buffer;
            buffer.size = r.number(buffers[b], at, "size", MaxBufferBytes);
            buffer.fill = uint8_t(r.number(buffers[b], at, "fill", 0xFF));
            const uint32_t recorded = uint32_t(r.number(buffers[b], at, "byteSum", 0xFFFFFFFFu));
            const json &ranges = r.field(buffers[b], at, "ranges");
            if (!ranges.is_array())
                throw ReadError{at + "/ranges", "\"ranges\" must be a list"};
            uint32_t sum = 0;
            uint64_t end = 0; // one past the previous range: ranges come in order, apart
            for (size_t i = 0; i < ranges.size(); ++i) {
                const std::string here = at + "/ranges/" + std::to_string(i);
                const uint64_t first = r.number(ranges[i], here, "first", MaxBufferBytes);
                std::vector<uint8_t> bytes = r.hex(ranges[i], here, "bytes");
                if (bytes.empty())
                    throw ReadError{here + "/bytes", "a range holds at least one byte"};
                if (first < end || (i && first == end))
                    throw ReadError{here + "/first", "ranges must be in address order and apart"};
                if (first + bytes.size() > buffer.size)
                    throw ReadError{here + "/first", "the range reaches beyond the buffer's " + std::to_string(buffer.size)
                                              + " bytes"};
                end = first + bytes.size();
                sum = byteSum(bytes, sum);
                buffer.ranges.emplace_back(first, std::move(bytes));
            }
            if (sum != recorded) {
                char figures[64];
                std::snprintf(figures, sizeof figures, "0x%08X, recorded 0x%08X", sum, recorded);
                throw ReadError{at + "/byteSum", std::string("the buffer's bytes do not match its checksum: sum ")
                                                     + figures};
            }
            shadow.buffers.push_back(std::move(buffer));
        }

        const json &settings = r.field(root, "", "bufferSettings");
        TAG_BUFFER_PARAM &p = shadow.bufferParam;
        readRange(r, settings, "/bufferSettings", "load", p.LBSA, p.LBEA, p.loadRangeFromDevice);
        readRange(r, settings, "/bufferSettings", "save", p.SBSA, p.SBEA, p.saveRangeFromDevice);
        p.fileType = LOADSAVE_FILETYPE(r.number(settings, "/bufferSettings", "fileType", LS_STAPL));
        p.filterType = FILTERTYPE(r.number(settings, "/bufferSettings", "filterType", FILTER_COUNT - 1));
        p.optionFlags = uint32_t(r.number(settings, "/bufferSettings", "optionFlags", 0xFFFFFFFFu));
        p.saveFlags = uint32_t(r.number(settings, "/bufferSettings", "saveFlags", 0xFFFFFFFFu));

        const json &saveRange = r.field(root, "", "saveRange");
        if (!saveRange.is_null()) {
            if (!saveRange.is_array() || saveRange.size() != 2 || !saveRange[0].is_number_unsigned()
                || !saveRange[1].is_number_unsigned() || saveRange[0].get<uint64_t>() > saveRange[1].get<uint64_t>())
                throw ReadError{"/saveRange", "the save range is null or [first, last] with first <= last"};
            shadow.saveRange = std::make_pair(saveRange[0].get<uint64_t>(), saveRange[1].get<uint64_t>());
        }
        const json &dataFile = r.field(root, "", "dataFile");
        if (!dataFile.is_null()) {
            shadow.dataFile = r.text(dataFile, "/dataFile", "path");
            shadow.dataFileType = LOADSAVE_FILETYPE(r.number(dataFile, "/dataFile", "fileType", LS_STAPL));
        }
        const json &serial = r.field(root, "", "serial");
        shadow.serialMode = int(r.number(serial, "/serial", "mode", 0xFFFF));
        shadow.serialFlags = unsigned(r.number(serial, "/serial", "flags", 0xFFFFFFFFu));
        shadow.serialByteCount = unsigned(r.number(serial, "/serial", "byteCount", 0xFFFFFFFFu));
        shadow.serialAddress = unsigned(r.number(serial, "/serial", "address", 0xFFFFFFFFu));
        shadow.serialDefPath = r.text(serial, "/serial", "definitionFile");

        const json &counts = r.field(root, "", "counts");
        // -1 is "not known".
        shadow.passCount = r.int32(counts, "/counts", "pass", -1, INT32_MAX);
        shadow.failCount = r.int32(counts, "/counts", "fail", -1, INT32_MAX);
        shadow.targetCount = r.int32(counts, "/counts", "target", 0, INT32_MAX);

        if (shadow.version >= WorkspaceVersion) {
            shadow.viewItems = readViewItems(r, root);
            shadow.placement = readPlacement(r, root);
            shadow.csvSerial = readCSVSerial(r, root);
        }

        const auto job = root.find("handlerJob");
        if (shadow.kind == LS_HANDLERJOB) {
            const json &h = r.field(root, "", "handlerJob");
            shadow.action = r.text(h, "/handlerJob", "action");
            shadow.optionBox = int(r.number(h, "/handlerJob", "optionBox", 1));
        } else if (job != root.end()) {
            throw ReadError{"/handlerJob", "a project that is not a handler job has no fixed action"};
        }
    } catch (const ReadError &e) {
        error = name + ":" + std::to_string(lined.lineOf(e.pointer)) + ": " + e.what;
        return 0;
    }
    shadow.loaded = true;
    out = std::move(shadow);
    return 1;
}
