#include "KCFileFormatRegistry.h"
#include "KCBinFile.h"
#include "KCHexFileIntel.h"
#include "KCHexFileMotorola.h"
#include "KCHexFileTI.h"
#include "KCJedecFile.h"
#include "KCStaplFile.h"
#include "KCSvfFile.h"
#include "KCBinFileOTP.h"

#include <algorithm>
#include <cctype>

namespace {

template <class T>
std::unique_ptr<KCFileFormat> make(KCFileMessage &sink)
{
    return std::make_unique<T>(sink);
}

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

} // namespace

const std::vector<KCFileFormatInfo> &KCFileFormatRegistry::formats()
{
    // Order matters for detection: the more specific detectors come first.
    static const std::vector<KCFileFormatInfo> table = {
        {"intel", "Intel HEX", "hex|ihx|ihex", true, KCHexFileIntel::detect, make<KCHexFileIntel>},
        {"motorola", "Motorola S-record", "mhx|ms1|ms2|ms3|s1|s2|s3|srec|mot|s19|s28|s37|sx", true, KCHexFileMotorola::detect, make<KCHexFileMotorola>},
        {"ti", "TI-TXT or TI-Tagged", "ti", false, KCHexFileTI::detect, make<KCHexFileTI>},
        {"jedec", "JEDEC fuse map", "jed", true, KCJedecFile::detect, make<KCJedecFile>},
        {"stapl", "STAPL File", "stp|jam", false, KCStaplFile::detect, make<KCStaplFile>},
        {"svf", "Serial Vector Format", "svf", false, KCSvfFile::detect, make<KCSvfFile>},
        {"otp", "Holtek OTP-File", "otp", false, nullptr, make<KCBinFileOTP>},
        {"bin", "Raw binary", "bin", true, nullptr, make<KCBinFile>},
    };
    return table;
}

const KCFileFormatInfo *KCFileFormatRegistry::byName(const std::string &name)
{
    const std::string n = lower(name);
    for (const auto &f : formats())
        if (n == f.name)
            return &f;
    return nullptr;
}

const KCFileFormatInfo *KCFileFormatRegistry::byExtension(const std::string &extension)
{
    const std::string ext = lower(extension);
    if (ext.empty())
        return nullptr;
    for (const auto &f : formats()) {
        const std::string list = f.extensions;
        size_t start = 0;
        while (start <= list.size()) {
            const size_t bar = std::min(list.find('|', start), list.size());
            if (list.compare(start, bar - start, ext) == 0 && bar - start == ext.size())
                return &f;
            start = bar + 1;
        }
    }
    return nullptr;
}

const KCFileFormatInfo *KCFileFormatRegistry::detect(const uint8_t *data, size_t size)
{
    for (const auto &f : formats())
        if (f.detect && f.detect(data, size))
            return &f;
    return nullptr;
}
