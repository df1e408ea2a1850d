#include "KCBinFileOTP.h"

#include "KCBinFile.h"

#include <string>

KCLoadResult KCBinFileOTP::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    const uint64_t header = options.headerBytes;
    if (file.size < header) {
        m_sink.message(KCFileMessage::Error, file.name, 0,
                       "file smaller than its header: " + std::to_string(file.size) + " bytes, header " +
                           std::to_string(header) + " bytes");
        return KCLoadResult();
    }
    const uint64_t imageSize = file.size - header;
    if (options.expectedSize && imageSize != options.expectedSize)
        m_sink.message(KCFileMessage::Warning, file.name, 0,
                       "the file holds " + std::to_string(imageSize) + " image bytes after its header, the device " +
                           std::to_string(options.expectedSize));

    KCLoadOptions raw = options;
    raw.fileOffset = header;
    const KCLoadResult result = KCBinFile(m_sink).Load(file, target, raw);
    if (result.ok)
        m_sink.message(KCFileMessage::Info, file.name, 0,
                       "loaded as raw image after " + std::to_string(header) + " header bytes: file size " +
                           std::to_string(file.size) + " bytes, " + std::to_string(result.bytesLoaded) +
                           " bytes loaded");
    return result;
}
