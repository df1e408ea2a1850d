#pragma once

#include <cstdint>

// The shuffle dialog's initial values.
class KCShuffleBufferInitData
{
public:
    KCShuffleBufferInitData() = default;
    KCShuffleBufferInitData(const KCShuffleBufferInitData &other);
    KCShuffleBufferInitData &operator=(const KCShuffleBufferInitData &other);
    virtual ~KCShuffleBufferInitData();

    uint32_t m_sourceWidth = 0;  // bits
    uint32_t m_destWidth = 0;    // bits
    uint32_t m_lane = 0;
    uint32_t m_firstAddress = 0;
    uint32_t m_lastAddress = 0;
    uint32_t m_destDocIndex = 0; // in the list of documents that can receive the data
};
