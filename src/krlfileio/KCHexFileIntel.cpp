#include "KCHexFileIntel.h"

#include "KCHexRecordPlan.h"
#include "KCHexRecordWriter.h"
#include "KCLoadTarget.h"
#include "KCTextScanner.h"

#include <algorithm>
#include <cstdio>

namespace {

enum RecordType : uint8_t {
    Data = 0x00,
    EndOfFile = 0x01,
    ExtendedSegment = 0x02,
    StartSegment = 0x03,
    ExtendedLinear = 0x04,
    StartLinear = 0x05,
};

// Warnings given once per load.
enum : unsigned {
    WarnIndented = 1u << 0,
    WarnCrosses64K = 1u << 1,
    WarnSegmentWrap = 1u << 2,
    WarnMixedAddressing = 1u << 3,
    WarnSeveralStarts = 1u << 4,
    WarnChecksum = 1u << 5,
};

constexpr uint64_t kSegmentSize = 0x10000;
constexpr uint64_t kAddressSpace = uint64_t(1) << 32;
constexpr unsigned kHeaderBytes = 4;      // LL, AAAA, TT
constexpr unsigned kMaxDataBytes = 255;

std::string format(const char *fmt, unsigned long long a, unsigned long long b = 0)
{
    char text[128];
    std::snprintf(text, sizeof text, fmt, a, b);
    return text;
}

unsigned be16(const uint8_t *p) { return unsigned(p[0]) << 8 | p[1]; }

} // namespace

bool KCHexFileIntel::detect(const uint8_t *data, size_t size)
{
    size_t i = size >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF ? 3 : 0;
    while (i < size && (KCTextScanner::isBlank(data[i]) || KCTextScanner::isLineEnd(data[i])))
        ++i;
    return i + 1 < size && data[i] == ':' && KCTextScanner::isHex(data[i + 1]);
}

bool KCHexFileIntel::parse(KCTextScanner &s, KCLoadTarget &target, KCLoadResult &result,
                           const KCLoadOptions &options)
{
    uint8_t rec[kHeaderBytes + kMaxDataBytes + 1];
    uint64_t base = 0;
    bool segmentMode = false;
    bool sawExtended = false;
    uint8_t lastAddressType = 0;

    while (s.nextLine()) {
        if (s.indented())
            s.warnOnce(WarnIndented, "record indented by blanks");
        if (*s.pos() != ':') {
            s.error("record does not start with ':' (" + s.describeAt(s.pos()) + ")");
            return false;
        }
        s.advance(1);
        const uint8_t *body = s.pos();
        unsigned sum = 0;
        if (!s.hexBytes(rec, kHeaderBytes, sum)) {
            s.error(s.hexRecordProblem(body, 0));
            return false;
        }
        const unsigned length = rec[0];
        if (!s.hexBytes(rec + kHeaderBytes, length + 1, sum) || !s.atLineEnd()) {
            s.error(s.hexRecordProblem(body, 2 * (kHeaderBytes + length + 1)));
            return false;
        }
        if (sum & 0xFF) {
            const unsigned stated = rec[kHeaderBytes + length];
            const unsigned computed = (0x100 - ((sum - stated) & 0xFF)) & 0xFF;
            const std::string text = format("checksum mismatch: record has %02llX, computed %02llX", stated, computed);
            if (!options.ignoreChecksums) {
                s.error(text);
                return false;
            }
            s.warnOnce(WarnChecksum, text + " (loaded anyway)");
        }

        const uint8_t type = rec[3];
        const uint8_t *data = rec + kHeaderBytes;
        const uint64_t offset = be16(rec + 1);
        auto expectLength = [&](unsigned wanted, const std::string &name) {
            if (length == wanted)
                return true;
            s.error(name + format(" record with length %llu, expected %llu", length, wanted));
            return false;
        };

        switch (type) {
        case Data: {
            ++result.records;
            if (!length)
                break;
            const uint64_t address = base + offset;
            size_t first = length;
            if (segmentMode) {
                first = size_t(std::min<uint64_t>(length, kSegmentSize - offset));
                if (first < length)
                    s.warnOnce(WarnSegmentWrap, "record wraps around inside its 64 KiB segment");
            } else {
                if (address + length > kAddressSpace) {
                    s.error(format("data at 0x%llX runs beyond the 4 GiB address space", address));
                    return false;
                }
                if (!sawExtended && offset + length > kSegmentSize)
                    s.warnOnce(WarnCrosses64K, "record crosses a 64 KiB boundary");
            }
            if (!target.put(address, data, first) || (first < length && !target.put(base, data + first, length - first))) {
                s.error(format("not enough memory to load address 0x%llX", address));
                return false;
            }
            break;
        }
        case EndOfFile:
            // Whatever follows the end-of-file record is padding; it is not read.
            return expectLength(0, "end-of-file");
        case ExtendedSegment:
        case ExtendedLinear:
            if (!expectLength(2, type == ExtendedSegment ? "extended segment address" : "extended linear address"))
                return false;
            if (lastAddressType && lastAddressType != type)
                s.warnOnce(WarnMixedAddressing, "file mixes segment (02) and linear (04) address records");
            lastAddressType = type;
            sawExtended = true;
            segmentMode = type == ExtendedSegment;
            base = segmentMode ? uint64_t(be16(data)) << 4 : uint64_t(be16(data)) << 16;
            break;
        case StartSegment:
        case StartLinear:
            if (!expectLength(4, type == StartSegment ? "start segment address" : "start linear address"))
                return false;
            if (result.hasStartAddress)
                s.warnOnce(WarnSeveralStarts, "several start address records; the last one counts");
            result.hasStartAddress = true;
            result.startAddress = type == StartSegment ? (uint64_t(be16(data)) << 4) + be16(data + 2)
                                                       : uint64_t(be16(data)) << 16 | be16(data + 2);
            break;
        default:
            s.error(format("unknown record type %02llX", type));
            return false;
        }
    }
    s.warning("no end-of-file record");
    return true;
}

