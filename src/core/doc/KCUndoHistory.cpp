#include "doc/KCUndoHistory.h"

uint64_t KCUndoHistory::Step::bytes() const
{
    uint64_t n = 0;
    for (const Change &c : changes)
        n += c.bytes.size();
    return n;
}

void KCUndoHistory::setBudget(uint64_t bytes)
{
    m_budget = bytes;
    if (bytes == 0 && !isOpen())
        clear(isAtSaved());
}

bool KCUndoHistory::fits(uint64_t bytes) const
{
    return bytes <= m_budget && m_open.bytes() <= m_budget - bytes;
}

void KCUndoHistory::open(const std::string &name, const KCDataMap &mapBefore)
{
    if (m_depth++ > 0)
        return;
    m_open = Step();
    m_open.name = name;
    m_open.map = mapBefore;
}

void KCUndoHistory::record(uint64_t address, const uint8_t *before, uint64_t count)
{
    if (!isOpen() || count == 0)
        return;
    // Typing along a row extends the last change instead of starting a new one.
    if (!m_open.changes.empty()) {
        Change &last = m_open.changes.back();
        if (last.address + last.bytes.size() == address) {
            last.bytes.insert(last.bytes.end(), before, before + count);
            return;
        }
    }
    m_open.changes.push_back(Change{address, std::vector<uint8_t>(before, before + count)});
}

void KCUndoHistory::close()
{
    if (m_depth == 0 || --m_depth > 0)
        return;
    if (m_open.changes.empty())
        return;
    // A new change makes the undone steps unreachable, and the saved state with them when it
    // lay among them.
    if (m_saved > int64_t(m_done.size()))
        m_saved = -1;
    m_undone.clear();
    m_done.push_back(std::move(m_open));
    m_open = Step();
    // Oldest steps go first when the history outgrows its budget.
    uint64_t total = 0;
    for (const Step &s : m_done)
        total += s.bytes();
    size_t drop = 0;
    while (total > m_budget && drop + 1 < m_done.size())
        total -= m_done[drop++].bytes();
    if (drop) {
        m_done.erase(m_done.begin(), m_done.begin() + int64_t(drop));
        m_saved = m_saved >= int64_t(drop) ? m_saved - int64_t(drop) : -1;
    }
}

void KCUndoHistory::clear(bool atSaved)
{
    m_done.clear();
    m_undone.clear();
    m_open = Step();
    m_depth = 0;
    m_saved = atSaved ? 0 : -1;
}
