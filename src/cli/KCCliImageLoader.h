#pragma once

#include "fileio/KCFileTypes.h"

#include <string>

class KCDataDoc;
struct KCFileFormatInfo;

// Loads an image file into a document's buffer through the document's own open pipeline,
// choosing the format by name, else by extension, else by content, else binary.
class KCCliImageLoader
{
public:
    struct Choice
    {
        const KCFileFormatInfo *chosen = nullptr;
        const KCFileFormatInfo *byExtension = nullptr;
        const KCFileFormatInfo *byContent = nullptr;
        std::string how; // "named", "by extension", "by content", "default"
    };

    // False (message on stderr) when the name is unknown or the file cannot be read.
    static bool chooseFormat(const std::string &path, const std::string &formatName, Choice &choice);
    static bool load(KCDataDoc &doc, const std::string &path, const std::string &formatName, Choice *choice = nullptr);
    // The list of format names for usage texts.
    static std::string formatList();
    // LS_KPF2 or LS_HANDLERJOB for a project or handler-job file name, LS_INVALID otherwise.
    static LOADSAVE_FILETYPE projectType(const std::string &path);
    // Opens a project or handler job and applies it: device, buffers, settings.
    static bool loadProject(KCDataDoc &doc, const std::string &path, LOADSAVE_FILETYPE type);
    // A usage problem with the format named for `path`, or empty: an unknown name, or no name
    // for standard input ("-"), whose content cannot be looked at first.
    static std::string formatProblem(const std::string &path, const std::string &formatName);
    // The writable format of OUT: named, or from OUT's extension; null with `problem` set.
    static const KCFileFormatInfo *outputFormat(const std::string &out, const std::string &formatName,
                                                std::string &problem);
};
