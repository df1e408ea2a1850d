#pragma once

#include "view/TAG_SEARCH_RANGE.h"

#include <atomic>
#include <cstdint>
#include <vector>

class KCSearchHits;

// Finds a byte pattern in buffer memory. The rule is the byte-by-byte scan: at a position
// whose byte is the pattern's first, compare the rest; after a partial match of k bytes go on
// at the first of those k bytes (after the first) that equals the pattern's first byte, or
// past them all. That skip never passes a start that could match, so the rule finds exactly
// the leftmost match, and the memory scan below (a vector compare of the pattern's first and
// last byte, then the bytes between) gives the same hits at memory speed. The worker thread
// reads the stop flag and publishes its position once per block.
class cBufferSearch
{
public:
    // Bytes of candidate start positions scanned between two looks at the stop flag.
    static constexpr uint64_t BlockBytes = uint64_t(1) << 20;

    cBufferSearch() = default;
    explicit cBufferSearch(std::vector<uint8_t> pattern) : m_pattern(std::move(pattern)) {}

    void setPattern(std::vector<uint8_t> pattern) { m_pattern = std::move(pattern); }
    const std::vector<uint8_t> &pattern() const { return m_pattern; }
    // Only hits at multiples of `alignment` count (2 for words in the word layout).
    void setAlignment(unsigned alignment) { m_alignment = alignment ? alignment : 1; }
    unsigned alignment() const { return m_alignment; }
    // Optional: set by another thread to end a scan early (it then finds nothing further).
    void setStopFlag(const std::atomic<bool> *stop) { m_stop = stop; }
    // Optional: receives the address being scanned, for progress shown by another thread.
    void setProgress(std::atomic<int64_t> *position) { m_position = position; }
    bool stopped() const { return m_stop && m_stop->load(std::memory_order_relaxed); }

    // The byte-by-byte rule over byteAt(address), from s while the pattern fits before e
    // (inclusive); the hit's address or -1. Ignores the alignment.
    template <class ByteAt>
    int64_t matchStepByRule(ByteAt byteAt, int64_t s, int64_t e) const;

    // The first hit at or after s that ends at or before e; mem holds addresses 0..size-1.
    int64_t next(const uint8_t *mem, uint64_t size, int64_t s, int64_t e) const;
    // The last hit starting at or before s and not before first, that ends within the buffer.
    int64_t previous(const uint8_t *mem, uint64_t size, int64_t s, int64_t first) const;
    // Every hit from s to e, each one byte after the previous at the earliest (overlapping
    // hits count); returns the number added.
    uint64_t findAll(const uint8_t *mem, uint64_t size, int64_t s, int64_t e, KCSearchHits &hits) const;

    // The range of a buffer description, clamped to 0..size-1 (an empty buffer gives 0..0);
    // without a description 0..-1, which finds nothing.
    static TAG_SEARCH_RANGE rangeFromDescription(const TAG_SEARCH_RANGE *description, uint64_t bufferSize);

private:
    // Calls onHit(address) for each match starting in first..last (last + n - 1 lies in the
    // buffer) in rising order until it returns false; false when it was stopped that way.
    template <class OnHit>
    bool scan(const uint8_t *mem, uint64_t first, uint64_t last, OnHit &onHit) const;
    // Clips s..e to the buffer; false when no start is left. lastStart is the last start whose
    // match still ends at or before e.
    bool clip(uint64_t size, int64_t s, int64_t e, uint64_t &first, uint64_t &lastStart) const;

    std::vector<uint8_t> m_pattern;
    unsigned m_alignment = 1;
    const std::atomic<bool> *m_stop = nullptr;
    std::atomic<int64_t> *m_position = nullptr;
};

template <class ByteAt>
int64_t cBufferSearch::matchStepByRule(ByteAt byteAt, int64_t s, int64_t e) const
{
    const int64_t n = static_cast<int64_t>(m_pattern.size());
    if (n == 0)
        return -1;
    const uint8_t *p = m_pattern.data();
    for (int64_t i = s; i <= e - n + 1 && !stopped();) {
        if (byteAt(i) != p[0]) {
            ++i;
            continue;
        }
        int64_t k = 1;
        while (k < n && byteAt(i + k) == p[k])
            ++k;
        if (k == n)
            return i;
        int64_t j = 1;
        while (j < k && p[j] != p[0])
            ++j;
        i += j;
    }
    return -1;
}
