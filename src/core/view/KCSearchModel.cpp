#include "view/KCSearchModel.h"

#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>

std::atomic<uint64_t> KCSearchModel::s_hitCounter{0};

std::string KCSearchModel::Message::text(const KCMainProgDataExChange *host) const
{
    if (!host)
        return std::string();
    std::vector<KCFormatArg> args;
    for (int64_t a : arguments)
        args.emplace_back(static_cast<long long>(a));
    return KCFormat::format(host->GetHostString(stringId), args);
}

KCSearchModel::KCSearchModel()
{
    s_hitCounter.store(0);
    m_search.setStopFlag(&m_stop);
    m_search.setProgress(&m_position);
}

void KCSearchModel::setRange(const TAG_SEARCH_RANGE &range)
{
    m_range = range;
    m_nextStart = range.first;
    m_lastHit = -1;
}

void KCSearchModel::setPattern(const std::vector<uint8_t> &pattern)
{
    m_search.setPattern(pattern);
}

void KCSearchModel::startAt(int64_t address)
{
    m_nextStart = std::max(address, m_range.first);
    m_lastHit = -1;
}

void KCSearchModel::prepare(bool findAll, bool fromNextStart)
{
    m_findAll = findAll;
    m_stop.store(false);
    m_stopped = false;
    m_found = -1;
    if (findAll)
        m_hits.clear();
    m_runStart = findAll && !fromNextStart ? m_range.first : std::max(m_nextStart, m_range.first);
    m_position.store(m_runStart);
}

void KCSearchModel::run(const uint8_t *mem, uint64_t size)
{
    if (m_findAll)
        m_search.findAll(mem, size, m_runStart, m_range.last, m_hits);
    else
        m_found = m_search.next(mem, size, m_runStart, m_range.last);
    m_stopped = m_search.stopped();
}

KCSearchModel::Outcome KCSearchModel::finish()
{
    m_message = Message();
    if (m_findAll) {
        m_message.stringId = KCHostStrings::SearchFoundAll;
        m_message.arguments = {static_cast<int64_t>(m_hits.count())};
        s_hitCounter.store(0);
        return FoundAll;
    }
    if (m_found < 0) {
        // Not found: the counter starts over, and so does the next search.
        m_message.stringId = KCHostStrings::SearchNotFound;
        s_hitCounter.store(0);
        if (!m_stopped) {
            m_lastHit = -1;
            m_nextStart = m_range.first;
        }
        return NotFound;
    }
    const uint64_t count = ++s_hitCounter;
    m_lastHit = m_found;
    m_nextStart = m_found + 1;
    m_message.stringId = KCHostStrings::SearchFound;
    m_message.arguments = {static_cast<int64_t>(count), m_found};
    return Found;
}

KCSearchModel::Message KCSearchModel::progress() const
{
    Message m;
    m.stringId = KCHostStrings::SearchProgress;
    m.arguments = {m_position.load(std::memory_order_relaxed)};
    return m;
}
