#include "host/KCFormat.h"

#include <cctype>
#include <cstdio>

namespace {

struct Conversion {
    bool leftAlign = false;
    bool zeroPad = false;
    int width = 0;
    char conversion = 0;
};

// Parses the conversion after '%' at fmt[pos]; returns the index after its last character.
size_t parseConversion(const std::string &fmt, size_t pos, Conversion &conv)
{
    while (pos < fmt.size() && (fmt[pos] == '-' || fmt[pos] == '0')) {
        if (fmt[pos] == '-')
            conv.leftAlign = true;
        else
            conv.zeroPad = true;
        ++pos;
    }
    while (pos < fmt.size() && std::isdigit(static_cast<unsigned char>(fmt[pos]))) {
        conv.width = conv.width * 10 + (fmt[pos] - '0');
        if (conv.width > 64)
            conv.width = 64;
        ++pos;
    }
    // Length modifiers carry no meaning here: every number is 64-bit.
    while (pos < fmt.size() && (fmt[pos] == 'l' || fmt[pos] == 'h'))
        ++pos;
    conv.conversion = pos < fmt.size() ? fmt[pos] : 0;
    return pos < fmt.size() ? pos + 1 : pos;
}

bool isConversion(char c)
{
    return c == 'd' || c == 'i' || c == 'u' || c == 'x' || c == 'X' || c == 'c' || c == 's';
}

std::string convert(const Conversion &conv, const KCFormatArg *arg)
{
    std::string body;
    if (arg) {
        char buf[32];
        const int64_t n = arg->number();
        switch (conv.conversion) {
        case 's':
            if (arg->isText())
                body = arg->text();
            else {
                std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(n));
                body = buf;
            }
            break;
        case 'c':
            body = arg->isText() ? arg->text().substr(0, 1) : std::string(1, static_cast<char>(n));
            break;
        case 'd':
        case 'i':
            std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(n));
            body = buf;
            break;
        case 'u':
            std::snprintf(buf, sizeof buf, "%llu", static_cast<unsigned long long>(static_cast<uint32_t>(n)));
            body = buf;
            break;
        case 'x':
        case 'X':
            std::snprintf(buf, sizeof buf, conv.conversion == 'x' ? "%llx" : "%llX",
                          static_cast<unsigned long long>(n < 0 ? static_cast<uint32_t>(n)
                                                                : static_cast<uint64_t>(n)));
            body = buf;
            break;
        default:
            break;
        }
    }
    if (static_cast<int>(body.size()) >= conv.width)
        return body;
    const size_t pad = static_cast<size_t>(conv.width) - body.size();
    if (conv.leftAlign)
        return body + std::string(pad, ' ');
    if (conv.zeroPad && conv.conversion != 's' && conv.conversion != 'c') {
        if (!body.empty() && body[0] == '-')
            return "-" + std::string(pad, '0') + body.substr(1);
        return std::string(pad, '0') + body;
    }
    return std::string(pad, ' ') + body;
}

} // namespace

std::string KCFormat::format(const std::string &fmt, std::initializer_list<KCFormatArg> args)
{
    return format(fmt, std::vector<KCFormatArg>(args));
}

std::string KCFormat::format(const std::string &fmt, const std::vector<KCFormatArg> &args)
{
    std::string out;
    out.reserve(fmt.size() + 16);
    size_t next = 0;
    for (size_t i = 0; i < fmt.size();) {
        if (fmt[i] != '%') {
            out += fmt[i++];
            continue;
        }
        if (i + 1 < fmt.size() && fmt[i + 1] == '%') {
            out += '%';
            i += 2;
            continue;
        }
        Conversion conv;
        const size_t end = parseConversion(fmt, i + 1, conv);
        if (!isConversion(conv.conversion)) {
            out.append(fmt, i, end - i);
            i = end;
            continue;
        }
        out += convert(conv, next < args.size() ? &args[next] : nullptr);
        ++next;
        i = end;
    }
    return out;
}

int KCFormat::argumentCount(const std::string &fmt)
{
    int count = 0;
    for (size_t i = 0; i < fmt.size();) {
        if (fmt[i] != '%') {
            ++i;
            continue;
        }
        if (i + 1 < fmt.size() && fmt[i + 1] == '%') {
            i += 2;
            continue;
        }
        Conversion conv;
        i = parseConversion(fmt, i + 1, conv);
        if (isConversion(conv.conversion))
            ++count;
    }
    return count;
}
