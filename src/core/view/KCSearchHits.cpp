#include "view/KCSearchHits.h"

#include <algorithm>

void KCSearchHits::clear()
{
    m_count = 0;
    m_list.clear();
    m_ranges.clear();
    m_rangesCut = false;
}

bool KCSearchHits::overlaps(uint64_t first, uint64_t last) const
{
    auto it = std::upper_bound(m_ranges.begin(), m_ranges.end(), last,
                               [](uint64_t a, const Range &r) { return a < r.first; });
    return it != m_ranges.begin() && std::prev(it)->last >= first;
}

bool KCSearchHits::contains(uint64_t address) const
{
    auto it = std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                               [](uint64_t a, const Range &r) { return a < r.first; });
    if (it == m_ranges.begin())
        return false;
    --it;
    return address <= it->last;
}
