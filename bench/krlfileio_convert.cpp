// Converts one programmer file into another straight through the format library, the way
// `krldv convert` does but without a document, so the formats can be timed on their own.
// usage: krlfileio_convert IN OUT [--from NAME] [--to NAME] [--fill BYTE] [--range START:END]
//                          [--line-ending crlf|lf] [--record-bytes N]
#include "KCFdOutputStream.h"
#include "KCFileFormatRegistry.h"
#include "KCMappedFile.h"
#include "KCVectorByteArray.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

class StderrSink : public KCFileMessage
{
public:
    void message(Severity severity, const std::string &fileName, uint64_t line, const std::string &text) override
    {
        static const char *const kinds[] = {"info", "warning", "error"};
        if (line)
            std::fprintf(stderr, "%s:%llu: %s: %s\n", fileName.c_str(), (unsigned long long)line, kinds[severity],
                         text.c_str());
        else
            std::fprintf(stderr, "%s: %s: %s\n", fileName.c_str(), kinds[severity], text.c_str());
    }
};

const KCFileFormatInfo *byPath(const std::string &path)
{
    const size_t dot = path.rfind('.');
    return dot == std::string::npos ? nullptr : KCFileFormatRegistry::byExtension(path.substr(dot + 1));
}

int usage()
{
    std::fprintf(stderr, "usage: krlfileio_convert IN OUT [--from NAME] [--to NAME] [--fill BYTE] "
                         "[--range START:END] [--line-ending crlf|lf] [--record-bytes N]\n");
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    std::string in, out, from, to;
    KCLoadOptions load;
    KCSaveOptions save;
    bool ranged = false;
    uint64_t end = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool hasValue = i + 1 < argc;
        if (a == "--from" && hasValue)
            from = argv[++i];
        else if (a == "--to" && hasValue)
            to = argv[++i];
        else if (a == "--fill" && hasValue)
            load.fill = uint8_t(std::strtoul(argv[++i], nullptr, 0));
        else if (a == "--range" && hasValue) {
            char *colon = nullptr;
            load.rangeStart = std::strtoull(argv[++i], &colon, 0);
            if (*colon != ':')
                return usage();
            end = std::strtoull(colon + 1, nullptr, 0);
            load.rangeLength = end - load.rangeStart + 1;
            ranged = true;
        } else if (a == "--line-ending" && hasValue)
            save.crlf = std::strcmp(argv[++i], "lf") != 0;
        else if (a == "--record-bytes" && hasValue)
            save.bytesPerRecord = unsigned(std::strtoul(argv[++i], nullptr, 0));
        else if (in.empty())
            in = a;
        else if (out.empty())
            out = a;
        else
            return usage();
    }
    if (in.empty() || out.empty())
        return usage();

    const KCFileFormatInfo *reader = !from.empty() ? KCFileFormatRegistry::byName(from) : byPath(in);
    // As the documents do: a raw image is read from the descriptor straight into the
    // image, so its mapping need not be faulted in first.
    const bool raw = reader && reader == KCFileFormatRegistry::byName("bin");
    KCMappedFile file;
    if (!file.open(in, !raw)) {
        std::fprintf(stderr, "%s\n", file.errorText().c_str());
        return 1;
    }
    if (!reader)
        reader = KCFileFormatRegistry::detect(file.data(), file.size());
    const KCFileFormatInfo *writer = !to.empty() ? KCFileFormatRegistry::byName(to) : byPath(out);
    if (!reader || !writer || !writer->writable)
        return usage();

    StderrSink sink;
    KCVectorByteArray image;
    const KCLoadResult result = reader->create(sink)->Load(file.input(), image, load);
    if (!result.ok)
        return 1;
    if (ranged && image.size() < load.rangeLength)
        image.resize(load.rangeLength, load.fill);
    save.startAddress = load.rangeStart;

    const int fd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
        std::fprintf(stderr, "cannot create %s: %s\n", out.c_str(), std::strerror(errno));
        return 1;
    }
    KCFdOutputStream stream(fd);
    const bool ok = writer->create(sink)->Save(stream, out, image.data(), image.size(), save) && stream.flush();
    if (stream.error())
        std::fprintf(stderr, "cannot write %s: %s\n", out.c_str(), std::strerror(stream.error()));
    return ::close(fd) == 0 && ok ? 0 : 1;
}
