#include "serial/KCSerialDispenser.h"

#include "serial/cSerialJournalAudit.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

using Event = TAG_SERIAL_JOURNAL_EVENT;
const char *const DiscardName = "discard";
const char *const ReuseName = "reuse";
const char *const SeriesName = "series";
const char *const HexDigits = "0123456789ABCDEF";

std::string toHex(const std::string &bytes)
{
    std::string hex;
    for (unsigned char c : bytes) {
        hex += HexDigits[c >> 4];
        hex += HexDigits[c & 0xF];
    }
    return hex;
}

std::string fromHex(const std::string &hex)
{
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16));
    return bytes;
}

// A station of this host whose process is gone.
bool isDeadLocalStation(const std::string &station, const std::string &self)
{
    const size_t colon = station.rfind(':');
    const size_t selfColon = self.rfind(':');
    if (colon == std::string::npos || station.compare(0, colon, self, 0, selfColon) != 0)
        return false;
    const long pid = std::strtol(station.c_str() + colon + 1, nullptr, 10);
    return pid > 0 && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

} // namespace

KCSerialDispenser::KCSerialDispenser(KCMainProgDataExChange *host, const std::string &defFile, unsigned flags,
                                     int block)
    : m_ctrl(host, defFile), m_journal(KCSerialJournal::pathFor(defFile)), m_flags(flags), m_block(block)
{
}

bool KCSerialDispenser::parsePolicy(const std::string &text, Policy *policy)
{
    if (text == DiscardName)
        *policy = Discard;
    else if (text == ReuseName)
        *policy = Reuse;
    else
        return false;
    return true;
}

bool KCSerialDispenser::seriesNext(std::string *key, std::string *bytes, bool advance)
{
    const TAG_SERIAL_NUMBER block = m_ctrl.GetSerialBlock(m_block);
    unsigned flags = m_flags, length = 0, value = 0;
    if (!m_ctrl.SERIAL_GetNextSerialNumber(m_block, &flags, &length, &value, nullptr, bytes, advance ? 1 : 0, 0))
        return false;
    char text[48];
    if (block.type == TAG_SERIAL_NUMBER::TypeList)
        std::snprintf(text, sizeof text, "%d:#%u", m_block,
                      static_cast<unsigned>(block.nextIndex % (block.elements.empty() ? 1 : block.elements.size())));
    else
        std::snprintf(text, sizeof text, "%d:0x%08X", m_block, value);
    *key = text;
    return true;
}

int KCSerialDispenser::takeLocked(std::string *key, std::string *bytes, bool *writeBack)
{
    std::vector<Event> events;
    if (!m_journal.read(&events)) {
        m_error = m_journal.error();
        return 0;
    }
    const cSerialJournalAudit audit(events);
    std::string nextKey, nextBytes;
    if (!seriesNext(&nextKey, &nextBytes, false)) {
        m_error = "no serial number can be had from block " + std::to_string(m_block) + " of "
            + *m_ctrl.FILE_GetSerialFileName();
        return 0;
    }
    // Taken, but the file never moved past it: that station died before writing it back.
    if (audit.isOpen(nextKey) && !m_journal.append(Event::Abandon, nextKey, SeriesName))
        return 0;
    std::vector<Event> reuse = audit.reuseList();
    if (m_policy == Reuse) {
        const std::string self = KCSerialJournal::thisStation();
        for (const Event &e : audit.open()) {
            if (e.key != nextKey && isDeadLocalStation(e.station, self)) {
                if (!m_journal.append(Event::Abandon, e.key, ReuseName))
                    return 0;
                reuse.insert(reuse.begin(), e);
            }
        }
    }
    if (!reuse.empty()) {
        *key = reuse.front().key;
        *bytes = fromHex(reuse.front().detail);
        *writeBack = false;
    } else {
        if (!seriesNext(key, bytes, true))
            return 0;
        *writeBack = true;
    }
    if (!m_journal.append(Event::Take, *key, toHex(*bytes))) {
        m_error = m_journal.error();
        return 0;
    }
    return 1;
}

bool KCSerialDispenser::take(std::string *key, std::string *bytes)
{
    m_error.clear();
    const int ok = m_ctrl.FILE_ConsumeLocked([&](bool *writeBack) { return takeLocked(key, bytes, writeBack); });
    if (!ok && m_error.empty())
        m_error = "no serial number could be taken from " + *m_ctrl.FILE_GetSerialFileName();
    return ok != 0;
}

bool KCSerialDispenser::record(const std::string &key, bool passed)
{
    m_error.clear();
    const int ok = m_ctrl.FILE_ConsumeLocked([&](bool *) {
        return m_journal.append(passed ? Event::Pass : Event::Fail, key,
                                passed ? std::string() : (m_policy == Reuse ? ReuseName : DiscardName))
            ? 1
            : 0;
    });
    if (!ok)
        m_error = m_journal.error().empty() ? "the result of " + key + " could not be journaled" : m_journal.error();
    return ok != 0;
}
