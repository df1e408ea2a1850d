// Loads the fuzz input through the format named by KRLDV_FUZZ_FORMAT and checks what every
// reader promises: no crash, a failed load says why, and the result describes the target.
// Formats whose writer reproduces any image are also saved and read back.
#include "KCFileFormatRegistry.h"
#include "KCVectorByteArray.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Addresses up to 4 GiB are legal; a window keeps the target small without skipping checks.
constexpr uint64_t kFuzzRange = uint64_t(1) << 20;
// Larger images are not worth a write and a second read per input.
constexpr uint64_t kMaxRoundTrip = uint64_t(1) << 16;

class CountingSink : public KCFileMessage
{
public:
    void message(Severity severity, const std::string &fileName, uint64_t, const std::string &text) override
    {
        if (fileName.empty() || text.empty())
            std::abort();
        errors += severity == Error;
    }
    int errors = 0;
};

class StringOutput : public KCOutputStream
{
public:
    bool write(const void *data, size_t size) override
    {
        text.append(static_cast<const char *>(data), size);
        return true;
    }
    std::string text;
};

bool roundTrips(const char *name)
{
    for (const char *n : {"bin", "intel", "motorola", "jedec"})
        if (std::strcmp(n, name) == 0)
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const KCFileFormatInfo *info = KCFileFormatRegistry::byName(KRLDV_FUZZ_FORMAT);
    if (!info)
        return 0;

    CountingSink sink;
    KCLoadOptions options;
    options.rangeLength = kFuzzRange;
    KCVectorByteArray target;
    const KCLoadResult result = info->create(sink)->Load(KCInputFile{"fuzz.input", data, size}, target, options);
    if (!result.ok && sink.errors == 0)
        std::abort();
    if (result.bytesLoaded && (result.highest >= target.size() || result.lowest > result.highest))
        std::abort();
    if (target.size() > kFuzzRange)
        std::abort();

    if (result.ok && info->writable && roundTrips(info->name) && target.size() && target.size() <= kMaxRoundTrip) {
        CountingSink saveSink;
        StringOutput out;
        KCSaveOptions saveOptions;
        if (!info->create(saveSink)->Save(out, "fuzz.output", target.data(), target.size(), saveOptions))
            std::abort();
        KCVectorByteArray again;
        CountingSink reloadSink;
        const KCInputFile written{"fuzz.output", reinterpret_cast<const uint8_t *>(out.text.data()), out.text.size()};
        if (!info->create(reloadSink)->Load(written, again, KCLoadOptions{}).ok || again.bytes() != target.bytes())
            std::abort();
    }
    return 0;
}
