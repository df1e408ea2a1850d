#pragma once

#include <cstdint>
#include <string>

// One data view that a device asks for: the layout it shows and over which bytes. The views
// define the layout from this when the document tells them a device was selected.
class KCDataViewControl
{
public:
    KCDataViewControl() = default;
    KCDataViewControl(std::string layoutName, int scrollFlags, int64_t first, int64_t last, int32_t addressOffset = 0)
        : m_layoutName(std::move(layoutName)), m_scrollFlags(scrollFlags), m_first(first), m_last(last),
          m_addressOffset(addressOffset)
    {
    }

    const std::string &layoutName() const { return m_layoutName; }
    int scrollFlags() const { return m_scrollFlags; }
    int64_t first() const { return m_first; }
    int64_t last() const { return m_last; }
    int32_t addressOffset() const { return m_addressOffset; }

private:
    std::string m_layoutName;
    int m_scrollFlags = 0;
    int64_t m_first = 0;
    int64_t m_last = -1;
    int32_t m_addressOffset = 0;
};
