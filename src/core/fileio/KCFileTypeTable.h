#pragma once

#include "fileio/KCFileTypes.h"

#include <string>
#include <vector>

// What the document does after a reader succeeded, beyond taking its data.
enum KCPostLoadStep : int {
    POSTLOAD_NONE = 0,
    // A fuse map defines every fuse of its device: without a device the buffer is the map.
    POSTLOAD_FUSE_MAP = 1,
};

// One file type: the format library's reader and writer behind it, its extension family
// and how it is described.
struct KCFileTypeRow
{
    LOADSAVE_FILETYPE type;
    const char *formatName;  // name in the format library's registry; null: none
    FILTERTYPE filter;       // the extension family
    unsigned descriptionId;  // host string describing the type; 0: `description` instead
    const char *description;
    bool readable;           // the document can read it
    bool writable;           // the document can write it
    KCPostLoadStep postLoad;
};

// The one table of file types: the document's reader and writer adapters, the format names
// of the command line, the file dialog's descriptions and the fuzzers' list come from it.
// A new file type is one row.
class KCFileTypeTable
{
public:
    static const std::vector<KCFileTypeRow> &rows();
    // Null for a type without a row.
    static const KCFileTypeRow *row(LOADSAVE_FILETYPE type);
    static const KCFileTypeRow *byFormatName(const std::string &name);
    // The type's description: its host string or its own text.
    static std::string description(const KCFileTypeRow &row);
    // True when `extension` (without the dot, any case) belongs to the type's family.
    static bool isFamilyExtension(const KCFileTypeRow &row, const std::string &extension);
};
