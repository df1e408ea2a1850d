#include "KCCliImageLoader.h"

#include "doc/KCDataDoc.h"
#include "fileio/KCFile.h"
#include "KCFileFormatRegistry.h"
#include "fileio/KCFileDialogCore.h"
#include "fileio/KCFormatNames.h"

#include <cctype>
#include <cstdio>
#include <sys/stat.h>
#include <vector>

namespace {

// Enough of a file's start for every content detector.
constexpr size_t DetectBytes = 4096;

} // namespace

std::string KCCliImageLoader::formatList()
{
    std::string list;
    for (const auto &f : KCFileFormatRegistry::formats()) {
        if (KCFormatNames::loadSaveType(f.name) == LS_INVALID)
            continue;
        list += list.empty() ? "" : ", ";
        list += f.name;
    }
    return list;
}

std::string KCCliImageLoader::formatProblem(const std::string &path, const std::string &formatName)
{
    if (formatName.empty())
        return path == "-" ? "reading standard input needs the format by name" : std::string();
    const KCFileFormatInfo *info = KCFileFormatRegistry::byName(formatName);
    if (!info || KCFormatNames::loadSaveType(info->name) == LS_INVALID)
        return "unknown format '" + formatName + "' (known: " + formatList() + ")";
    return std::string();
}

const KCFileFormatInfo *KCCliImageLoader::outputFormat(const std::string &out, const std::string &formatName,
                                                       std::string &problem)
{
    const KCFileFormatInfo *to = nullptr;
    if (!formatName.empty()) {
        to = KCFileFormatRegistry::byName(formatName);
        if (!to || KCFormatNames::loadSaveType(to->name) == LS_INVALID) {
            problem = "unknown output format '" + formatName + "' (known: " + formatList() + ")";
            return nullptr;
        }
    } else if (out == "-") {
        problem = "writing standard output needs the format by name: give --to";
        return nullptr;
    } else {
        const size_t dot = out.rfind('.');
        to = dot == std::string::npos ? nullptr : KCFileFormatRegistry::byExtension(out.substr(dot + 1));
        if (!to) {
            problem = "cannot tell the output format from '" + out + "': give --to";
            return nullptr;
        }
    }
    if (!to->writable) {
        problem = std::string("format ") + to->name + " can be read but not written";
        return nullptr;
    }
    return to;
}

bool KCCliImageLoader::chooseFormat(const std::string &path, const std::string &formatName, Choice &choice)
{
    choice = Choice();
    // A stream can be read only once: its content is not looked at before loading.
    struct stat st;
    if (path == "-" || (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode) && !formatName.empty())) {
        choice.chosen = KCFileFormatRegistry::byName(formatName);
        choice.how = "named";
        return choice.chosen != nullptr;
    }
    try {
        KCFile file(path, KCFile::ReadOnly);
        std::vector<uint8_t> head(DetectBytes);
        head.resize(file.read(head.data(), head.size()));
        choice.byContent = KCFileFormatRegistry::detect(head.data(), head.size());
    } catch (const KCFileException &e) {
        std::fprintf(stderr, "krldv: %s\n", e.what());
        return false;
    }
    choice.byExtension = KCFileFormatRegistry::byExtension(KCFileDialogCore::extensionOf(path));
    if (!formatName.empty()) {
        choice.chosen = KCFileFormatRegistry::byName(formatName);
        if (!choice.chosen || KCFormatNames::loadSaveType(choice.chosen->name) == LS_INVALID)
            return false; // the commands check names as usage errors first
        choice.how = "named";
    } else if (choice.byExtension) {
        choice.chosen = choice.byExtension;
        choice.how = "by extension";
    } else if (choice.byContent) {
        choice.chosen = choice.byContent;
        choice.how = "by content";
    } else {
        choice.chosen = KCFileFormatRegistry::byName("bin");
        choice.how = "default";
    }
    return choice.chosen != nullptr;
}

LOADSAVE_FILETYPE KCCliImageLoader::projectType(const std::string &path)
{
    std::string ext = KCFileDialogCore::extensionOf(path);
    for (char &c : ext)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return ext == "kpf2" ? LS_KPF2 : ext == "handlerjob" ? LS_HANDLERJOB : LS_INVALID;
}

bool KCCliImageLoader::loadProject(KCDataDoc &doc, const std::string &path, LOADSAVE_FILETYPE type)
{
    doc.mainBufferParam()->fileType = type;
    doc.undoHistory().setBudget(0);
    if (!doc.OnOpenDocument(path.c_str()))
        return false;
    doc.PostOpenLoadFile();
    return doc.GetKPFFileFlag() != 0;
}

bool KCCliImageLoader::load(KCDataDoc &doc, const std::string &path, const std::string &formatName, Choice *choice)
{
    Choice local;
    Choice &c = choice ? *choice : local;
    if (!chooseFormat(path, formatName, c))
        return false;
    TAG_BUFFER_PARAM *param = doc.mainBufferParam();
    param->fileType = KCFormatNames::loadSaveType(c.chosen->name);
    // A device's range stays: the device decides where its bytes come from.
    if (!doc.HasDeviceX())
        param->LBSA = param->LBEA = 0xFFFFFFFF;
    // The command line needs the flat image only for binary output: memory follows the data.
    doc.setSparse(true);
    doc.undoHistory().setBudget(0); // a command makes one change: nothing to undo
    return doc.OnOpenDocument(path.c_str());
}
