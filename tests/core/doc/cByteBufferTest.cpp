#include "doc/cByteBuffer.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

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
