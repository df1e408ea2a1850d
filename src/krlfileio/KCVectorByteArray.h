#pragma once

#include "KCByteArray.h"

#include <new>
#include <vector>

// A KCByteArray over std::vector, for tools and tests.
class KCVectorByteArray : public KCByteArray
{
public:
    KCVectorByteArray() = default;
    explicit KCVectorByteArray(std::vector<uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    uint64_t size() const override { return m_bytes.size(); }
    uint8_t *data() override { return m_bytes.data(); }
    const uint8_t *data() const override { return m_bytes.data(); }
    bool resize(uint64_t newSize, uint8_t fill) override
    {
        if (newSize > m_bytes.max_size())
            return false;
        try {
            m_bytes.resize(size_t(newSize), fill);
        } catch (const std::bad_alloc &) {
            return false;
        }
        return true;
    }

    std::vector<uint8_t> &bytes() { return m_bytes; }
    const std::vector<uint8_t> &bytes() const { return m_bytes; }

private:
    std::vector<uint8_t> m_bytes;
};
