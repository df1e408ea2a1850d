#include "KCFdOutputStream.h"
#include "KCMappedFile.h"
#include "KCFormatTestTools.h"

#include <fcntl.h>
#include <unistd.h>

using namespace KCFormatTest;

TEST(KCMappedFile, ReadsRegularFilesPipesAndNamesTheFileOnError)
{
    const std::string path = ::testing::TempDir() + "krldv_mapped_" + std::to_string(::getpid());
    const std::string content = std::string("abc\0def", 7) + std::string(3 << 20, 'x');
    writeFile(path, content);
    KCMappedFile file;
    ASSERT_TRUE(file.open(path)) << file.errorText();
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(file.data()), file.size()), content);
    EXPECT_EQ(file.input().name, path);

    // A pipe cannot be mapped: its bytes are read in one go.
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const std::string fdPath = "/dev/fd/" + std::to_string(fds[0]);
    ASSERT_EQ(::write(fds[1], "pipe data", 9), 9);
    ::close(fds[1]);
    KCMappedFile piped;
    ASSERT_TRUE(piped.open(fdPath)) << piped.errorText();
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(piped.data()), piped.size()), "pipe data");
    ::close(fds[0]);

    writeFile(path, "");
    ASSERT_TRUE(file.open(path));
    EXPECT_EQ(file.size(), 0u);
    std::remove(path.c_str());

    EXPECT_FALSE(file.open(path));
    EXPECT_NE(file.errorText().find(path), std::string::npos) << file.errorText();
    EXPECT_FALSE(file.open(::testing::TempDir()));
}

TEST(KCFdOutputStream, KeepsOrderAcrossSmallAndLargeWritesAndReportsFailure)
{
    const std::string path = ::testing::TempDir() + "krldv_fdout_" + std::to_string(::getpid());
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(fd, 0);
    std::string expected;
    {
        KCFdOutputStream out(fd, 64);
        for (size_t n : {10u, 50u, 10u, 200u, 1u, 63u, 64u}) {
            const std::string block(n, char('a' + n % 26));
            EXPECT_TRUE(out.write(block.data(), block.size()));
            expected += block;
        }
        EXPECT_TRUE(out.flush());
        EXPECT_EQ(out.bytesWritten(), expected.size());
    }
    ::close(fd);
    EXPECT_EQ(readFile(path), expected);
    std::remove(path.c_str());

    const int readOnly = ::open("/dev/null", O_RDONLY);
    KCFdOutputStream bad(readOnly, 16);
    EXPECT_TRUE(bad.write("x", 1)); // buffered, not yet written
    EXPECT_FALSE(bad.flush());
    EXPECT_NE(bad.error(), 0);
    EXPECT_FALSE(bad.write("y", 1));
    ::close(readOnly);
}
