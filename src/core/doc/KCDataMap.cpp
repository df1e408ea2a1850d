#include "doc/KCDataMap.h"

#include <algorithm>
#include <iterator>

void KCDataMap::add(uint64_t first, uint64_t last)
{
    if (first > last)
        return;
    // The first range that could touch [first, last]: one ending at first - 1 or later.
    auto it = m_ranges.upper_bound(first);
    if (it != m_ranges.begin()) {
        auto prev = std::prev(it);
        if (prev->second >= first || prev->second + 1 == first)
            it = prev;
    }
    while (it != m_ranges.end() && (it->first <= last || (last != UINT64_MAX && it->first == last + 1))) {
        first = std::min(first, it->first);
        last = std::max(last, it->second);
        it = m_ranges.erase(it);
    }
    m_ranges.emplace_hint(it, first, last);
}

void KCDataMap::add(const std::vector<KCAddressRange> &ranges)
{
    for (const KCAddressRange &r : ranges)
        add(r.first, r.second);
}

void KCDataMap::remove(uint64_t first, uint64_t last)
{
    if (first > last)
        return;
    auto it = m_ranges.upper_bound(first);
    if (it != m_ranges.begin() && std::prev(it)->second >= first)
        --it;
    while (it != m_ranges.end() && it->first <= last) {
        const uint64_t s = it->first, e = it->second;
        it = m_ranges.erase(it);
        if (s < first)
            m_ranges.emplace(s, first - 1);
        if (e > last) {
            m_ranges.emplace(last + 1, e);
            break;
        }
    }
}

void KCDataMap::truncate(uint64_t size)
{
    if (size == 0)
        clear();
    else
        remove(size, UINT64_MAX);
}

bool KCDataMap::contains(uint64_t address) const
{
    auto it = m_ranges.upper_bound(address);
    return it != m_ranges.begin() && std::prev(it)->second >= address;
}

std::vector<KCAddressRange> KCDataMap::rangesIn(uint64_t first, uint64_t last) const
{
    std::vector<KCAddressRange> out;
    if (first > last)
        return out;
    auto it = m_ranges.upper_bound(first);
    if (it != m_ranges.begin() && std::prev(it)->second >= first)
        --it;
    for (; it != m_ranges.end() && it->first <= last; ++it)
        out.emplace_back(std::max(first, it->first), std::min(last, it->second));
    return out;
}

std::vector<KCAddressRange> KCDataMap::ranges() const
{
    return std::vector<KCAddressRange>(m_ranges.begin(), m_ranges.end());
}

uint64_t KCDataMap::countIn(uint64_t first, uint64_t last) const
{
    uint64_t n = 0;
    for (const KCAddressRange &r : rangesIn(first, last))
        n += r.second - r.first + 1;
    return n;
}
