#pragma once

#include "KCByteArray.h"

#include <cstdint>

// A fixed piece of someone else's memory seen as a buffer from address 0, so that an engine
// can work on part of a large buffer through a small one.
class cByteWindow : public KCByteArray
{
public:
    cByteWindow(uint8_t *data, uint64_t size) : m_data(data), m_size(size) {}

    uint64_t size() const override { return m_size; }
    uint8_t *data() override { return m_data; }
    const uint8_t *data() const override { return m_data; }
    // A window neither grows nor shrinks.
    bool resize(uint64_t newSize, uint8_t) override { return newSize == m_size; }

private:
    uint8_t *m_data;
    uint64_t m_size;
};
