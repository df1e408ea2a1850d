#include "devopt/KCOptionPageLibrary.h"

#include "devopt/KCOptionJson.h"
#include "host/KCFormat.h"
#include "host/KCHostStringTable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

using nlohmann::json;

const char *const KCOptionPageLibrary::TypesFile = "types.json";

namespace {

uint32_t numberOr(const json &j, const char *name, uint32_t fallback)
{
    return j.contains(name) ? KCOptionJson::number(j.at(name)) : fallback;
}

// A row of a formatted list. Frequencies come as fractions ("%.1f MHz"), which only a
// format with that single conversion may take.
std::string formatRow(const std::string &fmt, const json &row)
{
    const json args = row.is_array() ? row : json::array({row});
    const size_t pct = fmt.find('%');
    if (pct != std::string::npos && fmt.find('%', pct + 1) == std::string::npos) {
        const size_t conv = fmt.find_first_not_of("0123456789.-", pct + 1);
        if (conv != std::string::npos && fmt[conv] == 'f') {
            char text[128];
            std::snprintf(text, sizeof text, fmt.c_str(), args.at(0).get<double>());
            return text;
        }
    }
    std::vector<KCFormatArg> values;
    for (const json &a : args) {
        // Hex numbers come as "0x..." strings; other strings are texts.
        const bool text = a.is_string() && a.get<std::string>().rfind("0x", 0) != 0;
        values.push_back(text ? KCFormatArg(a.get<std::string>()) : KCFormatArg(KCOptionJson::number(a)));
    }
    return KCFormat::format(fmt, values);
}

// A list of texts: plain strings, and {format, rows} objects that give one text per row.
std::vector<std::string> texts(const json &j)
{
    std::vector<std::string> out;
    for (const json &t : j.is_array() ? j : json::array({j})) {
        if (t.is_object()) {
            const std::string fmt = t.at("format").get<std::string>();
            for (const json &row : t.at("rows"))
                out.push_back(formatRow(fmt, row));
        } else {
            out.push_back(t.get<std::string>());
        }
    }
    return out;
}

const std::map<std::string, cParamStcBase::Kind> &kinds()
{
    static const std::map<std::string, cParamStcBase::Kind> k = {
        {"group", cParamStcBase::GroupBox},   {"check", cParamStcBase::CheckBox}, {"radio", cParamStcBase::RadioButton},
        {"combo", cParamStcBase::ComboBox},   {"edit", cParamStcBase::Edit},      {"listedit", cParamStcBase::ListEdit},
        {"static", cParamStcBase::Static},    {"button", cParamStcBase::Button},
    };
    return k;
}

KCOptionBinding binding(const json &j)
{
    KCOptionBinding b;
    if (j.contains("key")) {
        b.kind = KCOptionBinding::NumericKey;
        b.key = j.at("key").get<std::string>();
    } else if (j.contains("text")) {
        b.kind = KCOptionBinding::TextKey;
        b.key = j.at("text").get<std::string>();
    } else {
        b.kind = KCOptionBinding::Field;
        b.offset = KCOptionJson::number(j.at("offset"));
        b.width = numberOr(j, "width", 1);
        b.mask = KCOptionJson::number(j.at("mask"));
        b.shift = numberOr(j, "shift", 0);
    }
    b.value = numberOr(j, "value", 1);
    return b;
}

void readControls(const json &list, std::vector<cParamStcBase> &out);

// One check box per row: bit i of the flag bytes from `offset` on, ids counting up from `id`.
void expandCheckList(const json &j, std::vector<cParamStcBase> &out)
{
    const uint32_t first = KCOptionJson::number(j.at("id"));
    const uint32_t offset = KCOptionJson::number(j.at("offset"));
    const std::vector<std::string> captions = texts(json{{"format", j.at("format")}, {"rows", j.at("rows")}});
    for (uint32_t i = 0; i < captions.size(); ++i) {
        cParamStcBase c;
        c.id = first + i;
        c.kind = cParamStcBase::CheckBox;
        c.caption = captions[i];
        c.binding.kind = KCOptionBinding::Field;
        c.binding.offset = offset + i / 8;
        c.binding.mask = 1u << (i % 8);
        out.push_back(std::move(c));
    }
}

void readControl(const json &j, std::vector<cParamStcBase> &out)
{
    const std::string kind = j.at("kind").get<std::string>();
    if (kind == "checklist") {
        expandCheckList(j, out);
        return;
    }
    const auto k = kinds().find(kind);
    if (k == kinds().end())
        throw std::runtime_error("unknown control kind \"" + kind + "\"");
    cParamStcBase c;
    c.kind = k->second;
    c.id = KCOptionJson::number(j.at("id"));
    c.caption = j.value("caption", std::string());
    if (j.contains("bind"))
        c.binding = binding(j.at("bind"));
    if (j.contains("items"))
        c.items = texts(j.at("items"));
    if (j.contains("values"))
        for (const json &v : j.at("values"))
            c.values.push_back(KCOptionJson::number(v));
    c.format = j.value("format", std::string());
    c.keyFormat = j.value("keyFormat", std::string());
    c.count = numberOr(j, "count", 0);
    if (j.contains("children"))
        readControls(j.at("children"), c.children);
    if (!c.values.empty() && c.values.size() != c.items.size())
        throw std::runtime_error("control " + std::to_string(c.id) + ": values and items differ in number");
    out.push_back(std::move(c));
}

void readControls(const json &list, std::vector<cParamStcBase> &out)
{
    for (const json &j : list)
        readControl(j, out);
}

} // namespace

