#pragma once

#include "KCFileFormat.h"

#include <string>

// What Serialize reads from or writes to: a whole input file in memory for loading, or an
// output stream for storing; with the file's path for messages.
class KCArchive
{
public:
    KCArchive(const std::string &path, const KCInputFile &input) : m_path(path), m_input(input) {}
    KCArchive(const std::string &path, KCOutputStream &output) : m_path(path), m_output(&output), m_storing(true) {}

    bool IsStoring() const { return m_storing; }
    bool IsLoading() const { return !m_storing; }
    const std::string &GetFilePath() const { return m_path; }
    const KCInputFile &input() const { return m_input; }
    KCOutputStream &output() const { return *m_output; }

    // Set by a writer that produced the file; a store that wrote nothing leaves the target alone.
    void setWritten() { m_written = true; }
    bool written() const { return m_written; }
    // Set by a store whose file type has no writer.
    void setNoWriter() { m_noWriter = true; }
    bool noWriter() const { return m_noWriter; }
    // What a writer stored (format, ranges, bytes), told to the user once the file is in place.
    void setSummary(const std::string &text) { m_summary = text; }
    const std::string &summary() const { return m_summary; }

private:
    std::string m_path;
    KCInputFile m_input;
    KCOutputStream *m_output = nullptr;
    bool m_storing = false;
    bool m_written = false;
    bool m_noWriter = false;
    std::string m_summary;
};
