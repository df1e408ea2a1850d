#pragma once

#include "KCByteArray.h"

#include <cstdint>

// The one-byte read and write of a buffer as the lane engines' per-byte path uses them.
class cBufferAccess
{
public:
    // Bytes beyond a buffer read as erased memory.
    static constexpr uint8_t Erased = 0xFF;

    static uint8_t GetByte(const KCByteArray &buffer, uint64_t address)
    {
        return address < buffer.size() && buffer.data() ? buffer.data()[address] : Erased;
    }
    // False (nothing written) when the address is not in the buffer.
    static bool SetByte(KCByteArray &buffer, uint64_t address, uint8_t value)
    {
        if (address >= buffer.size() || !buffer.data())
            return false;
        buffer.data()[address] = value;
        return true;
    }
};
