#include "KCMappedFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

// A FIFO (or a device, or standard input) is read as a stream, and a stream that goes on
// past its limit stops with a message instead of taking all memory.
TEST(KCMappedFile, StreamsAreReadUpToTheirLimit)
{
    char dir[] = "/tmp/krldv-stream-XXXXXX";
    ASSERT_NE(::mkdtemp(dir), nullptr);
    const std::string fifo = std::string(dir) + "/in";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);

    for (const size_t written : {size_t(3000), size_t(100000)}) {
        std::thread writer([&] {
            const int fd = ::open(fifo.c_str(), O_WRONLY);
            const std::string block(written, 'x');
            // The reader may stop early: a closed pipe is fine here.
            ::signal(SIGPIPE, SIG_IGN);
            ssize_t n = ::write(fd, block.data(), block.size());
            (void)n;
            ::close(fd);
        });
        KCMappedFile file;
        const bool ok = file.open(fifo, true, 50000);
        writer.join();
        if (written <= 50000) {
            ASSERT_TRUE(ok) << file.errorText();
            EXPECT_EQ(file.size(), written);
        } else {
            EXPECT_FALSE(ok);
            EXPECT_NE(file.errorText().find(fifo), std::string::npos);
            EXPECT_NE(file.errorText().find("more than 50000 bytes"), std::string::npos) << file.errorText();
        }
    }
    std::system(("rm -rf '" + std::string(dir) + "'").c_str());
}
