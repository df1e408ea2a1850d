#include "KCCliFindCommand.h"

#include "KCCliArgs.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "doc/KCDataDoc.h"
#include "view/KCSearchHits.h"
#include "view/cBufferSearch.h"

#include <cctype>
#include <cstdio>

namespace {

constexpr uint64_t DefaultLimit = KCSearchHits::DefaultListLimit;
constexpr uint64_t WordMax = 0xFFFF;
constexpr uint64_t AddressMax = 0xFFFFFFFFull;
constexpr unsigned WordAlignment = 2;
constexpr unsigned ByteBits = 8;
constexpr unsigned ByteMask = 0xFF;
constexpr int HexBase = 16;

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

} // namespace

const char *KCCliFindCommand::usage() const
{
    return "usage: krldv find IMAGE (--hex \"AA BB ...\" | --text STR | --word VALUE [--big-endian] [--aligned])\n"
           "                  [--all] [--range START:END] [--from ADDR] [--limit N] [--format NAME]\n"
           "\n"
           "Loads IMAGE into a buffer and prints the address of the first match of the pattern at\n"
           "or after --from, or with --all of every match (overlapping matches count), each as\n"
           "0xXXXXXXXX on its own line; the number of matches follows on standard error.\n"
           "Exit status: 0 something was found, 1 nothing was, 2 a usage error or an unreadable IMAGE.\n"
           "  --hex BYTES    hexadecimal bytes, spaces between them optional\n"
           "  --text STR     the bytes of STR\n"
           "  --word VALUE   a 16-bit word, low byte first (--big-endian: high byte first);\n"
           "                 --aligned takes only matches at even addresses, as the word view shows\n"
           "  --all          every match, not just the first\n"
           "  --range S:E    search only S..E (inclusive; clamped to the buffer)\n"
           "  --from ADDR    start at ADDR instead of the range's first address\n"
           "  --limit N      list at most N matches (default 100000); the count goes on\n"
           "  --format NAME  bin, intel, motorola, ti, jedec, svf, stapl, otp\n";
}

bool KCCliFindCommand::parseHexBytes(const std::string &text, std::vector<uint8_t> &bytes)
{
    bytes.clear();
    size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (std::isspace(static_cast<unsigned char>(c)) || c == ',') {
            ++i;
            continue;
        }
        if (c == '0' && i + 1 < text.size() && (text[i + 1] == 'x' || text[i + 1] == 'X'))
            i += 2;
        // A run of digits: pairs from its start, a lone last digit as a byte of its own.
        size_t end = i;
        while (end < text.size() && hexDigit(text[end]) >= 0)
            ++end;
        if (end == i)
            return false;
        for (; i < end; i += 2) {
            const int hi = hexDigit(text[i]);
            bytes.push_back(static_cast<uint8_t>(i + 1 < end ? hi * HexBase + hexDigit(text[i + 1]) : hi));
        }
        i = end;
    }
    return !bytes.empty();
}

int KCCliFindCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"hex", "text", "word", "range", "from", "limit", "format"},
                      {"all", "big-endian", "aligned"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    const int kinds = a.has("hex") + a.has("text") + a.has("word");
    std::vector<uint8_t> pattern;
    uint64_t rangeStart = 0, rangeEnd = 0, from = 0, limit = DefaultLimit, word = 0;
    if (problem.empty() && a.positional().size() != 1)
        problem = a.positional().empty() ? "no input file given" : "only one input file is taken";
    if (problem.empty() && kinds != 1)
        problem = kinds ? "give only one of --hex, --text and --word" : "no pattern given (--hex, --text or --word)";
    if (problem.empty() && a.has("hex") && !parseHexBytes(a.value("hex"), pattern))
        problem = "--hex takes hexadecimal bytes such as \"AA BB\", not \"" + a.value("hex") + "\"";
    if (problem.empty() && a.has("text")) {
        const std::string t = a.value("text");
        if (t.empty())
            problem = "--text takes a text of at least one character";
        pattern.assign(t.begin(), t.end());
    }
    if (problem.empty() && a.has("word")) {
        if (!KCCliArgs::parseNumber(a.value("word"), word, WordMax))
            problem = "--word takes a number up to 0xFFFF, not " + a.value("word");
        const uint8_t lo = static_cast<uint8_t>(word & ByteMask), hi = static_cast<uint8_t>(word >> ByteBits);
        pattern = a.has("big-endian") ? std::vector<uint8_t>{hi, lo} : std::vector<uint8_t>{lo, hi};
    }
    if (problem.empty() && !a.has("word") && (a.has("big-endian") || a.has("aligned")))
        problem = "--big-endian and --aligned go with --word";
    if (problem.empty() && a.has("range") &&
        (!KCCliArgs::parseRange(a.value("range"), rangeStart, rangeEnd) || rangeEnd > AddressMax))
        problem = "--range takes START:END with START <= END below 4 GiB, not " + a.value("range");
    if (problem.empty() && a.has("from") && !KCCliArgs::parseNumber(a.value("from"), from, AddressMax))
        problem = "--from takes an address below 4 GiB, not " + a.value("from");
    if (problem.empty() && a.has("limit") && (!KCCliArgs::parseNumber(a.value("limit"), limit) || limit == 0))
        problem = "--limit takes a count of at least 1, not " + a.value("limit");
    if (problem.empty())
        problem = KCCliImageLoader::formatProblem(a.positional()[0], a.value("format"));
    if (!problem.empty()) {
        usageError(problem);
        return FindTrouble;
    }

    KCCliHost host;
    KCDataDoc doc;
    const std::string &path = a.positional()[0];
    if (!KCCliImageLoader::load(doc, path, a.value("format")))
        return FindTrouble;

    const cByteBuffer &buffer = doc.AlgoParam().buffer(0);
    const TAG_SEARCH_RANGE described{a.has("range") ? static_cast<int64_t>(rangeStart) : 0,
                                     a.has("range") ? static_cast<int64_t>(rangeEnd)
                                                    : static_cast<int64_t>(buffer.size()) - 1};
    const TAG_SEARCH_RANGE range = cBufferSearch::rangeFromDescription(&described, buffer.size());
    const int64_t start = a.has("from") ? std::max<int64_t>(static_cast<int64_t>(from), range.first) : range.first;

    cBufferSearch search(pattern);
    if (a.has("aligned"))
        search.setAlignment(WordAlignment);
    KCSearchHits hits(a.has("all") ? limit : 1);
    if (a.has("all")) {
        search.findAll(buffer.data(), buffer.size(), start, range.last, hits);
    } else {
        const int64_t at = search.next(buffer.data(), buffer.size(), start, range.last);
        if (at >= 0)
            hits.add(static_cast<uint64_t>(at), pattern.size());
    }
    for (uint64_t at : hits.list())
        std::printf("0x%08llX\n", static_cast<unsigned long long>(at));
    std::fflush(stdout);
    const unsigned long long count = hits.count();
    std::fprintf(stderr, "krldv: %s: %llu match%s of %zu byte%s in 0x%08llX-0x%08llX%s\n", path.c_str(), count,
                 count == 1 ? "" : "es", pattern.size(), pattern.size() == 1 ? "" : "s",
                 static_cast<unsigned long long>(start), static_cast<unsigned long long>(std::max<int64_t>(range.last, 0)),
                 hits.listCut() ? (", the first " + std::to_string(hits.list().size()) + " listed").c_str() : "");
    return count ? FindFound : FindNothing;
}
