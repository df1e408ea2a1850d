#include "KCJedecFile.h"

#include "KCDeviceText.h"
#include "KCJedecChecksum.h"
#include "KCJedecOutput.h"
#include "KCJedecReader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kDetectWindow = 256;

unsigned decimalDigits(uint64_t value)
{
    unsigned digits = 1;
    while (value >= 10) {
        value /= 10;
        ++digits;
    }
    return digits;
}

// Adds `amount` to the decimal number held in `digits` (which has room for the result).
void addToDecimal(std::string &digits, unsigned amount)
{
    for (size_t i = digits.size(); i > 0 && amount; --i) {
        const unsigned d = unsigned(digits[i - 1] - '0') + amount % 10;
        amount /= 10;
        digits[i - 1] = char('0' + d % 10);
        amount += d / 10;
    }
}

} // namespace

KCLoadResult KCJedecFile::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    return KCJedecReader(m_sink, file, target, options).run();
}

bool KCJedecFile::Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
                       const KCSaveOptions &options)
{
    for (unsigned char c : options.header) {
        if (c == '*' || !KCDeviceText::isPrintable(c)) {
            m_sink.message(KCFileMessage::Error, fileName, 0,
                           "the device name may hold neither '*' nor control characters");
            return false;
        }
    }
    if (size > kMaxFuseCount) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "too many fuses for a JEDEC file");
        return false;
    }

    KCJedecOutput w(out, options.crlf);
    const char stx = char(kStx);
    w.append(&stx, 1);
    w.appendf("krldv %s", kVersionStamp);
    if (!options.header.empty()) {
        w.append(" ", 1);
        w.append(options.header);
    }
    w.append("*", 1);
    w.endLine();
    w.appendf("QF%llu*", (unsigned long long)size);
    w.endLine();
    w.append("F0*", 3);
    w.endLine();

    // Every row is "L<number> <digits>*<end of line>"; the fuse number is counted up in
    // decimal text rather than formatted afresh for each of up to a million rows.
    const unsigned width = decimalDigits(size ? size - 1 : 0);
    const size_t eolLength = std::strlen(w.endOfLine());
    std::string number(width, '0');
    for (uint64_t row = 0; row < size; row += kFusesPerRow) {
        const size_t n = size_t(std::min<uint64_t>(kFusesPerRow, size - row));
        char *line = w.grow(1 + width + 1 + n + 1 + eolLength);
        line[0] = 'L';
        std::memcpy(line + 1, number.data(), width);
        line[width + 1] = ' ';
        KCJedecChecksum::fuseDigits(data + row, n, line + width + 2);
        line[width + 2 + n] = '*';
        std::memcpy(line + width + 3 + n, w.endOfLine(), eolLength);
        addToDecimal(number, kFusesPerRow);
        if (!w.flushIfFull()) {
            m_sink.message(KCFileMessage::Error, fileName, 0, "write failed");
            return false;
        }
    }
    w.appendf("C%04X*", KCJedecChecksum::fuses(data, size));
    w.endLine();
    // A stated 0000 means "not computed"; a blank before ETX keeps a real sum from being that.
    if (uint16_t(w.sum() + kEtx) == 0)
        w.append(" ", 1);
    const char etx = char(kEtx);
    w.append(&etx, 1);
    const uint16_t sum = w.closeFrame();
    w.appendf("%04X", sum);
    w.endLine();
    if (!w.flush()) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "write failed");
        return false;
    }
    return true;
}

bool KCJedecFile::detect(const uint8_t *data, size_t size)
{
    size_t p = size >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF ? 3 : 0;
    const size_t window = std::min(size, kDetectWindow);
    const void *stx = p < window ? memchr(data + p, kStx, window - p) : nullptr;
    if (stx)
        p = size_t(static_cast<const uint8_t *>(stx) - data) + 1;
    const size_t limit = std::min(size, p + kDetectWindow);
    while (p < limit && data[p] != '*') {
        if (!KCDeviceText::isPrintable(data[p]) && !KCDeviceText::isSpace(data[p]))
            return false;
        ++p;
    }
    if (p >= limit)
        return false;
    if (stx)
        return true;
    for (++p; p < size && KCDeviceText::isSpace(data[p]); ++p) {
    }
    if (p >= size)
        return false;
    const uint8_t c = data[p];
    return c == 'N' || c == 'L' || (c == 'Q' && p + 1 < size && data[p + 1] == 'F');
}
