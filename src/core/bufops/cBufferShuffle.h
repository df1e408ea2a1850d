#pragma once

#include "KCByteArray.h"

#include <cstdint>

// Writes a narrow buffer into one lane of a wide buffer: source byte a goes to
// S*lane + (a mod S) + (a - a mod S) * N, S the narrow unit and N the lanes per wide unit.
// Failures are thrown as the integer codes of cLaneError.
class cBufferShuffle
{
public:
    // Throws 379..383 in that order; equal widths are accepted (one lane).
    cBufferShuffle(KCByteArray &source, uint32_t sourceWidth, KCByteArray &dest, uint32_t destWidth);
    virtual ~cBufferShuffle();

    // Throws 384 unless lane < D. Lanes from N up to D-1 are accepted on purpose: they land
    // in the following units.
    uint64_t MapAddress(uint64_t address, uint32_t lane) const;
    // Copies source first..last into the lane, in rising order; throws 385 at the first
    // byte the destination refuses, keeping what was written before it.
    void Run(uint64_t first, uint64_t last, uint32_t lane);
    // The byte-by-byte form of Run, which Run takes whenever the fast copy cannot be used.
    void RunPerByte(uint64_t first, uint64_t last, uint32_t lane);
    uint64_t GetDestStart(uint64_t address) const { return MapAddress(address, 0); }
    uint64_t GetDestEnd(uint64_t address) const { return MapAddress(address, m_laneCount - 1); }

    uint32_t GetSourceUnit() const { return m_sourceUnit; }
    uint32_t GetDestUnit() const { return m_destUnit; }
    uint32_t GetLaneCount() const { return m_laneCount; }

private:
    KCByteArray &m_source;
    KCByteArray &m_dest;
    uint32_t m_sourceWidth;
    uint32_t m_sourceUnit;
    uint32_t m_destWidth;
    uint32_t m_destUnit;
    uint32_t m_laneCount;
};
