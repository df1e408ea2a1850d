#pragma once

#include <cstdint>

// What serial numbers are written into: the document's current buffer, seen from the serial
// code without it knowing the document.
class KCSerialTarget
{
public:
    virtual ~KCSerialTarget() = default;
    // False when there is no current buffer to write into.
    virtual bool hasSerialTarget() = 0;
    virtual uint64_t serialTargetSize() const = 0;
    virtual uint8_t serialByte(uint64_t address) const = 0;
    // Bytes written between begin and end are one change (one undo step).
    virtual void beginSerialWrite() = 0;
    virtual void writeSerialByte(uint64_t address, uint8_t value) = 0;
    virtual void endSerialWrite(bool changed) = 0;
    // The serial settings of the document changed (they belong to the project).
    virtual void serialSettingsChanged() = 0;
};
