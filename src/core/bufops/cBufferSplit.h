#pragma once

#include "KCByteArray.h"

#include <cstdint>
#include <vector>

// Takes one lane out of a wide buffer: of every wide unit of S bytes in a range, the D bytes
// of the lane go to consecutive destination addresses. Failures are thrown as the integer
// codes of cLaneError.
class cBufferSplit
{
public:
    // Throws 379, 380, 381, 382, 386, 387 in that order.
    cBufferSplit(KCByteArray &source, uint32_t sourceWidth, KCByteArray &dest, uint32_t destWidth);
    virtual ~cBufferSplit();

    // Throws 388 unless last - first + 1 is a multiple of S, and 385 at the first byte the
    // destination refuses, keeping what was written before it.
    void Run(uint64_t first, uint64_t last, uint32_t lane);
    // The byte-by-byte form of Run, which Run takes whenever the fast copy cannot be used.
    void RunPerByte(uint64_t first, uint64_t last, uint32_t lane);
    // Every lane at once, lane l into dests[l]: the bytes and refusals of Run(first, last, l)
    // for l = 0, 1, ... in turn, with the source read only once when all of them fit.
    static void RunAllLanes(KCByteArray &source, uint32_t sourceWidth, const std::vector<KCByteArray *> &dests,
                            uint32_t destWidth, uint64_t first, uint64_t last);
    uint64_t GetDestStart(uint64_t address) const { return address / m_sourceUnit * m_destUnit; }
    uint64_t GetDestEnd(uint64_t address) const { return (address / m_sourceUnit + 1) * m_destUnit - 1; }

    uint32_t GetSourceUnit() const { return m_sourceUnit; }
    uint32_t GetDestUnit() const { return m_destUnit; }

private:
    void checkRange(uint64_t first, uint64_t last) const;

    KCByteArray &m_source;
    KCByteArray &m_dest;
    uint32_t m_sourceWidth;
    uint32_t m_sourceUnit;
    uint32_t m_destWidth;
    uint32_t m_destUnit;
};
