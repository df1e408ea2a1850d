#pragma once

#include "KCDeviceText.h"
#include "KCFileFormat.h"

#include <vector>

// One load of a JEDEC file: frame, fields, fuse array, both checksums. Lines are only
// counted when a message needs one.
class KCJedecReader
{
public:
    KCJedecReader(KCFileMessage &sink, const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
        : m_sink(sink), m_file(file), m_d(file.data), m_text(file.data, file.size), m_target(target),
          m_options(options)
    {
    }

    KCLoadResult run();

private:
    bool parseFrame();
    bool parseField(size_t begin, size_t end);
    bool parseFuseCount(size_t begin, size_t end);
    bool parseBinaryList(size_t begin, size_t end);
    bool parseHexList(size_t begin, size_t end);
    bool parseChecksum(size_t begin, size_t end);
    bool parseBit(size_t begin, size_t end, int &bit) const;
    bool parseDecimal(size_t &p, size_t end, uint64_t &value) const;
    bool onlyBlanks(size_t p, size_t end) const;
    bool fuseListStart(size_t begin, size_t &p, size_t end, uint64_t &first);
    void finishFuses();
    bool storeFuses();
    void checkTransmission();
    KCFileMessage::Severity checksumSeverity() const
    {
        return m_options.ignoreChecksums ? KCFileMessage::Warning : KCFileMessage::Error;
    }

    void report(KCFileMessage::Severity severity, size_t pos, const char *format, ...)
        __attribute__((format(printf, 4, 5)));

    KCFileMessage &m_sink;
    const KCInputFile &m_file;
    const uint8_t *m_d;
    KCDeviceText m_text;
    KCByteArray &m_target;
    const KCLoadOptions &m_options;
    KCLoadResult m_result;

    bool m_hasStx = false;
    size_t m_stxPos = 0;
    bool m_hasEtx = false;
    size_t m_fieldsBegin = 0;
    size_t m_fieldsEnd = 0;

    bool m_hasQf = false;
    uint64_t m_qf = 0;
    int m_default = -1;
    size_t m_checksumPos = 0;
    std::vector<uint8_t> m_fuses;
};
