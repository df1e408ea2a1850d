#include "view/KCCopyAs.h"

#include "KCFileFormatRegistry.h"
#include "KCFileMessage.h"

#include <cinttypes>
#include <cstdio>

namespace {

constexpr uint64_t BytesPerLine = 16;
const char *const HexDigits = "0123456789ABCDEF";

class TextOutput : public KCOutputStream
{
public:
    bool write(const void *data, size_t size) override
    {
        text.append(static_cast<const char *>(data), size);
        return true;
    }
    std::string text;
};

class NoMessages : public KCFileMessage
{
public:
    void message(Severity, const std::string &, uint64_t, const std::string &) override {}
};

} // namespace

std::string KCCopyAs::hexText(const uint8_t *bytes, uint64_t count)
{
    std::string text;
    text.reserve(count * 3);
    for (uint64_t i = 0; i < count; ++i) {
        text += HexDigits[bytes[i] >> 4];
        text += HexDigits[bytes[i] & 0xF];
        text += (i + 1) % BytesPerLine == 0 || i + 1 == count ? '\n' : ' ';
    }
    return text;
}

std::string KCCopyAs::cArray(const uint8_t *bytes, uint64_t count, uint64_t address)
{
    char head[96];
    std::snprintf(head, sizeof head, "/* 0x%08" PRIX64 " */\nconst unsigned char data[%" PRIu64 "] = {\n", address,
                  count);
    std::string text = head;
    for (uint64_t i = 0; i < count; ++i) {
        if (i % BytesPerLine == 0)
            text += "   ";
        text += " 0x";
        text += HexDigits[bytes[i] >> 4];
        text += HexDigits[bytes[i] & 0xF];
        if (i + 1 < count)
            text += ',';
        if ((i + 1) % BytesPerLine == 0 || i + 1 == count)
            text += '\n';
    }
    return text + "};\n";
}

std::string KCCopyAs::intelHex(const uint8_t *bytes, uint64_t count, uint64_t address)
{
    const KCFileFormatInfo *info = KCFileFormatRegistry::byName("intel");
    if (!info)
        return std::string();
    NoMessages sink;
    TextOutput out;
    KCSaveOptions options;
    options.startAddress = address;
    options.crlf = false;
    info->create(sink)->Save(out, "clipboard", bytes, count, options);
    return out.text;
}
