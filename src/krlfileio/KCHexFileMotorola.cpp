#include "KCHexFileMotorola.h"

#include "KCHexRecordPlan.h"
#include "KCHexRecordWriter.h"
#include "KCLoadTarget.h"
#include "KCTextScanner.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// Address bytes of S0..S9; 0 marks the reserved S4.
constexpr unsigned kAddressWidth[10] = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};
constexpr unsigned kMaxCount = 255;
constexpr uint64_t kAddressSpace = uint64_t(1) << 32;
constexpr uint64_t kMaxS5Count = 0xFFFF;
constexpr uint64_t kMaxS6Count = 0xFFFFFF;
constexpr const char *kDefaultHeader = "HDR";

enum : unsigned {
    WarnIndented = 1u << 0,
    WarnLowercase = 1u << 1,
    WarnAfterEnd = 1u << 2,
    WarnCount = 1u << 3,
    WarnTypeRange = 1u << 4,
    WarnChecksum = 1u << 5,
};

std::string format(const char *fmt, unsigned long long a, unsigned long long b = 0)
{
    char text[128];
    std::snprintf(text, sizeof text, fmt, a, b);
    return text;
}

} // namespace

bool KCHexFileMotorola::detect(const uint8_t *data, size_t size)
{
    size_t i = size >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF ? 3 : 0;
    while (i < size && (KCTextScanner::isBlank(data[i]) || KCTextScanner::isLineEnd(data[i])))
        ++i;
    return i + 1 < size && data[i] == 'S' && data[i + 1] >= '0' && data[i + 1] <= '9';
}

bool KCHexFileMotorola::parse(KCTextScanner &s, KCLoadTarget &target, KCLoadResult &result,
                              const KCLoadOptions &options)
{
    uint8_t rec[1 + kMaxCount];
    uint64_t dataRecords = 0;
    bool terminated = false;

    while (s.nextLine()) {
        if (s.indented())
            s.warnOnce(WarnIndented, "record indented by blanks");
        const uint8_t mark = *s.pos();
        if (mark != 'S' && mark != 's') {
            s.error("record does not start with 'S' (" + s.describeAt(s.pos()) + ")");
            return false;
        }
        if (mark == 's')
            s.warnOnce(WarnLowercase, "lowercase record mark 's' (strict tools skip such lines)");
        s.advance(1);
        const int typeChar = s.peek();
        if (typeChar < '0' || typeChar > '9') {
            s.error(typeChar < 0 ? std::string("record ends after its 'S'")
                                 : "unknown record type (" + s.describeAt(s.pos()) + ")");
            return false;
        }
        const unsigned type = unsigned(typeChar - '0');
        if (!kAddressWidth[type]) {
            s.error("reserved record type S4");
            return false;
        }
        s.advance(1);
        const uint8_t *body = s.pos();
        unsigned sum = 0;
        if (!s.hexBytes(rec, 1, sum)) {
            s.error(s.hexRecordProblem(body, 0));
            return false;
        }
        const unsigned count = rec[0];
        if (!s.hexBytes(rec + 1, count, sum) || !s.atLineEnd()) {
            s.error(s.hexRecordProblem(body, 2 + 2 * size_t(count)));
            return false;
        }
        const unsigned width = kAddressWidth[type];
        if (count < width + 1) {
            s.error(format("count %02llX too small for an S%llu record", count, type));
            return false;
        }
        if ((sum & 0xFF) != 0xFF) {
            const unsigned stated = rec[count];
            const unsigned computed = ~(sum - stated) & 0xFF;
            const std::string text = format("checksum mismatch: record has %02llX, computed %02llX", stated, computed);
            if (!options.ignoreChecksums) {
                s.error(text);
                return false;
            }
            s.warnOnce(WarnChecksum, text + " (loaded anyway)");
        }

        uint64_t address = 0;
        for (unsigned i = 0; i < width; ++i)
            address = address << 8 | rec[1 + i];
        const uint8_t *data = rec + 1 + width;
        const unsigned n = count - width - 1;

        switch (type) {
        case 1:
        case 2:
        case 3: {
            ++dataRecords;
            if (terminated) {
                s.warnOnce(WarnAfterEnd, "data records after the termination record are ignored");
                break;
            }
            ++result.records;
            const uint64_t limit = uint64_t(1) << (8 * width);
            if (address + n > limit) {
                if (limit == kAddressSpace) {
                    s.error(format("data at 0x%llX runs beyond the 4 GiB address space", address));
                    return false;
                }
                s.warnOnce(WarnTypeRange, format("S%llu record runs past the address range of its type", type));
            }
            if (!target.put(address, data, n)) {
                s.error(format("not enough memory to load address 0x%llX", address));
                return false;
            }
            break;
        }
        case 5:
        case 6:
            if (address != dataRecords)
                s.warnOnce(WarnCount,
                           format("record count says %llu data records, the file has %llu so far", address, dataRecords));
            break;
        case 7:
        case 8:
        case 9:
            terminated = true;
            result.hasStartAddress = true;
            result.startAddress = address;
            break;
        default:
            break; // S0: header text, not loaded
        }
    }
    if (!terminated)
        s.warning("no termination record (S7, S8 or S9)");
    return true;
}

