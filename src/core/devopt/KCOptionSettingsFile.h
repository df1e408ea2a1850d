#pragma once

#include "doc/TAG_UI_ALGODATA_KRL3.h"

#include <string>

// A device's option settings as a file of their own (JSON): the device's name, the record's
// option fields as hex, and its numeric and text keys in table order. Loading replaces the
// option fields and keys of a record, and nothing when the file is not well formed.
class KCOptionSettingsFile
{
public:
    static std::string toText(const TAG_UI_ALGODATA_KRL3 &record, const std::string &deviceName);
    // False, with `error` saying why and the record untouched, on a malformed text.
    static bool fromText(const std::string &text, TAG_UI_ALGODATA_KRL3 &record, std::string *deviceName,
                         std::string *error);

    // The old file stays whole when saving fails.
    static bool save(const std::string &path, const TAG_UI_ALGODATA_KRL3 &record, const std::string &deviceName,
                     std::string *error);
    static bool load(const std::string &path, TAG_UI_ALGODATA_KRL3 &record, std::string *deviceName,
                     std::string *error);
};
