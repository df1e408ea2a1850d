#pragma once

#include "KCByteArray.h"
#include "KCFileMessage.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// The whole input file, read once (mapped or read in one go) by the caller.
struct KCInputFile
{
    std::string name;
    const uint8_t *data = nullptr;
    size_t size = 0;
    // An open descriptor of the same file, or -1. A reader that copies the bytes as they
    // are may read them from it straight into the target instead of through `data`.
    int fd = -1;
};

struct KCLoadOptions
{
    uint64_t rangeStart = 0;                 // file address that lands on buffer offset 0
    uint64_t rangeLength = uint64_t(1) << 32; // addresses accepted: [rangeStart, rangeStart + rangeLength)
    uint8_t fill = 0xFF;                     // value of the bytes a grown target gets
    bool grow = true;                        // the target may grow to hold the data in range
    uint64_t fileOffset = 0;                 // binary: first file byte read
    uint64_t headerBytes = 0;                // OTP: bytes skipped before the image
    uint64_t expectedSize = 0;               // OTP: expected image size, 0 = not known
    uint64_t bufferOffset = 0;               // binary: buffer offset that receives the first byte read
    bool ignoreChecksums = false;            // "load anyway": a checksum mismatch only warns
    bool tiTaggedWordAddress = false;        // TI-Tagged: tag-9 addresses count 16-bit words
};

struct KCLoadResult
{
    bool ok = false;
    uint64_t records = 0;      // records or lines that carried data
    uint64_t bytesLoaded = 0;  // bytes written into the target
    uint64_t skipped = 0;      // data bytes outside the accepted range
    uint64_t lowest = UINT64_MAX; // lowest buffer offset written
    uint64_t highest = 0;         // highest buffer offset written, inclusive (valid when bytesLoaded > 0)
    std::vector<std::pair<uint64_t, uint64_t>> ranges; // file-address ranges loaded, [first, last], merged
    bool hasStartAddress = false;
    uint64_t startAddress = 0;

    // JEDEC fuse maps
    uint64_t fuseCount = 0;
    bool hasFuseChecksum = false;
    uint16_t statedFuseChecksum = 0;
    uint16_t computedFuseChecksum = 0;
    bool hasTransmissionChecksum = false;
    uint16_t statedTransmissionChecksum = 0;
    uint16_t computedTransmissionChecksum = 0;
};

struct KCSaveOptions
{
    uint64_t startAddress = 0;     // file address of data[0]
    unsigned bytesPerRecord = 16;  // Intel and Motorola data bytes per record
    bool crlf = true;              // line end CR LF (default) or LF
    std::string header;            // Motorola S0 text, JEDEC header note
    bool hasEntryPoint = false;    // Intel 05 / Motorola S7-S9 execution start address
    uint32_t entryPoint = 0;
    // Record formats: only these runs of data, as offsets [first, last] into data, ascending
    // and apart; empty: all of data. Gaps then stay gaps instead of records of fill bytes.
    std::vector<std::pair<uint64_t, uint64_t>> segments;

    // The runs to write for `size` bytes of data: the segments inside it, or all of it.
    std::vector<std::pair<uint64_t, uint64_t>> runs(uint64_t size) const
    {
        std::vector<std::pair<uint64_t, uint64_t>> r;
        if (segments.empty()) {
            if (size)
                r.emplace_back(0, size - 1);
            return r;
        }
        for (const auto &seg : segments)
            if (seg.first <= seg.second && seg.first < size)
                r.emplace_back(seg.first, std::min(seg.second, size - 1));
        return r;
    }
};

// Where a writer sends its output; the writer hands over large blocks.
class KCOutputStream
{
public:
    virtual ~KCOutputStream() = default;
    virtual bool write(const void *data, size_t size) = 0;

    // Block writes let a writer that knows its output length fill it from several threads
    // in any order. beginBlock(length) is false when the stream cannot (a pipe, a string):
    // the writer then writes in order. Otherwise writeAt(offset, ...) may be called from
    // any thread for offsets inside the block, and endBlock() continues after it.
    virtual bool beginBlock(uint64_t) { return false; }
    virtual bool writeAt(uint64_t, const void *, size_t) { return false; }
    virtual bool endBlock() { return false; }
};

// One programmer file format. Messages go to the sink given at construction; every
// error names the file and, for text formats, the 1-based line.
class KCFileFormat
{
public:
    explicit KCFileFormat(KCFileMessage &sink) : m_sink(sink) {}
    virtual ~KCFileFormat() = default;

    // Loads into target (buffer offset = file address - rangeStart). Bytes already in
    // the target that the file does not define keep their value. On an error what was
    // loaded so far stays in the target and ok is false.
    virtual KCLoadResult Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options) = 0;

    virtual bool canSave() const { return false; }
    // Writes data[0..size) as the file `fileName` (used in messages) to out.
    virtual bool Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
                      const KCSaveOptions &options);

protected:
    KCFileMessage &m_sink;
};
