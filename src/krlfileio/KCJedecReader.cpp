#include "KCJedecReader.h"

#include "KCJedecChecksum.h"
#include "KCJedecFile.h"
#include "KCLoadTarget.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr uint8_t kUnset = 0xFF;          // fuse that no field has given a state yet
constexpr size_t kChecksumDigits = 4;
constexpr uint64_t kDecimalCap = uint64_t(1) << 40; // far above kMaxFuseCount, far below overflow
constexpr size_t kMessageSize = 256;
constexpr size_t kWholeFile = SIZE_MAX; // message position meaning "no particular line"
constexpr size_t kNotFound = SIZE_MAX;

size_t find(const uint8_t *data, size_t from, size_t to, uint8_t c)
{
    if (from >= to)
        return kNotFound;
    const void *hit = memchr(data + from, c, to - from);
    return hit ? size_t(static_cast<const uint8_t *>(hit) - data) : kNotFound;
}

} // namespace

void KCJedecReader::report(KCFileMessage::Severity severity, size_t pos, const char *format, ...)
{
    char text[kMessageSize];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    m_sink.message(severity, m_file.name, pos == kWholeFile ? 0 : m_text.lineAt(pos), text);
}

bool KCJedecReader::onlyBlanks(size_t p, size_t end) const
{
    while (p < end && KCDeviceText::isSpace(m_d[p]))
        ++p;
    return p == end;
}

bool KCJedecReader::parseDecimal(size_t &p, size_t end, uint64_t &value) const
{
    while (p < end && KCDeviceText::isSpace(m_d[p]))
        ++p;
    const size_t start = p;
    value = 0;
    for (; p < end && m_d[p] >= '0' && m_d[p] <= '9'; ++p)
        value = std::min(value * 10 + (m_d[p] - '0'), kDecimalCap);
    return p > start;
}

bool KCJedecReader::parseBit(size_t begin, size_t end, int &bit) const
{
    size_t p = begin;
    while (p < end && KCDeviceText::isSpace(m_d[p]))
        ++p;
    if (p == end || (m_d[p] != '0' && m_d[p] != '1'))
        return false;
    bit = m_d[p] - '0';
    return onlyBlanks(p + 1, end);
}

KCLoadResult KCJedecReader::run()
{
    m_result.ok = parseFrame();
    if (!m_result.ok)
        return m_result;
    finishFuses();
    m_result.ok = storeFuses();
    checkTransmission();
    return m_result;
}

bool KCJedecReader::parseFrame()
{
    const size_t contentEnd = m_text.contentEnd();
    const size_t begin = m_text.bomLength();
    m_stxPos = find(m_d, begin, contentEnd, KCJedecFile::kStx);
    m_hasStx = m_stxPos != kNotFound;
    m_fieldsBegin = m_hasStx ? m_stxPos + 1 : begin;
    const size_t etx = find(m_d, m_fieldsBegin, contentEnd, KCJedecFile::kEtx);
    m_hasEtx = etx != kNotFound;
    m_fieldsEnd = m_hasEtx ? etx : contentEnd;

    for (size_t p = m_fieldsBegin; p < m_fieldsEnd; ++p) {
        const uint8_t c = m_d[p];
        if (!KCDeviceText::isPrintable(c) && !KCDeviceText::isSpace(c)) {
            report(KCFileMessage::Error, p, "control character 0x%02X: not a JEDEC text file", c);
            return false;
        }
    }

    const size_t star = find(m_d, m_fieldsBegin, m_fieldsEnd, '*');
    if (star == kNotFound) {
        report(KCFileMessage::Error, m_fieldsBegin, "no '*' after the header text");
        return false;
    }
    size_t p = star + 1;
    for (;;) {
        while (p < m_fieldsEnd && KCDeviceText::isSpace(m_d[p]))
            ++p;
        if (p == m_fieldsEnd)
            return true;
        const size_t end = find(m_d, p, m_fieldsEnd, '*');
        if (end == kNotFound) {
            report(KCFileMessage::Error, p, "field '%c' is not ended by '*'", m_d[p]);
            return false;
        }
        if (!parseField(p, end))
            return false;
        p = end + 1;
    }
}

