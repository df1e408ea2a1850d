#include "devopt/KCOptionTypeRegistry.h"

#include "devopt/KCOptionJson.h"
#include "devopt/KCOptionPageLibrary.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

using nlohmann::json;

bool KCOptionTypeRegistry::loadText(const std::string &text, const std::string &fileName, std::string *error)
{
    try {
        const json doc = json::parse(text);
        std::map<std::string, KCOptionPageEntry> pageClasses;
        for (const auto &p : doc.at("pages").items()) {
            const json &ids = p.value();
            pageClasses[p.key()] = {KCOptionJson::number(ids.at("template")),
                                    KCOptionJson::number(ids.at("caption")), p.key()};
        }
        std::vector<Builder> builders;
        for (const json &t : doc.at("types")) {
            Builder b{KCOptionJson::number(t.at("type")), {}};
            for (const json &name : t.at("pages")) {
                const auto it = pageClasses.find(name.get<std::string>());
                if (it == pageClasses.end())
                    throw std::runtime_error("type " + std::to_string(b.optionType) + ": page " + name.dump() +
                                             " has no template");
                b.pages.push_back(it->second);
            }
            for (const Builder &other : builders)
                if (other.optionType == b.optionType)
                    throw std::runtime_error("type " + std::to_string(b.optionType) + " is registered twice");
            builders.push_back(std::move(b));
        }
        m_builders = std::move(builders);
    } catch (const std::exception &e) {
        if (error)
            *error = fileName + ": " + e.what();
        return false;
    }
    return true;
}

bool KCOptionTypeRegistry::load(const std::string &path, std::string *error)
{
    std::ifstream in(path);
    if (!in) {
        if (error)
            *error = path + ": cannot be read";
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    return loadText(text.str(), path, error);
}

bool KCOptionTypeRegistry::isRegistered(uint32_t optionType) const
{
    for (const Builder &b : m_builders)
        if (b.optionType == optionType)
            return true;
    return false;
}

std::vector<KCOptionPageEntry> KCOptionTypeRegistry::pages(uint32_t optionType) const
{
    for (const Builder &b : m_builders)
        if (b.optionType == optionType)
            return b.pages;
    return {};
}

std::vector<uint32_t> KCOptionTypeRegistry::types() const
{
    std::vector<uint32_t> out;
    for (const Builder &b : m_builders)
        out.push_back(b.optionType);
    return out;
}

const KCOptionTypeRegistry &KCOptionTypeRegistry::shared()
{
    static const KCOptionTypeRegistry registry = [] {
        KCOptionTypeRegistry r;
        r.load(KCOptionPageLibrary::defaultDirectory() + "/" + KCOptionPageLibrary::TypesFile);
        return r;
    }();
    return registry;
}
