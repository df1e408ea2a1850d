#include "doc/cByteBuffer.h"
#include "doc/cFileLeaseGuard.h"

#include "KCTempDir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct HugePageHooks
{
    explicit HugePageHooks(int (*advise)(void *, size_t))
        : free(cByteBuffer::s_hugePagesFree), oldAdvise(cByteBuffer::s_adviseHugePages)
    {
        cByteBuffer::s_hugePagesFree = [](uint64_t) { return true; };
        cByteBuffer::s_adviseHugePages = advise;
    }
    ~HugePageHooks()
    {
        cByteBuffer::s_hugePagesFree = free;
        cByteBuffer::s_adviseHugePages = oldAdvise;
    }
    bool (*free)(uint64_t);
    int (*oldAdvise)(void *, size_t);
};

// Grows a buffer from small to past the huge-page threshold twice, checking every region.
void growAndCheck()
{
    constexpr uint64_t MiB = uint64_t(1) << 20;
    cByteBuffer b;
    ASSERT_TRUE(b.resize(MiB, 0x11));
    b.SetAt(MiB - 1, 0xA5);
    ASSERT_TRUE(b.resize(80 * MiB, 0x22));
    ASSERT_TRUE(b.resize(200 * MiB, 0x33));
    EXPECT_EQ(b.GetAt(0), 0x11);
    EXPECT_EQ(b.GetAt(MiB - 1), 0xA5);
    EXPECT_EQ(b.GetAt(MiB), 0x22);
    EXPECT_EQ(b.GetAt(80 * MiB - 1), 0x22);
    EXPECT_EQ(b.GetAt(80 * MiB), 0x33);
    EXPECT_EQ(b.GetAt(200 * MiB - 1), 0x33);
}

} // namespace

// Large buffers ask for huge pages; whatever becomes of that request, growing keeps every
// byte: refused, or leaving the mapping in pieces that the kernel then cannot move.
TEST(cByteBuffer, GrowsWhateverBecomesOfTheHugePageRequest)
{
    {
        HugePageHooks refused([](void *, size_t) { return -1; });
        growAndCheck();
    }
    {
        HugePageHooks split([](void *p, size_t n) { return ::madvise(static_cast<char *>(p) + n / 2, 4096, MADV_DONTFORK); });
        growAndCheck();
    }
}

TEST(cByteBuffer, ALazyBufferTakesMemoryOnlyWhereWritten)
{
    cByteBuffer b;
    b.setLazy(true);
    ASSERT_TRUE(b.resize(uint64_t(1) << 32, 0)); // 4 GiB of address space, nothing touched
    b.SetAt((uint64_t(1) << 32) - 1, 7);
    EXPECT_EQ(b.GetAt(12345), 0);
    ASSERT_TRUE(b.resize(16, 0)); // shrinking gives the pages back: they read as zero again
    ASSERT_TRUE(b.resize(uint64_t(1) << 32, 0));
    EXPECT_EQ(b.GetAt((uint64_t(1) << 32) - 1), 0);
}

namespace {

constexpr uint64_t SharedBytes = (uint64_t(3) << 20) + 123; // not a whole number of pages

std::string pattern(uint64_t n, unsigned seed)
{
    std::string s(n, '\0');
    for (uint64_t i = 0; i < n; ++i)
        s[i] = char((i * 131 + seed) >> 3);
    return s;
}

bool leasesWorkIn(const std::string &path)
{
    const int fd = ::open(path.c_str(), O_RDONLY);
    const bool ok = fd >= 0 && ::fcntl(fd, F_SETLEASE, F_RDLCK) == 0;
    if (fd >= 0)
        ::close(fd);
    return ok;
}

// Another program rewrites the file in place: the way `cp` and most tools overwrite a file.
void rewriteFromChild(const std::string &path, const std::string &text, bool truncateOnly)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (truncateOnly)
            _exit(::truncate(path.c_str(), 0) == 0 ? 0 : 1);
        const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC);
        const bool ok = fd >= 0 && ::write(fd, text.data(), text.size()) == ssize_t(text.size());
        _exit(ok ? 0 : 1);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

