#include "KCHexFileTI.h"

#include "KCLoadTarget.h"
#include "KCTextScanner.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr uint64_t kAddressSpace = uint64_t(1) << 32;
constexpr unsigned kMaxAddressDigits = 8;
constexpr size_t kChunk = 4096;           // bytes collected before they are stored
constexpr unsigned kMinIdentifierLength = 5;
constexpr unsigned kHeaderNameChars = 8;

enum : unsigned {
    WarnJoinedBytes = 1u << 0,
    WarnChecksum = 1u << 1,
};

std::string format(const char *fmt, unsigned long long a, unsigned long long b = 0)
{
    char text[128];
    std::snprintf(text, sizeof text, fmt, a, b);
    return text;
}

bool isTaggedTag(uint8_t c)
{
    return std::strchr("K09B*78F", c) != nullptr && c != 0;
}

size_t firstSignificant(const uint8_t *data, size_t size)
{
    size_t i = size >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF ? 3 : 0;
    while (i < size && (KCTextScanner::isBlank(data[i]) || KCTextScanner::isLineEnd(data[i])))
        ++i;
    return i;
}

// Collects consecutive data bytes and stores them per line or record, never per byte.
class Run
{
public:
    Run(KCTextScanner &s, KCLoadTarget &t) : m_s(s), m_t(t) {}

    void moveTo(uint64_t address) { m_start = address; }
    bool add(uint8_t b)
    {
        m_buf[m_n++] = b;
        return m_n < kChunk || flush();
    }
    // Room for at least one byte to decode into directly; commit() takes what was written.
    uint8_t *space(size_t &room)
    {
        if (m_n == kChunk && !flush())
            return nullptr;
        room = kChunk - m_n;
        return m_buf + m_n;
    }
    void commit(size_t n) { m_n += n; }
    bool flush()
    {
        if (!m_n)
            return true;
        if (m_start + m_n > kAddressSpace) {
            m_s.error(format("data at 0x%llX run beyond the 4 GiB address space", m_start));
            return false;
        }
        if (!m_t.put(m_start, m_buf, m_n)) {
            m_s.error(format("not enough memory to load address 0x%llX", m_start));
            return false;
        }
        m_start += m_n;
        m_n = 0;
        return true;
    }

private:
    KCTextScanner &m_s;
    KCLoadTarget &m_t;
    uint64_t m_start = 0;
    size_t m_n = 0;
    uint8_t m_buf[kChunk];
};

} // namespace

bool KCHexFileTI::detect(const uint8_t *data, size_t size)
{
    const size_t i = firstSignificant(data, size);
    if (i >= size)
        return false;
    const uint8_t c = data[i];
    if (c == '@')
        return i + 1 < size && KCTextScanner::isHex(data[i + 1]);
    if (c == ':')
        return i + 1 == size || KCTextScanner::isLineEnd(data[i + 1]) || KCTextScanner::isBlank(data[i + 1]);
    if (c == 'K' || c == '0' || c == '9' || c == 'B') {
        if (size - i < 5)
            return false;
        for (size_t k = 1; k <= 4; ++k)
            if (!KCTextScanner::isHex(data[i + k]))
                return false;
        return true;
    }
    return false;
}

KCLoadResult KCHexFileTI::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    KCLoadResult result;
    KCTextScanner s(file, m_sink);
    KCLoadTarget loader(target, options, result);
    loader.setSizeHint(file.size / 2); // two hex digits per data byte at least
    if (!s.nextLine()) {
        s.error("empty file: neither TI-TXT nor TI-Tagged");
    } else {
        const uint8_t c = *s.pos();
        const int next = s.remaining() > 1 ? s.pos()[1] : -1;
        if (c == '@' || c == 'q' || c == 'Q')
            result.ok = parseText(s, loader, result);
        else if (c == ':' && next >= 0 && KCTextScanner::isHex(uint8_t(next)))
            s.error("wrong format: this is an Intel HEX file, not TI");
        else if (c == 'S' && next >= '0' && next <= '9')
            s.error("wrong format: this is a Motorola S-record file, not TI");
        else if (c == ':' || isTaggedTag(c))
            result.ok = parseTagged(s, loader, result, options);
        else
            s.error("neither TI-TXT nor TI-Tagged: starts with " + s.describeAt(s.pos()));
    }
    loader.finish(m_sink, file.name);
    return result;
}

