#include "KCLoadTarget.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

// Smallest growth step, so that many small records do not cause many reallocations.
constexpr uint64_t kMinGrowth = uint64_t(1) << 16;

} // namespace

KCLoadTarget::KCLoadTarget(KCByteArray &target, const KCLoadOptions &options, KCLoadResult &result)
    : m_target(target),
      m_result(result),
      m_rangeStart(options.rangeStart),
      m_rangeEnd(options.rangeLength > UINT64_MAX - options.rangeStart ? UINT64_MAX
                                                                       : options.rangeStart + options.rangeLength),
      m_grow(options.grow),
      m_fill(options.fill),
      m_originalSize(target.size()),
      m_size(target.size()),
      m_data(target.data())
{
}

void KCLoadTarget::closeRun()
{
    if (m_runEnd != UINT64_MAX) {
        m_ranges[m_runStart] = m_runEnd;
        m_runEnd = UINT64_MAX;
        m_fastLimit = 0;
    }
}

void KCLoadTarget::updateFastLimit()
{
    const auto next = m_ranges.lower_bound(m_runEnd);
    uint64_t limit = next == m_ranges.end() ? UINT64_MAX : next->first;
    limit = std::min(limit, m_rangeEnd);
    limit = std::min(limit, m_size > UINT64_MAX - m_rangeStart ? UINT64_MAX : m_rangeStart + m_size);
    m_fastLimit = limit;
}

bool KCLoadTarget::ensureSize(uint64_t needed)
{
    if (needed <= m_size)
        return true;
    const uint64_t cap = m_rangeEnd - m_rangeStart;
    uint64_t want = std::max({needed, m_size * 2, kMinGrowth, needed <= m_sizeHint ? m_sizeHint : 0});
    want = std::max(needed, std::min(want, cap));
    if (!m_target.resize(want, m_fill)) {
        if (want == needed || !m_target.resize(needed, m_fill))
            return false;
        want = needed;
    }
    m_size = want;
    m_data = m_target.data();
    return true;
}

bool KCLoadTarget::putSlow(uint64_t address, const uint8_t *bytes, size_t n)
{
    if (n == 0)
        return true;
    const uint64_t end = address + n;
    uint64_t a = std::max(address, m_rangeStart);
    uint64_t b = std::min(end, m_rangeEnd);
    if (a >= b) {
        m_skippedOutside += n;
        return true;
    }
    m_skippedOutside += (a - address) + (end - b);

    if (!m_grow) {
        const uint64_t limit = m_size > UINT64_MAX - m_rangeStart ? UINT64_MAX : m_rangeStart + m_size;
        if (b > limit) {
            const uint64_t keep = std::max(a, limit);
            m_skippedBeyond += b - keep;
            b = keep;
        }
        if (a >= b)
            return true;
    } else if (!ensureSize(b - m_rangeStart)) {
        return false;
    }
    bytes += a - address;

    closeRun();
    auto it = m_ranges.upper_bound(a);
    if (it != m_ranges.begin() && std::prev(it)->second >= a)
        --it;
    uint64_t mergedStart = a;
    uint64_t mergedEnd = b;
    while (it != m_ranges.end() && it->first <= b) {
        const uint64_t is = std::max(a, it->first);
        const uint64_t ie = std::min(b, it->second);
        if (is < ie && !m_overlapDiffers &&
            std::memcmp(m_data + (is - m_rangeStart), bytes + (is - a), size_t(ie - is)) != 0)
            m_overlapDiffers = true;
        mergedStart = std::min(mergedStart, it->first);
        mergedEnd = std::max(mergedEnd, it->second);
        it = m_ranges.erase(it);
    }
    std::memcpy(m_data + (a - m_rangeStart), bytes, size_t(b - a));
    m_runStart = mergedStart;
    m_runEnd = mergedEnd;
    updateFastLimit();
    return true;
}

void KCLoadTarget::finish(KCFileMessage &sink, const std::string &fileName)
{
    closeRun();
    m_result.ranges.clear();
    m_result.bytesLoaded = 0;
    for (const auto &r : m_ranges) {
        if (!m_result.ranges.empty() && m_result.ranges.back().second + 1 == r.first)
            m_result.ranges.back().second = r.second - 1;
        else
            m_result.ranges.emplace_back(r.first, r.second - 1);
        m_result.bytesLoaded += r.second - r.first;
    }
    if (!m_ranges.empty()) {
        m_result.lowest = m_ranges.begin()->first - m_rangeStart;
        m_result.highest = m_ranges.rbegin()->second - 1 - m_rangeStart;
    }
    m_result.skipped = m_skippedOutside + m_skippedBeyond;

    // Growth goes in large steps; give back what no record reached.
    if (m_grow && m_size > m_originalSize) {
        const uint64_t used = m_ranges.empty() ? 0 : m_result.highest + 1;
        const uint64_t finalSize = std::max(m_originalSize, used);
        if (finalSize < m_size && m_target.resize(finalSize, m_fill))
            m_size = finalSize;
    }

    char text[160];
    if (m_skippedOutside) {
        std::snprintf(text, sizeof text, "%llu data bytes lie outside the load range and were skipped",
                      (unsigned long long)m_skippedOutside);
        sink.message(KCFileMessage::Warning, fileName, 0, text);
    }
    if (m_skippedBeyond) {
        std::snprintf(text, sizeof text,
                      "%llu data bytes lie beyond the end of the buffer (0x%llX bytes) and were skipped",
                      (unsigned long long)m_skippedBeyond, (unsigned long long)m_size);
        sink.message(KCFileMessage::Warning, fileName, 0, text);
    }
    if (m_overlapDiffers)
        sink.message(KCFileMessage::Warning, fileName, 0,
                     "records write different values to the same address; the later record wins");
}
