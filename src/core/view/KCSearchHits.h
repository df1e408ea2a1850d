#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// What a find-all run keeps: the count of every hit, the first hits' addresses up to a limit,
// and the found bytes as merged address ranges for colouring. Overlapping and adjacent hits
// share one range, so a buffer full of hits costs one range; the range list has its own
// limit, past which further hits are counted but not coloured.
class KCSearchHits
{
public:
    static constexpr size_t DefaultListLimit = 100000;
    static constexpr size_t DefaultRangeLimit = 1000000;

    struct Range
    {
        uint64_t first;
        uint64_t last; // inclusive
    };

    explicit KCSearchHits(size_t listLimit = DefaultListLimit, size_t rangeLimit = DefaultRangeLimit)
        : m_listLimit(listLimit), m_rangeLimit(rangeLimit) {}

    // One hit covering address .. address + length - 1. Hits come in rising order.
    void add(uint64_t address, uint64_t length)
    {
        ++m_count;
        if (m_list.size() < m_listLimit)
            m_list.push_back(address);
        const uint64_t last = address + length - 1;
        if (!m_ranges.empty() && address <= m_ranges.back().last + 1) {
            if (last > m_ranges.back().last)
                m_ranges.back().last = last;
        } else if (m_ranges.size() < m_rangeLimit) {
            m_ranges.push_back({address, last});
        } else {
            m_rangesCut = true;
        }
    }
    void clear();

    uint64_t count() const { return m_count; }
    const std::vector<uint64_t> &list() const { return m_list; }
    bool listCut() const { return m_count > m_list.size(); }
    const std::vector<Range> &ranges() const { return m_ranges; }
    bool rangesCut() const { return m_rangesCut; }
    size_t listLimit() const { return m_listLimit; }
    void setListLimit(size_t limit) { m_listLimit = limit; }
    // Whether the byte at `address` belongs to a coloured hit.
    bool contains(uint64_t address) const;
    // Whether any coloured hit touches first..last.
    bool overlaps(uint64_t first, uint64_t last) const;

private:
    size_t m_listLimit;
    size_t m_rangeLimit;
    uint64_t m_count = 0;
    std::vector<uint64_t> m_list;
    std::vector<Range> m_ranges;
    bool m_rangesCut = false;
};
