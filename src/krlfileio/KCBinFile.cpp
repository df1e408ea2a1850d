#include "KCBinFile.h"

#include "KCLoadTarget.h"

#include <algorithm>
#include <cstdio>

namespace {

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

    KCLoadTarget loader(target, options, result);
    if (count && !loader.put(options.rangeStart + options.bufferOffset, file.data + options.fileOffset, size_t(count))) {
        m_sink.message(KCFileMessage::Error, file.name, 0,
                       format("not enough memory for 0x%llX bytes at buffer offset 0x%llX", count, options.bufferOffset));
        loader.finish(m_sink, file.name);
        return result;
    }
    loader.finish(m_sink, file.name);
    result.records = count ? 1 : 0;
    if (available > count)
        m_sink.message(KCFileMessage::Warning, file.name, 0, format("file truncated to %llu bytes", count));
    else if (!options.grow && available < limit)
        m_sink.message(KCFileMessage::Info, file.name, 0,
                       format("file holds %llu bytes; the remaining %llu bytes of the buffer keep the fill value",
                              available, limit - available));
    result.ok = true;
    return result;
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
