#include "serial/cSerialJournalAudit.h"

#include "serial/KCSerialJournal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>

namespace {
using Event = TAG_SERIAL_JOURNAL_EVENT;
const char *const Reuse = "reuse";
const char *const Series = "series";

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

cSerialJournalAudit::cSerialJournalAudit(const std::vector<Event> &events)
{
    std::map<std::string, Event> open; // by key: the take without a result
    std::set<std::string> used;        // numbers that reached a device for good
    std::vector<Event> openOrder;
    auto giveBack = [&](const std::string &key) {
        const auto it = open.find(key);
        if (it != open.end())
            m_reuse.insert(m_reuse.begin(), it->second);
    };
    for (const Event &e : events) {
        switch (e.kind) {
        case Event::Take: {
            const auto reused = std::find_if(m_reuse.begin(), m_reuse.end(),
                                             [&](const Event &r) { return r.key == e.key; });
            if (reused != m_reuse.end())
                m_reuse.erase(reused);
            else if (open.count(e.key) || used.count(e.key))
                m_repeats.push_back(e);
            open[e.key] = e;
            break;
        }
        case Event::Pass:
        case Event::Fail:
            if (e.kind == Event::Pass)
                ++m_passed;
            else
                ++m_failed;
            if (e.kind == Event::Fail && e.detail == Reuse)
                giveBack(e.key);
            else
                used.insert(e.key);
            open.erase(e.key);
            break;
        case Event::Abandon:
            if (e.detail == Reuse)
                giveBack(e.key);
            open.erase(e.key);
            break;
        }
    }
    for (const Event &e : events) {
        const auto it = open.find(e.key);
        if (e.kind == Event::Take && it != open.end() && it->second.line == e.line)
            m_open.push_back(e);
    }
}

bool cSerialJournalAudit::isOpen(const std::string &key) const
{
    return std::any_of(m_open.begin(), m_open.end(), [&](const Event &e) { return e.key == key; });
}

bool cSerialJournalAudit::settleOpen(KCSerialJournal &journal, const std::string &next, bool reclaim)
{
    if (isOpen(next) && !journal.append(Event::Abandon, next, Series))
        return false;
    if (!reclaim)
        return true;
    const std::string self = KCSerialJournal::thisStation();
    for (const Event &e : m_open) {
        if (e.key != next && isDeadLocalStation(e.station, self)) {
            if (!journal.append(Event::Abandon, e.key, Reuse))
                return false;
            m_reuse.insert(m_reuse.begin(), e);
        }
    }
    return true;
}
