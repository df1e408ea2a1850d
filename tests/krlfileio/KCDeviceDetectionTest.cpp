#include "KCFormatTestTools.h"

#include <string>

using namespace KCFormatTest;

// The device formats must be told apart from each other and from the hex formats that come
// before them in the table; OTP files are recognised by extension only.
TEST(KCDeviceDetection, GoldenFilesAreDetectedAsTheirFormat)
{
    const struct
    {
        const char *file;
        const char *format;
    } cases[] = {
        {"jedec/tiny-crlf.jed", "jedec"},      {"jedec/jesd3-example.jed", "jedec"},
        {"svf/reference.svf", "svf"},          {"stapl/reference.stp", "stapl"},
        {"stapl/reference-crlf.stp", "stapl"},
    };
    for (const auto &c : cases) {
        const std::string text = dataFile(c.file);
        const KCFileFormatInfo *f =
            KCFileFormatRegistry::detect(reinterpret_cast<const uint8_t *>(text.data()), text.size());
        ASSERT_NE(f, nullptr) << c.file;
        EXPECT_STREQ(f->name, c.format) << c.file;
    }
    for (const char *svf : {"FREQUENCY 1E6 HZ;", "STATE RESET;", "// comment\nSIR 8 TDI (FE);"}) {
        const KCFileFormatInfo *f = KCFileFormatRegistry::detect(reinterpret_cast<const uint8_t *>(svf), strlen(svf));
        ASSERT_NE(f, nullptr) << svf;
        EXPECT_STREQ(f->name, "svf");
    }
    const std::string otp = dataFile("otp/image-1024.otp");
    EXPECT_EQ(KCFileFormatRegistry::detect(reinterpret_cast<const uint8_t *>(otp.data()), otp.size()), nullptr);
    for (const char *ext : {"jed", "svf", "stp", "JAM", "otp"})
        EXPECT_NE(KCFileFormatRegistry::byExtension(ext), nullptr) << ext;
}