bool KCHexFileIntel::Save(KCOutputStream &out, const std::string &fileName, const uint8_t *data, uint64_t size,
                          const KCSaveOptions &options)
{
    const unsigned perRecord = options.bytesPerRecord;
    if (perRecord == 0 || perRecord > kMaxDataBytes) {
        m_sink.message(KCFileMessage::Error, fileName, 0, format("cannot write %llu data bytes per record", perRecord));
        return false;
    }
    if (options.startAddress > kAddressSpace || size > kAddressSpace - options.startAddress) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "the data run beyond the 4 GiB address space");
        return false;
    }

    // The fixed records go into the plan through w; the data records are laid out in it.
    KCHexRecordPlan::Shape shape;
    shape.mark = ":";
    shape.typeByte = true;
    shape.crlf = options.crlf;
    KCHexRecordPlan plan(shape);
    KCHexRecordWriter w(plan, options.crlf);
    auto shortRecord = [&w](uint8_t type, const uint8_t *bytes, unsigned n) {
        w.reserveRecord();
        w.put(':');
        w.hexByte(uint8_t(n));
        w.putText("0000", 4);
        w.hexByte(type);
        const unsigned sum = n + type + w.hexBytes(bytes, n);
        w.hexByte(uint8_t(0x100 - (sum & 0xFF)));
        w.lineEnd();
    };

    uint64_t upper = 0;
    for (const auto &run : options.runs(size)) {
        uint64_t pos = run.first;
        const uint64_t end = run.second + 1;
        uint64_t address = options.startAddress + pos;
        while (pos < end) {
            if ((address >> 16) != upper) {
                upper = address >> 16;
                const uint8_t ulba[2] = {uint8_t(upper >> 8), uint8_t(upper)};
                shortRecord(ExtendedLinear, ulba, 2);
            }
            // Records never cross a 64 KiB boundary: the next one needs a new upper address.
            const uint64_t n = std::min<uint64_t>(end - pos, kSegmentSize - (address & 0xFFFF));
            w.flush();
            plan.addRecords(pos, address & 0xFFFF, n, perRecord);
            pos += n;
            address += n;
        }
    }
    if (options.hasEntryPoint) {
        const uint32_t e = options.entryPoint;
        const uint8_t eip[4] = {uint8_t(e >> 24), uint8_t(e >> 16), uint8_t(e >> 8), uint8_t(e)};
        shortRecord(StartLinear, eip, 4);
    }
    shortRecord(EndOfFile, nullptr, 0);
    w.flush();
    if (!plan.writeTo(out, data)) {
        m_sink.message(KCFileMessage::Error, fileName, 0, "cannot write the file");
        return false;
    }
    return true;
}
