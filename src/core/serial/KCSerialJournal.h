#pragma once

#include "serial/TAG_SERIAL_JOURNAL_EVENT.h"

#include <string>
#include <vector>

// The journal of a serial definition file: an append-only text beside it ("<file>.journal")
// with one line per event. Lines are appended while the definition file's lock is held,
// each with one write, so the journal's order is the order in which numbers were handed out.
class KCSerialJournal
{
public:
    static constexpr const char *Suffix = ".journal";

    explicit KCSerialJournal(const std::string &path) : m_path(path) {}
    static std::string pathFor(const std::string &defFile) { return defFile + Suffix; }
    // This process as a station: "host:pid".
    static std::string thisStation();
    static std::string now();

    const std::string &path() const { return m_path; }
    // Appends one event with this station and the current time; false with error().
    bool append(TAG_SERIAL_JOURNAL_EVENT::Kind kind, const std::string &key, const std::string &detail);
    // The events so far (none for a missing journal); false with error() when unreadable.
    // Lines that cannot be read are told in error() and skipped.
    bool read(std::vector<TAG_SERIAL_JOURNAL_EVENT> *events);
    const std::string &error() const { return m_error; }

    static std::string format(const TAG_SERIAL_JOURNAL_EVENT &event);
    static bool parse(const std::string &line, TAG_SERIAL_JOURNAL_EVENT *event);
    static const char *kindName(TAG_SERIAL_JOURNAL_EVENT::Kind kind);
    // A take's detail: the bytes handed out, in hexadecimal, and back.
    static std::string toHex(const std::string &bytes);
    static std::string fromHex(const std::string &hex);

private:
    std::string m_path;
    std::string m_error;
};
