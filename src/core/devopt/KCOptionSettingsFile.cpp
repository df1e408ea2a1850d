#include "devopt/KCOptionSettingsFile.h"

#include "doc/KCAlgoKeys.h"
#include "fileio/KCSaveFile.h"

#include <nlohmann/json.hpp>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

using nlohmann::json;

namespace {

constexpr const char *HexDigits = "0123456789ABCDEF";
constexpr size_t OptionFieldBytes = ALGODATA_TEXT_FIELDS - ALGODATA_OPTION_FIELDS;

std::string toHex(const uint8_t *bytes, size_t n)
{
    std::string hex;
    for (size_t i = 0; i < n; ++i) {
        hex += HexDigits[bytes[i] >> 4];
        hex += HexDigits[bytes[i] & 0xF];
    }
    return hex;
}

int digit(char c)
{
    const char *p = std::strchr(HexDigits, std::toupper(static_cast<unsigned char>(c)));
    return c && p ? int(p - HexDigits) : -1;
}

} // namespace

std::string KCOptionSettingsFile::toText(const TAG_UI_ALGODATA_KRL3 &record, const std::string &deviceName)
{
    // Reading the keys does not change the record.
    KCAlgoKeys keys(const_cast<TAG_UI_ALGODATA_KRL3 &>(record));
    json doc;
    doc["device"] = deviceName;
    doc["optionFields"] = toHex(record.optionFields, OptionFieldBytes);
    doc["numericKeys"] = json::array();
    for (const auto &[key, value] : keys.numericKeys())
        doc["numericKeys"].push_back({key, value});
    doc["textKeys"] = json::array();
    for (const auto &[key, value] : keys.textKeys())
        doc["textKeys"].push_back({key, value});
    return doc.dump(2) + "\n";
}

bool KCOptionSettingsFile::fromText(const std::string &text, TAG_UI_ALGODATA_KRL3 &record, std::string *deviceName,
                                    std::string *error)
{
    TAG_UI_ALGODATA_KRL3 result = record;
    std::string name;
    try {
        const json doc = json::parse(text);
        name = doc.at("device").get<std::string>();
        const std::string hex = doc.at("optionFields").get<std::string>();
        if (hex.size() != 2 * OptionFieldBytes)
            throw std::runtime_error("optionFields must hold " + std::to_string(OptionFieldBytes) + " bytes");
        for (size_t i = 0; i < OptionFieldBytes; ++i) {
            const int hi = digit(hex[2 * i]), lo = digit(hex[2 * i + 1]);
            if (hi < 0 || lo < 0)
                throw std::runtime_error("optionFields is not hexadecimal");
            result.optionFields[i] = uint8_t(hi << 4 | lo);
        }
        KCAlgoKeys::NumericKeys numeric;
        for (const json &k : doc.at("numericKeys"))
            numeric.emplace_back(k.at(0).get<std::string>(), k.at(1).get<uint32_t>());
        KCAlgoKeys::TextKeys texts;
        for (const json &k : doc.at("textKeys"))
            texts.emplace_back(k.at(0).get<std::string>(), k.at(1).get<std::string>());
        if (!KCAlgoKeys(result).build(numeric, texts))
            throw std::runtime_error("the keys do not fit the device's record");
    } catch (const std::exception &e) {
        if (error)
            *error = e.what();
        return false;
    }
    record = result;
    if (deviceName)
        *deviceName = name;
    return true;
}

bool KCOptionSettingsFile::save(const std::string &path, const TAG_UI_ALGODATA_KRL3 &record,
                                const std::string &deviceName, std::string *error)
{
    std::string text;
    try {
        text = toText(record, deviceName);
    } catch (const json::type_error &) {
        // A text option from an older binary project need not be UTF-8; JSON cannot carry it.
        if (error)
            *error = path + ": cannot be written: a text option of " + deviceName + " is not UTF-8; nothing was saved";
        return false;
    }
    KCSaveFile file;
    bool ok = file.open(path);
    for (size_t done = 0; ok && done < text.size();) {
        const ssize_t n = ::write(file.fd(), text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            file.abort();
            if (error)
                *error = path + ": " + std::strerror(errno);
            return false;
        }
        done += size_t(n);
    }
    if (ok)
        ok = file.commit();
    if (!ok && error)
        *error = file.errorText();
    return ok;
}

bool KCOptionSettingsFile::load(const std::string &path, TAG_UI_ALGODATA_KRL3 &record, std::string *deviceName,
                                std::string *error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (error)
            *error = path + ": " + std::strerror(errno);
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::string why;
    if (fromText(text.str(), record, deviceName, &why))
        return true;
    if (error)
        *error = path + ": " + why;
    return false;
}
