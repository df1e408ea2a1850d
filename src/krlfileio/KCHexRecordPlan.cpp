#include "KCHexRecordPlan.h"

#include "KCHexRecordWriter.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <system_error>
#include <thread>

namespace {

// A piece stays small enough to fit a block many times over, so blocks come out nearly full.
constexpr uint64_t kPieceChars = uint64_t(256) << 10;
// Characters encoded before each write: large enough for few system calls, small enough
// to stay in the cache while the kernel copies them.
constexpr size_t kBlockChars = size_t(2) << 20;
// Below this a second thread costs more than it saves.
constexpr uint64_t kParallelChars = uint64_t(4) << 20;

} // namespace

KCHexRecordPlan::KCHexRecordPlan(const Shape &shape) : m_shape(shape) {}

size_t KCHexRecordPlan::recordLength(unsigned n) const
{
    return m_shape.mark.size() + 2 * (1 + m_shape.addressBytes + (m_shape.typeByte ? 1 : 0) + n + 1)
        + (m_shape.crlf ? 2 : 1);
}

bool KCHexRecordPlan::write(const void *data, size_t size)
{
    if (!size)
        return true;
    if (m_pieces.empty() || m_pieces.back().bytes)
        m_pieces.push_back({m_size, 0, m_text.size(), 0, 0, 0});
    m_text.append(static_cast<const char *>(data), size);
    m_pieces.back().length += size;
    m_size += size;
    return true;
}

void KCHexRecordPlan::addRecords(uint64_t pos, uint64_t address, uint64_t bytes, unsigned perRecord)
{
    const uint64_t fullLength = recordLength(perRecord);
    const uint64_t perPiece = std::max<uint64_t>(1, kPieceChars / fullLength) * perRecord;
    while (bytes) {
        const uint64_t n = std::min(bytes, perPiece);
        const uint64_t rest = n % perRecord;
        const uint64_t length = n / perRecord * fullLength + (rest ? recordLength(unsigned(rest)) : 0);
        m_pieces.push_back({m_size, length, pos, address, n, perRecord});
        m_size += length;
        pos += n;
        address += n;
        bytes -= n;
    }
}

char *KCHexRecordPlan::encodeRecords(const Piece &p, const uint8_t *data, char *out) const
{
    const char *mark = m_shape.mark.data();
    const size_t markLength = m_shape.mark.size();
    const unsigned addressBytes = m_shape.addressBytes;
    const uint8_t bias = uint8_t(m_shape.checksumBias);
    const uint8_t *bytes = data + p.pos;
    uint64_t address = p.address;
    for (uint64_t left = p.bytes; left;) {
        const unsigned n = unsigned(std::min<uint64_t>(left, p.perRecord));
        // One or two characters: a call to memcpy would cost more than the record's data.
        out[0] = mark[0];
        if (markLength > 1)
            out[1] = mark[1];
        out += markLength;
        const unsigned count = n + m_shape.countExtra;
        KCHexRecordWriter::encodeByte(uint8_t(count), out);
        out += 2;
        unsigned sum = count;
        for (unsigned k = addressBytes; k--;) {
            const uint8_t b = uint8_t(address >> (8 * k));
            KCHexRecordWriter::encodeByte(b, out);
            out += 2;
            sum += b;
        }
        if (m_shape.typeByte) {
            out[0] = out[1] = '0';
            out += 2;
        }
        sum += KCHexRecordWriter::encodeHex(bytes, n, out);
        out += 2 * size_t(n);
        KCHexRecordWriter::encodeByte(uint8_t(-sum - bias), out);
        out += 2;
        if (m_shape.crlf)
            *out++ = '\r';
        *out++ = '\n';
        bytes += n;
        address += n;
        left -= n;
    }
    return out;
}

template <typename Sink>
void KCHexRecordPlan::encode(size_t first, size_t last, const uint8_t *data, Sink &&sink) const
{
    std::unique_ptr<char[]> block(new char[kBlockChars]);
    size_t i = first;
    while (i < last) {
        const uint64_t start = m_pieces[i].offset;
        char *out = block.get();
        // A piece larger than the block (only a long text) goes out on its own.
        if (!m_pieces[i].bytes && m_pieces[i].length > kBlockChars) {
            if (!sink(start, m_text.data() + m_pieces[i].pos, size_t(m_pieces[i].length)))
                return;
            ++i;
            continue;
        }
        for (; i < last && m_pieces[i].offset + m_pieces[i].length - start <= kBlockChars; ++i) {
            const Piece &p = m_pieces[i];
            if (p.bytes) {
                out = encodeRecords(p, data, out);
            } else {
                std::memcpy(out, m_text.data() + p.pos, size_t(p.length));
                out += p.length;
            }
        }
        if (!sink(start, block.get(), size_t(out - block.get())))
            return;
    }
}

bool KCHexRecordPlan::writeSequential(KCOutputStream &out, const uint8_t *data) const
{
    bool ok = true;
    encode(0, m_pieces.size(), data, [&](uint64_t, const char *text, size_t n) { return ok = out.write(text, n); });
    return ok;
}

bool KCHexRecordPlan::writeParallel(KCOutputStream &out, const uint8_t *data) const
{
    // The second thread takes the pieces from the middle of the output on.
    const uint64_t half = m_size / 2;
    const size_t middle = size_t(
        std::lower_bound(m_pieces.begin(), m_pieces.end(), half,
                         [](const Piece &p, uint64_t at) { return p.offset + p.length <= at; })
        - m_pieces.begin());
    std::atomic<bool> ok{true};
    auto part = [&](size_t first, size_t last) {
        encode(first, last, data, [&](uint64_t offset, const char *text, size_t n) {
            if (!ok.load(std::memory_order_relaxed) || !out.writeAt(offset, text, n)) {
                ok = false;
                return false;
            }
            return true;
        });
    };
    std::thread second;
    try {
        second = std::thread(part, middle, m_pieces.size());
    } catch (const std::system_error &) {
        part(middle, m_pieces.size()); // no thread to be had: this one does both halves
    }
    part(0, middle);
    if (second.joinable())
        second.join();
    return out.endBlock() && ok;
}

bool KCHexRecordPlan::writeTo(KCOutputStream &out, const uint8_t *data) const
{
    if (m_size >= kParallelChars && out.beginBlock(m_size))
        return writeParallel(out, data);
    return writeSequential(out, data);
}