bool bufferHolds(const cByteBuffer &b, const std::string &text)
{
    return b.size() == text.size() && std::memcmp(b.data(), text.data(), text.size()) == 0;
}

} // namespace

// The buffer shares the file's pages, yet neither follows the other: the user's edits stay out
// of the file, and the file rewritten or cut short by another program leaves the buffer as
// it was loaded.
TEST(cByteBuffer, ASharedFileAndTheBufferNeverChangeEachOther)
{
    TempDir dir;
    const std::string path = dir.file("image.bin");
    const std::string original = pattern(SharedBytes, 1);
    writeFile(path, original);
    if (!leasesWorkIn(path))
        GTEST_SKIP() << "no file leases on " << dir.path;

    for (const bool truncateOnly : {false, true}) {
        writeFile(path, original);
        const unsigned breaksBefore = cFileLeaseGuard::breakCount();
        cByteBuffer b;
        const int fd = ::open(path.c_str(), O_RDONLY);
        ASSERT_TRUE(b.shareFile(fd, 0, SharedBytes));
        ::close(fd); // the buffer keeps what it needs
        EXPECT_TRUE(b.isSharingFile());
        std::string expected = original;
        b.SetAt(5, 0x5A);
        expected[5] = 0x5A;
        EXPECT_EQ(readFile(path), original);

        rewriteFromChild(path, pattern(SharedBytes, 2), truncateOnly);
        EXPECT_EQ(cFileLeaseGuard::breakCount(), breaksBefore + 1);
        EXPECT_TRUE(bufferHolds(b, expected));
        b.SetAt(SharedBytes - 1, 0x11); // still writable after the break
        EXPECT_EQ(b.GetAt(SharedBytes - 1), 0x11);
    }
}

// Growing, shrinking and emptying a shared buffer behave as for any other: growth keeps the
// bytes and fills the rest, bytes given up come back as the fill and never as the file's,
// and an emptied buffer lets the file go.
TEST(cByteBuffer, ASharedBufferResizesLikeAnyOther)
{
    TempDir dir;
    const std::string path = dir.file("image.bin");
    const std::string original = pattern(SharedBytes, 3);
    writeFile(path, original);
    if (!leasesWorkIn(path))
        GTEST_SKIP() << "no file leases on " << dir.path;

    cByteBuffer b;
    int fd = ::open(path.c_str(), O_RDONLY);
    ASSERT_TRUE(b.shareFile(fd, 0, SharedBytes));
    ASSERT_TRUE(b.resize(100, 0));
    ASSERT_TRUE(b.resize(SharedBytes, 0));
    EXPECT_EQ(b.GetAt(99), uint8_t(original[99]));
    EXPECT_EQ(b.GetAt(100), 0);
    EXPECT_EQ(b.GetAt(SharedBytes - 1), 0);
    ASSERT_TRUE(b.resize(2 * SharedBytes, 0xEE));
    EXPECT_EQ(b.GetAt(50), uint8_t(original[50]));
    EXPECT_EQ(b.GetAt(2 * SharedBytes - 1), 0xEE);
    EXPECT_FALSE(b.isSharingFile());

    cByteBuffer c;
    ASSERT_TRUE(c.shareFile(fd, 0, SharedBytes));
    ASSERT_TRUE(c.resize(0, 0));
    EXPECT_FALSE(c.isSharingFile());
    const unsigned breaksBefore = cFileLeaseGuard::breakCount();
    rewriteFromChild(path, "new", false);
    EXPECT_EQ(cFileLeaseGuard::breakCount(), breaksBefore);

    // A file somebody holds open for writing cannot be guarded: the caller reads it instead.
    const int writer = ::open(path.c_str(), O_WRONLY);
    cByteBuffer d;
    EXPECT_FALSE(d.shareFile(fd, 0, 3));
    ::close(writer);
    ::close(fd);
}
