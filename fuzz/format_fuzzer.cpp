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
// Where the window lies, picked by the input's length: the bottom of the address space, just
// below 2 GiB (where a signed test of a 32-bit address turns) and the top of the 32-bit space
// (where an inclusive end is 0xFFFFFFFF and a length of 4 GiB no longer fits 32 bits).
constexpr uint64_t kWindows[] = {0, 0x80000000 - kFuzzRange / 2, 0x100000000 - kFuzzRange};
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

// Formats whose records name their addresses; the others start at address 0.
bool carriesAddresses(const char *name)
{
    for (const char *n : {"intel", "motorola", "ti"})
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
    if (carriesAddresses(info->name))
        options.rangeStart = kWindows[size % (sizeof kWindows / sizeof kWindows[0])];
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
        saveOptions.startAddress = options.rangeStart;
        if (!info->create(saveSink)->Save(out, "fuzz.output", target.data(), target.size(), saveOptions))
            std::abort();
        KCVectorByteArray again;
        CountingSink reloadSink;
        const KCInputFile written{"fuzz.output", reinterpret_cast<const uint8_t *>(out.text.data()), out.text.size()};
        KCLoadOptions reload;
        reload.rangeStart = options.rangeStart;
        reload.rangeLength = kFuzzRange;
        if (!info->create(reloadSink)->Load(written, again, reload).ok || again.bytes() != target.bytes())
            std::abort();
    }
    return 0;
}