bool KCJedecReader::parseField(size_t begin, size_t end)
{
    switch (m_d[begin]) {
    case 'Q':
        if (begin + 1 < end && m_d[begin + 1] == 'F')
            return parseFuseCount(begin, end);
        return true; // QP and QV matter only to test vectors
    case 'F':
        if (!parseBit(begin + 1, end, m_default)) {
            report(KCFileMessage::Error, begin, "F field must be 0 or 1");
            return false;
        }
        return true;
    case 'G': {
        int security = 0;
        if (!parseBit(begin + 1, end, security)) {
            report(KCFileMessage::Error, begin, "G field must be 0 or 1");
            return false;
        }
        return true;
    }
    case 'L':
        return parseBinaryList(begin, end);
    case 'K':
        return parseHexList(begin, end);
    case 'C':
        return parseChecksum(begin, end);
    default:
        // Notes, test vectors, electrical and user fuses, device ids and reserved fields:
        // nothing the fuse buffer holds.
        return true;
    }
}

bool KCJedecReader::parseFuseCount(size_t begin, size_t end)
{
    size_t p = begin + 2;
    uint64_t count = 0;
    if (!parseDecimal(p, end, count) || !onlyBlanks(p, end)) {
        report(KCFileMessage::Error, begin, "QF field needs a decimal fuse count");
        return false;
    }
    if (m_hasQf) {
        if (count == m_qf)
            return true;
        report(KCFileMessage::Error, begin, "QF%llu contradicts the earlier QF%llu", (unsigned long long)count,
               (unsigned long long)m_qf);
        return false;
    }
    if (count > KCJedecFile::kMaxFuseCount) {
        report(KCFileMessage::Error, begin, "fuse count %llu is beyond any device", (unsigned long long)count);
        return false;
    }
    if (count > m_options.rangeLength) {
        report(KCFileMessage::Error, begin, "the file has %llu fuses, the device only %llu",
               (unsigned long long)count, (unsigned long long)m_options.rangeLength);
        return false;
    }
    try {
        m_fuses.assign(count, kUnset);
    } catch (const std::bad_alloc &) {
        report(KCFileMessage::Error, begin, "not enough memory for %llu fuses", (unsigned long long)count);
        return false;
    }
    m_hasQf = true;
    m_qf = count;
    m_result.fuseCount = count;
    return true;
}

bool KCJedecReader::fuseListStart(size_t begin, size_t &p, size_t end, uint64_t &first)
{
    const char id = char(m_d[begin]);
    if (!m_hasQf) {
        report(KCFileMessage::Error, begin, "%c field before QF", id);
        return false;
    }
    p = begin + 1;
    if (!parseDecimal(p, end, first)) {
        report(KCFileMessage::Error, begin, "%c field needs a decimal fuse number", id);
        return false;
    }
    if (first >= m_qf) {
        report(KCFileMessage::Error, begin, "fuse number %llu is not below QF%llu", (unsigned long long)first,
               (unsigned long long)m_qf);
        return false;
    }
    if (p < end && !KCDeviceText::isSpace(m_d[p])) {
        report(KCFileMessage::Error, p, "%c field needs a blank after the fuse number", id);
        return false;
    }
    ++m_result.records;
    return true;
}

bool KCJedecReader::parseBinaryList(size_t begin, size_t end)
{
    size_t p = 0;
    uint64_t fuse = 0;
    if (!fuseListStart(begin, p, end, fuse))
        return false;
    uint8_t *fuses = m_fuses.data();
    for (; p < end; ++p) {
        const uint8_t c = m_d[p];
        if (c == '0' || c == '1') {
            if (fuse >= m_qf) {
                report(KCFileMessage::Error, p, "L field runs past the last fuse %llu", (unsigned long long)(m_qf - 1));
                return false;
            }
            fuses[fuse++] = c - '0';
        } else if (!KCDeviceText::isSpace(c)) {
            report(KCFileMessage::Error, p, "'%c' in an L field is not a fuse state", c);
            return false;
        }
    }
    return true;
}

bool KCJedecReader::parseHexList(size_t begin, size_t end)
{
    size_t p = 0;
    uint64_t fuse = 0;
    if (!fuseListStart(begin, p, end, fuse))
        return false;
    uint8_t *fuses = m_fuses.data();
    for (; p < end; ++p) {
        const uint8_t c = m_d[p];
        if (KCDeviceText::isSpace(c))
            continue;
        const int value = KCDeviceText::hexDigit(c);
        if (value < 0) {
            report(KCFileMessage::Error, p, "'%c' in a K field is not a hex digit", c);
            return false;
        }
        // The most significant bit of a digit is its lowest fuse.
        for (int bit = 3; bit >= 0; --bit, ++fuse) {
            const uint8_t state = (value >> bit) & 1;
            if (fuse < m_qf) {
                fuses[fuse] = state;
            } else if (state) {
                report(KCFileMessage::Error, p, "K field sets fuse %llu, past the last fuse %llu",
                       (unsigned long long)fuse, (unsigned long long)(m_qf - 1));
                return false;
            }
        }
    }
    return true;
}

