#pragma once

#include "view/KCSearchHits.h"
#include "view/TAG_SEARCH_RANGE.h"
#include "view/cBufferSearch.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

class KCMainProgDataExChange;

// The search dialog without a window: pattern, range, where the next search starts, the
// hit counter and the result of a run. A run is prepared and finished on the user-interface
// thread; run() alone works on the worker thread, on the buffer memory, while the dialog is
// modal and nothing else writes the buffer.
class KCSearchModel
{
public:
    // Find-all's colour pair: black on red 0xC8, green 0x64, blue 0x64.
    static constexpr uint32_t HitText = 0x000000;
    static constexpr uint32_t HitBackground = 0xC86464;

    enum Outcome { NotFound, Found, FoundAll };

    // A host string and its arguments for the dialog to show.
    struct Message
    {
        unsigned stringId = 0;
        std::vector<int64_t> arguments;
        std::string text(const KCMainProgDataExChange *host) const;
    };

    // The hit counter is process-wide and starts at 0 with every dialog.
    KCSearchModel();

    void setRange(const TAG_SEARCH_RANGE &range);
    const TAG_SEARCH_RANGE &range() const { return m_range; }
    void setPattern(const std::vector<uint8_t> &pattern);
    const std::vector<uint8_t> &pattern() const { return m_search.pattern(); }
    void setAlignment(unsigned alignment) { m_search.setAlignment(alignment); }
    void setListLimit(size_t limit) { m_hits.setListLimit(limit); }

    // Where the next find-next starts: one past the last hit, never before the range.
    int64_t nextStart() const { return m_nextStart; }
    // Starts the following searches at `address` (the caret), forgetting the last hit.
    void startAt(int64_t address);
    int64_t lastHit() const { return m_lastHit; }

    // User-interface thread: fixes what run() does. Find-all covers the range from its first
    // address, or from the next start when `fromNextStart`.
    void prepare(bool findAll, bool fromNextStart = false);
    bool isFindAll() const { return m_findAll; }
    // Worker thread: one find-next step or the whole find-all.
    void run(const uint8_t *mem, uint64_t size);
    // User-interface thread, after the worker's message: applies the hit and counter rules
    // and returns what to show.
    Outcome finish();
    Message message() const { return m_message; }
    // The progress line for the timer: the address being scanned.
    Message progress() const;

    // Set from any thread; the worker stops at its next look and finds nothing further.
    void stop() { m_stop.store(true); }
    bool wasStopped() const { return m_stopped; }

    int64_t foundAddress() const { return m_found; }
    uint64_t foundLength() const { return pattern().size(); }
    const KCSearchHits &hits() const { return m_hits; }

    static uint64_t hitCounter() { return s_hitCounter.load(); }

private:
    static std::atomic<uint64_t> s_hitCounter;

    cBufferSearch m_search;
    TAG_SEARCH_RANGE m_range;
    int64_t m_nextStart = 0;
    int64_t m_lastHit = -1;
    bool m_findAll = false;
    int64_t m_runStart = 0;
    int64_t m_found = -1;
    KCSearchHits m_hits;
    std::atomic<bool> m_stop{false};
    std::atomic<int64_t> m_position{0};
    bool m_stopped = false;
    Message m_message;
};