bool KCHexFileMotorola::Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
                             const KCSaveOptions &options)
{
    if (options.startAddress > kAddressSpace || size > kAddressSpace - options.startAddress) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "the data run beyond the 4 GiB address space");
        return false;
    }
    const auto runs = options.runs(size);
    const uint64_t highest = std::max<uint64_t>(runs.empty() ? 0 : options.startAddress + runs.back().second,
                                                options.hasEntryPoint ? options.entryPoint : 0);
    const unsigned type = highest <= 0xFFFF ? 1 : highest <= 0xFFFFFF ? 2 : 3;
    const unsigned width = type + 1;
    const unsigned perRecord = options.bytesPerRecord;
    if (perRecord == 0 || perRecord > kMaxCount - width - 1) {
        m_sink.message(KCFileMessage::Error, fileName, 0,
                       format("cannot write %llu data bytes per S%llu record", perRecord, type));
        return false;
    }

    // The fixed records go into the plan through w; the data records are laid out in it.
    KCHexRecordPlan::Shape shape;
    shape.mark = std::string("S") + char('0' + type);
    shape.countExtra = width + 1;
    shape.addressBytes = width;
    shape.checksumBias = 1;
    shape.crlf = options.crlf;
    KCHexRecordPlan plan(shape);
    KCHexRecordWriter w(plan, options.crlf);
    auto record = [&w](unsigned t, unsigned addressBytes, uint64_t address, const uint8_t *bytes, unsigned n) {
        w.reserveRecord();
        w.put('S');
        w.put(char('0' + t));
        const unsigned count = addressBytes + n + 1;
        w.hexByte(uint8_t(count));
        unsigned sum = count;
        switch (addressBytes) {
        case 4:
            w.hexByte(uint8_t(address >> 24));
            sum += unsigned(address >> 24) & 0xFF;
            [[fallthrough]];
        case 3:
            w.hexByte(uint8_t(address >> 16));
            sum += unsigned(address >> 16) & 0xFF;
            [[fallthrough]];
        default:
            w.hexByte(uint8_t(address >> 8));
            w.hexByte(uint8_t(address));
            sum += (unsigned(address >> 8) & 0xFF) + (unsigned(address) & 0xFF);
        }
        sum += w.hexBytes(bytes, n);
        w.hexByte(uint8_t(~sum));
        w.lineEnd();
    };

    const std::string header = options.header.empty() ? kDefaultHeader : options.header;
    const unsigned headerLength = unsigned(std::min<size_t>(header.size(), kMaxCount - 3));
    record(0, 2, 0, reinterpret_cast<const uint8_t *>(header.data()), headerLength);

    uint64_t records = 0;
    for (const auto &run : runs) {
        const uint64_t n = run.second + 1 - run.first;
        w.flush();
        plan.addRecords(run.first, options.startAddress + run.first, n, perRecord);
        records += (n + perRecord - 1) / perRecord;
    }
    if (records <= kMaxS5Count)
        record(5, 2, records, nullptr, 0);
    else if (records <= kMaxS6Count)
        record(6, 3, records, nullptr, 0);
    record(10 - type, width, options.hasEntryPoint ? options.entryPoint : 0, nullptr, 0);
    w.flush();
    if (!plan.writeTo(out, data)) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "cannot write the file");
        return false;
    }
    return true;
}
