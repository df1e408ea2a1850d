#pragma once

#include <cstddef>
#include <cstdint>

// Growable byte storage that a reader loads into. The document's buffer implements it,
// so a reader writes straight into the programmer buffer without an intermediate copy.
// Calls are per record or per block, never per byte.
class KCByteArray
{
public:
    virtual ~KCByteArray() = default;

    virtual uint64_t size() const = 0;
    virtual uint8_t *data() = 0;
    virtual const uint8_t *data() const = 0;

    // Grows or shrinks to newSize, keeping the existing bytes; new bytes get `fill`.
    // Returns false when the memory cannot be had; the content is then unchanged.
    virtual bool resize(uint64_t newSize, uint8_t fill) = 0;

    // Grows to newSize leaving the new bytes unspecified, for a caller that writes every one
    // of them at once (a raw image): saves a pass over memory that is overwritten anyway.
    virtual bool resizeForOverwrite(uint64_t newSize) { return resize(newSize, 0); }

    // Makes `count` bytes of the open file `fd`, from `fileOffset`, the whole content of an
    // empty array without copying them, when the storage can share the file's cached pages
    // and keep them from changing with the file. Returns false when it cannot; the caller
    // then reads the bytes.
    virtual bool shareFile(int fd, uint64_t fileOffset, uint64_t count)
    {
        (void)fd;
        (void)fileOffset;
        (void)count;
        return false;
    }
};
