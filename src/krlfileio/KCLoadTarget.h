#pragma once

#include "KCFileFormat.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <string>

// Puts the data of the records into the target on behalf of every reader: maps file
// addresses to buffer offsets, skips (and counts) bytes outside the load range, grows the
// target with the fill byte, notices overlapping writes with different values and keeps the
// merged address ranges. Called per record; a record continuing the previous one costs one
// comparison and a memcpy.
class KCLoadTarget
{
public:
    KCLoadTarget(KCByteArray &target, const KCLoadOptions &options, KCLoadResult &result);

    // Stores n bytes at file address `address`. False only when the target cannot grow.
    bool put(uint64_t address, const uint8_t *bytes, size_t n)
    {
        if (address == m_runEnd && address + n <= m_fastLimit) {
            std::memcpy(m_data + (address - m_rangeStart), bytes, n);
            m_runEnd += n;
            return true;
        }
        return putSlow(address, bytes, n);
    }

    // Most files put their data from a low address on; growing straight to the most the
    // file can hold (bytes) then saves the copies of step-wise growth.
    void setSizeHint(uint64_t bytes) { m_sizeHint = bytes; }

    // Trims the target to what was loaded (never below its original size), fills in the
    // result's ranges and counts, and gives the once-per-load warnings. Call it on every
    // exit, also after an error.
    void finish(KCFileMessage &sink, const std::string &fileName);

private:
    bool putSlow(uint64_t address, const uint8_t *bytes, size_t n);
    bool ensureSize(uint64_t size);
    void closeRun();
    void updateFastLimit();

    KCByteArray &m_target;
    KCLoadResult &m_result;
    uint64_t m_rangeStart;
    uint64_t m_rangeEnd;    // exclusive, saturated
    bool m_grow;
    uint8_t m_fill;
    uint64_t m_originalSize;
    uint64_t m_size;
    uint64_t m_sizeHint = 0;
    uint8_t *m_data;

    // The run being extended, [m_runStart, m_runEnd), kept out of m_ranges; m_runEnd is
    // UINT64_MAX while there is none. m_fastLimit is the first address the fast path may
    // not touch: the next loaded range, the range end or the end of the target.
    uint64_t m_runStart = 0;
    uint64_t m_runEnd = UINT64_MAX;
    uint64_t m_fastLimit = 0;
    std::map<uint64_t, uint64_t> m_ranges; // start -> end (exclusive), file addresses

    uint64_t m_skippedOutside = 0;
    uint64_t m_skippedBeyond = 0;
    bool m_overlapDiffers = false;
};
