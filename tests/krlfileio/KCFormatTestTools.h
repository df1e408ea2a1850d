#pragma once

#include "KCFileFormatRegistry.h"
#include "KCVectorByteArray.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// Helpers shared by the format tests: a sink that records messages, an output stream into
// a string, and one-call load and save through the registry.
namespace KCFormatTest {

struct Message
{
    KCFileMessage::Severity severity;
    std::string file;
    uint64_t line;
    std::string text;
};

class RecordingSink : public KCFileMessage
{
public:
    void message(Severity severity, const std::string &fileName, uint64_t line, const std::string &text) override
    {
        messages.push_back({severity, fileName, line, text});
    }
    size_t count(Severity severity) const
    {
        size_t n = 0;
        for (const auto &m : messages)
            n += m.severity == severity;
        return n;
    }
    const Message *first(Severity severity) const
    {
        for (const auto &m : messages)
            if (m.severity == severity)
                return &m;
        return nullptr;
    }
    bool contains(Severity severity, const std::string &part) const
    {
        for (const auto &m : messages)
            if (m.severity == severity && m.text.find(part) != std::string::npos)
                return true;
        return false;
    }
    std::string dump() const
    {
        std::string s;
        for (const auto &m : messages)
            s += std::to_string(int(m.severity)) + " " + m.file + ":" + std::to_string(m.line) + ": " + m.text + "\n";
        return s;
    }

    std::vector<Message> messages;
};

class StringOutputStream : public KCOutputStream
{
public:
    bool write(const void *data, size_t size) override
    {
        text.append(static_cast<const char *>(data), size);
        return true;
    }
    std::string text;
};

struct Loaded
{
    KCLoadResult result;
    std::vector<uint8_t> bytes;
    RecordingSink sink;
};

inline const char *kFileName = "input.txt";

inline Loaded load(const char *format, const std::string &content, const KCLoadOptions &options = {},
                   std::vector<uint8_t> initial = {})
{
    Loaded out;
    const KCFileFormatInfo *info = KCFileFormatRegistry::byName(format);
    if (!info) {
        ADD_FAILURE() << "no format " << format;
        return out;
    }
    KCVectorByteArray target(std::move(initial));
    const KCInputFile file{kFileName, reinterpret_cast<const uint8_t *>(content.data()), content.size()};
    out.result = info->create(out.sink)->Load(file, target, options);
    out.bytes = std::move(target.bytes());
    return out;
}

inline std::string save(const char *format, const std::vector<uint8_t> &data, const KCSaveOptions &options = {},
                        RecordingSink *sinkOut = nullptr)
{
    RecordingSink local;
    RecordingSink &sink = sinkOut ? *sinkOut : local;
    StringOutputStream out;
    const bool ok = KCFileFormatRegistry::byName(format)->create(sink)->Save(out, "out", data.data(), data.size(),
                                                                           options);
    EXPECT_TRUE(ok) << sink.dump();
    return out.text;
}

inline std::string readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void writeFile(const std::string &path, const std::string &content)
{
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string dataFile(const std::string &relative)
{
    return readFile(std::string(KRLDV_TEST_DATA_DIR) + "/" + relative);
}

// Bytes of the buffer at [offset, offset + n).
inline std::vector<uint8_t> slice(const std::vector<uint8_t> &bytes, size_t offset, size_t n)
{
    if (offset + n > bytes.size())
        return {};
    return std::vector<uint8_t>(bytes.begin() + long(offset), bytes.begin() + long(offset + n));
}

inline std::string hexOf(const std::vector<uint8_t> &bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string s;
    for (uint8_t b : bytes)
        s += {digits[b >> 4], digits[b & 15]};
    return s;
}

// Independent record builders, so generated test files do not depend on our writers.
inline std::string intelRecord(uint8_t type, uint16_t offset, const std::vector<uint8_t> &data)
{
    std::vector<uint8_t> rec = {uint8_t(data.size()), uint8_t(offset >> 8), uint8_t(offset), type};
    rec.insert(rec.end(), data.begin(), data.end());
    unsigned sum = 0;
    for (uint8_t b : rec)
        sum += b;
    rec.push_back(uint8_t(0x100 - (sum & 0xFF)));
    return ":" + hexOf(rec);
}

inline std::string srecRecord(int type, uint64_t address, unsigned addressBytes, const std::vector<uint8_t> &data)
{
    std::vector<uint8_t> rec = {uint8_t(addressBytes + data.size() + 1)};
    for (unsigned i = addressBytes; i-- > 0;)
        rec.push_back(uint8_t(address >> (8 * i)));
    rec.insert(rec.end(), data.begin(), data.end());
    unsigned sum = 0;
    for (uint8_t b : rec)
        sum += b;
    rec.push_back(uint8_t(~sum));
    return "S" + std::to_string(type) + hexOf(rec);
}

inline const std::vector<uint8_t> kKrldv = {'K', 'R', 'L', 'D', 'V', 0x00, 0x01, 0x02, 0xFF};

// Deterministic pseudo-random bytes (xorshift), so a failure can be reproduced.
class Random
{
public:
    explicit Random(uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15ull + 1) {}
    uint64_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state;
    }
    uint64_t below(uint64_t n) { return n ? next() % n : 0; }
    std::vector<uint8_t> bytes(size_t n)
    {
        std::vector<uint8_t> v(n);
        for (auto &b : v)
            b = uint8_t(next() >> 32);
        return v;
    }

private:
    uint64_t m_state;
};

} // namespace KCFormatTest
