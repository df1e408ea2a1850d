#include "bufops/KCShuffleBufferInitData.h"

KCShuffleBufferInitData::KCShuffleBufferInitData(const KCShuffleBufferInitData &other)
    : m_sourceWidth(other.m_sourceWidth), m_destWidth(other.m_destWidth), m_lane(other.m_lane),
      m_firstAddress(other.m_firstAddress), m_lastAddress(other.m_lastAddress), m_destDocIndex(other.m_destDocIndex)
{
}

KCShuffleBufferInitData &KCShuffleBufferInitData::operator=(const KCShuffleBufferInitData &other)
{
    m_sourceWidth = other.m_sourceWidth;
    m_destWidth = other.m_destWidth;
    m_lane = other.m_lane;
    m_firstAddress = other.m_firstAddress;
    m_lastAddress = other.m_lastAddress;
    m_destDocIndex = other.m_destDocIndex;
    return *this;
}

KCShuffleBufferInitData::~KCShuffleBufferInitData() = default;