bool KCOptionPageLibrary::loadText(const std::string &text, const std::string &fileName, std::string *error)
{
    try {
        const json doc = json::parse(text);
        for (const json &p : doc.at("pages")) {
            KCOptionPageDesc page;
            page.className = p.at("class").get<std::string>();
            try {
                readControls(p.at("controls"), page.controls);
            } catch (const std::exception &e) {
                throw std::runtime_error(page.className + ": " + e.what());
            }
            if (m_pages.count(page.className))
                throw std::runtime_error(page.className + " is described twice");
            m_pages.emplace(page.className, std::move(page));
        }
    } catch (const std::exception &e) {
        if (error)
            *error = fileName + ": " + e.what();
        return false;
    }
    return true;
}

bool KCOptionPageLibrary::loadDirectory(const std::string &dir, std::string *error)
{
    std::vector<std::filesystem::path> files;
    std::error_code ec;
    for (const auto &entry : std::filesystem::directory_iterator(dir, ec))
        if (entry.path().extension() == ".json")
            files.push_back(entry.path());
    if (ec) {
        if (error)
            *error = dir + ": " + ec.message();
        return false;
    }
    std::sort(files.begin(), files.end());
    for (const auto &path : files) {
        std::ifstream in(path);
        std::stringstream text;
        text << in.rdbuf();
        if (path.filename() == TypesFile)
            continue; // which pages each option type shows, not pages
        if (!loadText(text.str(), path.string(), error))
            return false;
    }
    return true;
}

const KCOptionPageDesc *KCOptionPageLibrary::find(const std::string &className) const
{
    const auto it = m_pages.find(className);
    return it == m_pages.end() ? nullptr : &it->second;
}

std::vector<std::string> KCOptionPageLibrary::classNames() const
{
    std::vector<std::string> names;
    for (const auto &p : m_pages)
        names.push_back(p.first);
    return names;
}

std::string KCOptionPageLibrary::defaultDirectory()
{
    return KCHostStringTable::dataDirectory() + "/option-pages";
}

const KCOptionPageLibrary &KCOptionPageLibrary::shared()
{
    static const KCOptionPageLibrary library = [] {
        KCOptionPageLibrary l;
        l.loadDirectory(defaultDirectory());
        return l;
    }();
    return library;
}
