#pragma once

#include "KCFileFormat.h"

#include <memory>
#include <string>
#include <vector>

// One row of the format table.
struct KCFileFormatInfo
{
    const char *name;         // command-line name: "bin", "intel", ...
    const char *description;
    const char *extensions;   // "|"-separated, lower case
    bool writable;
    // Content detector over the first bytes of a file; null for formats found only by extension.
    bool (*detect)(const uint8_t *data, size_t size);
    std::unique_ptr<KCFileFormat> (*create)(KCFileMessage &sink);
};

// The one table of all formats; adding a format is a class and one row here.
class KCFileFormatRegistry
{
public:
    static const std::vector<KCFileFormatInfo> &formats();
    static const KCFileFormatInfo *byName(const std::string &name);
    // Case-insensitive match of one extension (without dot).
    static const KCFileFormatInfo *byExtension(const std::string &extension);
    // The first format whose detector accepts the content, or null.
    static const KCFileFormatInfo *detect(const uint8_t *data, size_t size);
};
