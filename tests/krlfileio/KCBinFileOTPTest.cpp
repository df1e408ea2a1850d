#include "KCFormatTestTools.h"

#include <string>

using namespace KCFormatTest;

TEST(KCBinFileOTP, LoadsTheRawImageAfterTheHeader)
{
    const std::string file = dataFile("otp/image-1024.otp");
    ASSERT_EQ(file.size(), 1024u);

    const Loaded all = load("otp", file);
    ASSERT_TRUE(all.result.ok) << all.sink.dump();
    EXPECT_EQ(std::string(all.bytes.begin(), all.bytes.end()), file);
    EXPECT_TRUE(all.sink.contains(KCFileMessage::Info,
                                  "loaded as raw image after 0 header bytes: file size 1024 bytes, 1024 bytes loaded"));

    KCLoadOptions options;
    options.headerBytes = 16;
    options.expectedSize = 1008;
    const Loaded skipped = load("otp", file, options);
    ASSERT_TRUE(skipped.result.ok) << skipped.sink.dump();
    EXPECT_EQ(std::string(skipped.bytes.begin(), skipped.bytes.end()), file.substr(16));
    EXPECT_TRUE(skipped.sink.contains(KCFileMessage::Info, "after 16 header bytes: file size 1024 bytes, 1008 bytes"));
    EXPECT_EQ(skipped.sink.count(KCFileMessage::Warning), 0u) << skipped.sink.dump();
}

TEST(KCBinFileOTP, SizeProblems)
{
    const std::string file = dataFile("otp/image-1024.otp");
    KCLoadOptions options;
    options.headerBytes = 2000;
    const Loaded tooShort = load("otp", file, options);
    EXPECT_FALSE(tooShort.result.ok);
    EXPECT_TRUE(tooShort.sink.contains(KCFileMessage::Error, "file smaller than its header"));
    EXPECT_TRUE(tooShort.bytes.empty());

    options.headerBytes = 16;
    options.expectedSize = 2048;
    const Loaded unexpected = load("otp", file, options);
    EXPECT_TRUE(unexpected.result.ok);
    EXPECT_TRUE(unexpected.sink.contains(KCFileMessage::Warning, "1008 image bytes after its header, the device 2048"));
}
