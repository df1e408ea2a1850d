#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

// Inclusive address range [first, last].
using KCAddressRange = std::pair<uint64_t, uint64_t>;

// A set of buffer addresses kept as disjoint, non-adjacent ranges: which bytes of an image
// hold data as opposed to fill, or which bytes changed since the image was loaded. Cost
// follows the number of ranges, never the number of bytes.
class KCDataMap
{
public:
    void clear() { m_ranges.clear(); }
    bool isEmpty() const { return m_ranges.empty(); }

    // Adds [first, last] (first <= last), merging with touching ranges.
    void add(uint64_t first, uint64_t last);
    void add(const std::vector<KCAddressRange> &ranges);
    // Removes [first, last] from the set.
    void remove(uint64_t first, uint64_t last);
    // Drops everything at and above `size` (the buffer shrank).
    void truncate(uint64_t size);

    bool contains(uint64_t address) const;
    // The ranges of the set that lie inside [first, last], cut to it.
    std::vector<KCAddressRange> rangesIn(uint64_t first, uint64_t last) const;
    std::vector<KCAddressRange> ranges() const;
    uint64_t rangeCount() const { return m_ranges.size(); }
    // Number of addresses in the set inside [first, last].
    uint64_t countIn(uint64_t first, uint64_t last) const;
    uint64_t lowest() const { return m_ranges.begin()->first; }
    uint64_t highest() const { return m_ranges.rbegin()->second; }

    bool operator==(const KCDataMap &other) const { return m_ranges == other.m_ranges; }

private:
    std::map<uint64_t, uint64_t> m_ranges; // first -> last, inclusive
};
