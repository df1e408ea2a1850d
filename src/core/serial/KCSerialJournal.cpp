#include "serial/KCSerialJournal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

constexpr size_t HostNameSize = 256;
const char *const KindNames[] = {"take", "pass", "fail", "abandon"};
constexpr int KindCount = 4;
const char *const HexDigits = "0123456789ABCDEF";

} // namespace

std::string KCSerialJournal::thisStation()
{
    char host[HostNameSize] = {};
    if (::gethostname(host, sizeof host - 1) != 0 || !host[0])
        std::strcpy(host, "localhost");
    return std::string(host) + ":" + std::to_string(::getpid());
}

std::string KCSerialJournal::now()
{
    const std::time_t t = std::time(nullptr);
    std::tm tm;
    ::gmtime_r(&t, &tm);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &tm);
    return text;
}

const char *KCSerialJournal::kindName(TAG_SERIAL_JOURNAL_EVENT::Kind kind)
{
    return KindNames[kind];
}

std::string KCSerialJournal::toHex(const std::string &bytes)
{
    std::string hex;
    for (unsigned char c : bytes) {
        hex += HexDigits[c >> 4];
        hex += HexDigits[c & 0xF];
    }
    return hex;
}

std::string KCSerialJournal::fromHex(const std::string &hex)
{
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16));
    return bytes;
}

std::string KCSerialJournal::format(const TAG_SERIAL_JOURNAL_EVENT &e)
{
    std::string line = e.time + " " + e.station + " " + kindName(e.kind) + " " + e.key;
    if (!e.detail.empty())
        line += " " + e.detail;
    return line;
}

bool KCSerialJournal::parse(const std::string &line, TAG_SERIAL_JOURNAL_EVENT *e)
{
    std::istringstream in(line);
    std::string kind;
    if (!(in >> e->time >> e->station >> kind >> e->key))
        return false;
    e->detail.clear();
    in >> e->detail;
    for (int k = 0; k < KindCount; ++k) {
        if (kind == KindNames[k]) {
            e->kind = static_cast<TAG_SERIAL_JOURNAL_EVENT::Kind>(k);
            return true;
        }
    }
    return false;
}

bool KCSerialJournal::append(TAG_SERIAL_JOURNAL_EVENT::Kind kind, const std::string &key, const std::string &detail)
{
    TAG_SERIAL_JOURNAL_EVENT e;
    e.time = now();
    e.station = thisStation();
    e.kind = kind;
    e.key = key;
    e.detail = detail;
    const std::string line = format(e) + "\n";
    const int fd = ::open(m_path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        m_error = m_path + ": " + std::strerror(errno);
        return false;
    }
    // One write per line: a station killed meanwhile leaves the line whole or absent.
    const ssize_t n = ::write(fd, line.data(), line.size());
    const bool ok = n == static_cast<ssize_t>(line.size()) && ::fdatasync(fd) == 0;
    if (!ok)
        m_error = m_path + ": " + (n < 0 ? std::strerror(errno) : "the line was not written whole");
    ::close(fd);
    return ok;
}

bool KCSerialJournal::read(std::vector<TAG_SERIAL_JOURNAL_EVENT> *events)
{
    events->clear();
    m_error.clear();
    std::ifstream in(m_path, std::ios::binary);
    if (!in) {
        if (::access(m_path.c_str(), F_OK) != 0)
            return true;
        m_error = m_path + ": cannot read it";
        return false;
    }
    int lineNo = 0;
    for (std::string line; std::getline(in, line);) {
        ++lineNo;
        if (line.empty())
            continue;
        TAG_SERIAL_JOURNAL_EVENT e;
        if (!parse(line, &e)) {
            m_error += m_path + "(" + std::to_string(lineNo) + "): not a journal line\n";
            continue;
        }
        e.line = lineNo;
        events->push_back(std::move(e));
    }
    return true;
}
