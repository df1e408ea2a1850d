#pragma once

#include <cstdint>

class KCDataDoc;

// The rules of the fill dialog, apart from its widgets: what it starts with and what OK does.
class KCBufferFillModel
{
public:
    enum Result { Filled, Refused, StartAfterEnd };

    // Start and end default to the image's data (its lowest and highest defined address), the
    // value to the host's fill byte. False without a buffer.
    explicit KCBufferFillModel(KCDataDoc &doc);
    bool isValid() const { return m_valid; }

    uint64_t maxAddress() const { return m_maxAddress; }
    uint64_t start() const { return m_start; }
    uint64_t end() const { return m_end; }
    unsigned value() const { return m_value; }

    // OK: start after end leaves the dialog open; otherwise the fill is made (or refused when
    // the end lies beyond the buffer, writing nothing) and the checksum recomputed.
    Result apply(uint64_t start, uint64_t end, unsigned value);

private:
    KCDataDoc &m_doc;
    bool m_valid = false;
    uint64_t m_maxAddress = 0;
    uint64_t m_start = 0;
    uint64_t m_end = 0;
    unsigned m_value = 0;
};