bool KCJedecReader::parseChecksum(size_t begin, size_t end)
{
    size_t p = begin + 1;
    while (p < end && KCDeviceText::isSpace(m_d[p]))
        ++p;
    unsigned value = 0;
    size_t digits = 0;
    for (int v; p < end && (v = KCDeviceText::hexDigit(m_d[p])) >= 0; ++p, ++digits)
        value = (value << 4) | unsigned(v);
    if (digits != kChecksumDigits || !onlyBlanks(p, end)) {
        report(KCFileMessage::Error, begin, "C field needs exactly 4 hex digits");
        return false;
    }
    m_result.hasFuseChecksum = true;
    m_result.statedFuseChecksum = uint16_t(value);
    m_checksumPos = begin;
    return true;
}

void KCJedecReader::finishFuses()
{
    uint64_t unset = 0;
    for (uint8_t &f : m_fuses) {
        if (f == kUnset) {
            f = m_default > 0 ? 1 : 0;
            ++unset;
        }
    }
    if (unset && m_default < 0)
        report(KCFileMessage::Warning, m_fieldsBegin, "%llu fuses have no state and there is no F field: taken as 0",
               (unsigned long long)unset);
    if (!m_hasQf)
        report(KCFileMessage::Warning, m_fieldsBegin, "no QF field: the file holds no fuses");
    m_result.computedFuseChecksum = KCJedecChecksum::fuses(m_fuses.data(), m_fuses.size());
}

bool KCJedecReader::storeFuses()
{
    KCLoadTarget loader(m_target, m_options, m_result);
    const bool stored = loader.put(0, m_fuses.data(), m_fuses.size());
    loader.finish(m_sink, m_file.name);
    if (!stored) {
        report(KCFileMessage::Error, kWholeFile, "not enough memory for %llu fuses", (unsigned long long)m_qf);
        return false;
    }
    if (!m_result.hasFuseChecksum) {
        if (m_hasQf)
            report(KCFileMessage::Warning, kWholeFile, "fuse checksum not present");
        return true;
    }
    if (m_result.computedFuseChecksum != m_result.statedFuseChecksum) {
        report(checksumSeverity(), m_checksumPos, "fuse checksum is 0x%04X, expected 0x%04X",
               m_result.computedFuseChecksum, m_result.statedFuseChecksum);
        return m_options.ignoreChecksums;
    }
    return true;
}

void KCJedecReader::checkTransmission()
{
    if (!m_hasEtx) {
        report(KCFileMessage::Warning, m_fieldsEnd, "no ETX: transmission checksum not checked");
        return;
    }
    const size_t etx = m_fieldsEnd;
    unsigned value = 0;
    size_t digits = 0;
    for (int v; digits < kChecksumDigits && etx + 1 + digits < m_file.size &&
                (v = KCDeviceText::hexDigit(m_d[etx + 1 + digits])) >= 0;
         ++digits)
        value = (value << 4) | unsigned(v);
    if (digits != kChecksumDigits) {
        report(KCFileMessage::Warning, etx, "no transmission checksum after ETX: not checked");
        return;
    }
    m_result.hasTransmissionChecksum = true;
    m_result.statedTransmissionChecksum = uint16_t(value);
    if (!m_hasStx) {
        report(KCFileMessage::Warning, etx, "no STX: transmission checksum not checked");
        return;
    }
    m_result.computedTransmissionChecksum = KCJedecChecksum::transmission(m_d + m_stxPos, etx + 1 - m_stxPos);
    // 0000 is the sender's way of saying it did not compute one.
    if (value != 0 && m_result.computedTransmissionChecksum != value) {
        report(checksumSeverity(), etx, "transmission checksum is 0x%04X, expected 0x%04X",
               m_result.computedTransmissionChecksum, value);
        m_result.ok = m_result.ok && m_options.ignoreChecksums;
    }
}