bool KCHexFileTI::parseText(KCTextScanner &s, KCLoadTarget &target, KCLoadResult &result)
{
    Run run(s, target);
    bool haveAddress = false;
    while (s.nextLine()) {
        const uint8_t c = *s.pos();
        if (c == '@') {
            s.advance(1);
            const uint8_t *digits = s.pos();
            uint64_t address = 0;
            while (s.remaining() && KCTextScanner::isHex(*s.pos())) {
                address = address << 4 | KCTextScanner::nibble(*s.pos());
                s.advance(1);
            }
            const size_t count = size_t(s.pos() - digits);
            if (!count || count > kMaxAddressDigits) {
                s.error(count ? "address with more than 8 hex digits" : "'@' without an address");
                return false;
            }
            if (!s.atLineEnd()) {
                s.error("unexpected " + s.describeAt(s.pos()) + " after the address");
                return false;
            }
            run.moveTo(address);
            haveAddress = true;
        } else if (c == 'q' || c == 'Q') {
            s.advance(1);
            if (!s.atLineEnd()) {
                s.error("unexpected " + s.describeAt(s.pos()) + " after 'q'");
                return false;
            }
            return true; // anything after the terminator is not read
        } else if (KCTextScanner::isHex(c)) {
            if (!haveAddress) {
                s.error("data before the first '@' address line");
                return false;
            }
            ++result.records;
            const uint8_t *p = s.pos();
            const uint8_t *const end = s.end();
            for (;;) {
                const uint8_t *token = p;
                unsigned v = 0;
                size_t room = 0;
                uint8_t *out = run.space(room);
                if (!out)
                    return false;
                // The usual layout first: two digits and one blank per byte.
                size_t n = 0;
                while (n < room && end - p >= 3 && p[2] == ' ' && (v = KCTextScanner::pairValue(p)) <= 0xFF) {
                    out[n++] = uint8_t(v);
                    p += 3;
                }
                run.commit(n);
                if (n) {
                    token = p;
                    if (n == room)
                        continue;
                }
                while (end - p >= 2 && (v = KCTextScanner::pairValue(p)) <= 0xFF) {
                    if (!run.add(uint8_t(v)))
                        return false;
                    p += 2;
                }
                if (p < end && KCTextScanner::isHex(*p)) {
                    s.error("data token is not made of two-digit hex bytes (" + s.describeAt(token) + ")");
                    return false;
                }
                if (p - token > 2)
                    s.warnOnce(WarnJoinedBytes, "hex bytes without blanks between them were split into pairs");
                const uint8_t *afterToken = p;
                while (p < end && KCTextScanner::isBlank(*p))
                    ++p;
                if (p == end || KCTextScanner::isLineEnd(*p) || *p == KCTextScanner::kDosEof)
                    break;
                if (p == afterToken) {
                    s.error("unexpected " + s.describeAt(p));
                    return false;
                }
            }
            s.advance(size_t(p - s.pos()));
            if (!run.flush())
                return false;
        } else {
            s.error("unexpected " + s.describeAt(s.pos()));
            return false;
        }
    }
    s.warning("no 'q' at the end of the file");
    return true;
}

bool KCHexFileTI::parseTagged(KCTextScanner &s, KCLoadTarget &target, KCLoadResult &result,
                              const KCLoadOptions &options)
{
    Run run(s, target);
    unsigned sum = 0;
    const unsigned addressScale = options.tiTaggedWordAddress ? 2 : 1;

    // Reads a field of hex digits after the tag and adds their characters to the checksum.
    auto field = [&](uint8_t tag, unsigned digits, uint32_t &value) {
        const uint8_t *start = s.pos();
        if (s.hexValue(digits, value)) {
            for (unsigned i = 0; i < digits; ++i)
                sum += start[i];
            return true;
        }
        const uint8_t *p = start;
        while (p < s.end() && p < start + digits && KCTextScanner::isHex(*p))
            ++p;
        if (p == s.end() || KCTextScanner::isLineEnd(*p))
            s.error(std::string("tag '") + char(tag) + "' field cut short");
        else
            s.error(std::string("tag '") + char(tag) + "' field holds " + s.describeAt(p));
        return false;
    };
    // Free text of a field: any printable character counts, control bytes are damage.
    auto text = [&](uint8_t tag, size_t n) {
        if (s.remaining() < n) {
            s.error(std::string("tag '") + char(tag) + "' field cut short");
            return false;
        }
        for (size_t i = 0; i < n; ++i) {
            const uint8_t c = s.pos()[i];
            if (c < 0x20 || c == 0x7F) {
                s.error(std::string("tag '") + char(tag) + "' field holds " + s.describeAt(s.pos() + i));
                return false;
            }
            sum += c;
        }
        s.advance(n);
        return true;
    };

    while (s.nextLine()) {
        const uint8_t tag = *s.pos();
        s.advance(1);
        sum += tag;
        uint32_t v = 0;
        switch (tag) {
        case 'K':
            if (!field(tag, 4, v))
                return false;
            if (v < kMinIdentifierLength) {
                s.error(format("program identifier length %llu is below 5", v));
                return false;
            }
            if (!text(tag, v - kMinIdentifierLength))
                return false;
            break;
        case '0':
            if (!field(tag, 4, v) || !text(tag, kHeaderNameChars))
                return false;
            break;
        case '9':
            if (!field(tag, 4, v) || !run.flush())
                return false;
            run.moveTo(uint64_t(v) * addressScale);
            break;
        case 'B':
            if (!field(tag, 4, v) || !run.add(uint8_t(v >> 8)) || !run.add(uint8_t(v)))
                return false;
            break;
        case '*':
            if (!field(tag, 2, v) || !run.add(uint8_t(v)))
                return false;
            break;
        case '7': {
            const unsigned expected = (0x10000 - (sum & 0xFFFF)) & 0xFFFF;
            if (!field(tag, 4, v))
                return false;
            if (v != expected) {
                const std::string msg = format("checksum mismatch: record has %04llX, computed %04llX", v, expected);
                if (!options.ignoreChecksums) {
                    s.error(msg);
                    return false;
                }
                s.warnOnce(WarnChecksum, msg + " (loaded anyway)");
            }
            break;
        }
        case '8':
            if (!field(tag, 4, v))
                return false;
            break;
        case 'F':
            ++result.records;
            sum = 0;
            if (!run.flush())
                return false;
            break;
        case ':':
            return run.flush(); // text after the end mark is not read
        default:
            if (std::strchr("123456AC", tag) && tag)
                s.error(std::string("relocatable or unsupported tag '") + char(tag) + "'");
            else
                s.error("unknown tag: " + s.describeAt(s.pos() - 1));
            return false;
        }
    }
    if (!run.flush())
        return false;
    s.warning("no ':' end mark");
    return true;
}
