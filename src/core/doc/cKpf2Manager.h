#pragma once

#include <cstddef>
#include <string>

class KCDataDoc;
class cCSVSerialDataContent;
class cKpf2ReadShadowData;

// Reads and writes whole projects ("kpf2") and handler jobs: every buffer with its defined
// ranges and bytes, the device and its whole parameter record, the load/save settings, the
// serial-number settings, the CSV serial project, the production counts, the workspace-tree
// items, the window placement and, for a handler job, the fixed action.
// The file is versioned JSON text, so a person can read and diff it; bytes are hexadecimal,
// 32 to a line. Reading is strict: anything unknown, missing or inconsistent is refused with
// the file and line, and the document is not touched until PostOpenLoadFile applies it.
class cKpf2Manager
{
public:
    // The version written; every version from FirstFormatVersion on is read.
    static constexpr int FormatVersion = 2;
    static constexpr int FirstFormatVersion = 1;
    static const char *formatName();
    // What write's flag asks for.
    enum : int { WRITE_PROJECT = 0, WRITE_HANDLERJOB = 1 };

    cKpf2Manager(KCDataDoc &doc, const std::string &path);

    // Reads the file into `shadow`; nonzero on success, otherwise error() says why.
    int read(cKpf2ReadShadowData &shadow);
    // Writes the document's project to the path through a temporary file and a rename;
    // `option` is the handler job's option box, `flag` 1 writes a handler job. Nonzero on
    // success; on failure the earlier file is as it was.
    int write(int option, int flag);

    // The file's text as write would store it. Empty, with `error` (when given) naming the
    // place, when a text of the document is not UTF-8, which JSON cannot carry.
    std::string text(int option, int flag, std::string *error = nullptr) const;
    // Reads project text; `name` is used in messages. Nonzero on success.
    static int parse(const std::string &text, const std::string &name, cKpf2ReadShadowData &shadow, std::string &error);

    // The longest serial project path the host's file functions take.
    static constexpr size_t MaxSerialProjectPath = 260;
    // Takes an opened project's CSV serial data over into the document. A path longer than
    // the host takes is refused with a message through the host and nothing is taken.
    // Nonzero when taken.
    int takeOverCSVSerialData(cCSVSerialDataContent &content);

    const std::string &error() const { return m_error; }

private:
    KCDataDoc &m_doc;
    std::string m_path;
    std::string m_error;
};
