#include "KCBinFile.h"

#include "KCLoadTarget.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <thread>
#include <unistd.h>

namespace {

// Largest single read: keeps each system call bounded.
constexpr uint64_t MaxReadChunk = uint64_t(1) << 30;
// From this size a raw image loaded into an empty buffer shares the file's cached pages when
// the buffer can; smaller ones are read, which costs little and takes no lease on the file.
constexpr uint64_t ShareFileThreshold = uint64_t(64) << 20;
// From this size a raw image is read by two threads.
constexpr uint64_t ParallelReadThreshold = uint64_t(64) << 20;

std::string format(const char *fmt, unsigned long long a, unsigned long long b = 0)
{
    char text[160];
    std::snprintf(text, sizeof text, fmt, a, b);
    return text;
}

} // namespace

KCLoadResult KCBinFile::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    KCLoadResult result;
    if (options.fileOffset > file.size) {
        m_sink.message(KCFileMessage::Error, file.name, 0,
                       format("file offset 0x%llX lies beyond the file size 0x%llX", options.fileOffset, file.size));
        return result;
    }
    const uint64_t available = file.size - options.fileOffset;
    uint64_t limit = options.rangeLength > options.bufferOffset ? options.rangeLength - options.bufferOffset : 0;
    if (!options.grow)
        limit = std::min(limit, target.size() > options.bufferOffset ? target.size() - options.bufferOffset : 0);
    const uint64_t count = std::min(available, limit);
    // Said before the reading starts: a large file takes a while, and the user should know
    // at once that not all of it will be in the buffer.
    if (available > count)
        m_sink.message(KCFileMessage::Warning, file.name, 0,
                       format("only the first %llu of the file's %llu bytes are read", count, available));

    // Growing for bytes the file then fills entirely: no fill pass over them first.
    const uint64_t end = options.bufferOffset + count;
    const bool shared = count >= ShareFileThreshold && file.fd >= 0 && options.grow && options.bufferOffset == 0
                        && target.size() == 0 && target.shareFile(file.fd, options.fileOffset, count);
    if (!shared && options.grow && options.bufferOffset <= target.size() && end > target.size()
        && !target.resizeForOverwrite(end)) {
        m_sink.message(KCFileMessage::Error, file.name, 0, format("not enough memory for 0x%llX bytes", end));
        return result;
    }
    if (count && file.fd >= 0 && end <= target.size()) {
        if (!shared && !readDirect(file, target.data() + options.bufferOffset, options.fileOffset, count))
            return result;
        const uint64_t address = options.rangeStart + options.bufferOffset;
        result.bytesLoaded = count;
        result.lowest = options.bufferOffset;
        result.highest = end - 1;
        result.ranges.emplace_back(address, address + count - 1);
    } else {
        KCLoadTarget loader(target, options, result);
        if (count && !loader.put(options.rangeStart + options.bufferOffset, file.data + options.fileOffset, size_t(count))) {
            m_sink.message(KCFileMessage::Error, file.name, 0,
                           format("not enough memory for 0x%llX bytes at buffer offset 0x%llX", count,
                                  options.bufferOffset));
            loader.finish(m_sink, file.name);
            return result;
        }
        loader.finish(m_sink, file.name);
    }
    result.records = count ? 1 : 0;
    if (!options.grow && available < limit)
        m_sink.message(KCFileMessage::Info, file.name, 0,
                       format("file holds %llu bytes; the remaining %llu bytes of the buffer keep the fill value",
                              available, limit - available));
    result.ok = true;
    return result;
}

bool KCBinFile::readRange(int fd, uint8_t *to, uint64_t offset, uint64_t count, int &error)
{
    uint64_t done = 0;
    while (done < count) {
        const ssize_t got = ::pread(fd, to + done, size_t(std::min<uint64_t>(count - done, MaxReadChunk)),
                                    off_t(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            error = got < 0 ? errno : 0;
            return false;
        }
        done += uint64_t(got);
    }
    return true;
}

bool KCBinFile::readDirect(const KCInputFile &file, uint8_t *to, uint64_t offset, uint64_t count)
{
    // The kernel copies straight from its cache into the buffer: one pass, no mapping. A
    // large image is read in two halves at once; the copy into fresh memory is what costs.
    int error = 0, secondError = 0;
    bool ok;
    if (count >= ParallelReadThreshold && std::thread::hardware_concurrency() >= 2) {
        const uint64_t half = count / 2;
        bool secondOk = false;
        std::thread second([&] { secondOk = readRange(file.fd, to + half, offset + half, count - half, secondError); });
        ok = readRange(file.fd, to, offset, half, error);
        second.join();
        if (ok && !secondOk) {
            ok = false;
            error = secondError;
        }
    } else {
        ok = readRange(file.fd, to, offset, count, error);
    }
    if (!ok)
        m_sink.message(KCFileMessage::Error, file.name, 0,
                       error ? std::string("cannot read the file: ") + std::strerror(error)
                             : std::string("the file became shorter while it was read"));
    return ok;
}

bool KCBinFile::Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
                     const KCSaveOptions &)
{
    if (size && !out.write(data, size_t(size))) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "cannot write the file");
        return false;
    }
    return true;
}
