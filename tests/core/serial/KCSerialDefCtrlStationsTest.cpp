// Several station processes consuming numbers from one definition file at the same time.
#include "serial/KCSerialDefCtrl.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
constexpr auto StationTimeout = std::chrono::seconds(30);

class SerialStationsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // tmpfs when there is one: the test is about exclusion, not about the disk.
        const std::string base = access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : ::testing::TempDir();
        std::string pattern = base + "krldvstationsXXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern + "/";
        defFile = dir + "line.ser";
        std::ofstream(defFile, std::ios::binary) << "// shared by the line\r\nLine\r\n{\r\nTYPE=CALC\r\n"
                                                    "LENGTH=4   // bytes\r\nNEXT=0\r\nSTEP=1\r\n}\r\n";
    }
    void TearDown() override
    {
        for (const Station &s : stations) {
            if (s.pid > 0) {
                kill(s.pid, SIGKILL);
                waitpid(s.pid, nullptr, 0);
            }
        }
        std::system(("rm -rf '" + dir + "'").c_str());
    }

    struct Station
    {
        pid_t pid = -1;
        std::string output;
        int status = -1;
    };

    void start(int count, int numbers, int pauseMicroseconds = 0)
    {
        for (int i = 0; i < count; ++i) {
            Station s;
            s.output = dir + "station" + std::to_string(stations.size()) + ".out";
            s.pid = fork();
            if (s.pid == 0) {
                const int fd = open(s.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
                dup2(fd, STDOUT_FILENO);
                execl(KRLDV_SERIAL_STATION, KRLDV_SERIAL_STATION, defFile.c_str(),
                      std::to_string(numbers).c_str(), std::to_string(pauseMicroseconds).c_str(),
                      static_cast<char *>(nullptr));
                _exit(127);
            }
            ASSERT_GT(s.pid, 0);
            stations.push_back(s);
        }
    }

    // Waits for every station still running; false when one hangs.
    bool waitAll()
    {
        const auto deadline = Clock::now() + StationTimeout;
        for (Station &s : stations) {
            while (s.pid > 0) {
                if (waitpid(s.pid, &s.status, WNOHANG) != 0)
                    s.pid = 0;
                else if (Clock::now() > deadline)
                    return false;
                else
                    std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }
        return true;
    }

    // Every number any station reported, each must be new.
    std::multiset<unsigned> handedOut() const
    {
        std::multiset<unsigned> numbers;
        for (const Station &s : stations) {
            std::ifstream in(s.output);
            unsigned v;
            while (in >> v)
                numbers.insert(v);
        }
        return numbers;
    }

    unsigned fileNext()
    {
        KCSerialDefCtrl ctrl(&host, defFile);
        EXPECT_EQ(ctrl.FILE_UpdateDefFileInfo(), 1);
        return ctrl.GetSerialBlock(0).next;
    }

    KCTestHost host;
    std::string dir;
    std::string defFile;
    std::vector<Station> stations;
};
}

TEST_F(SerialStationsTest, EightStationsGetEachNumberOnce)
{
    constexpr int Stations = 8;
    constexpr int Each = 250;
    start(Stations, Each);
    ASSERT_TRUE(waitAll()) << "a station hangs";
    for (const Station &s : stations)
        EXPECT_TRUE(WIFEXITED(s.status) && WEXITSTATUS(s.status) == 0);
    const std::multiset<unsigned> numbers = handedOut();
    std::multiset<unsigned> expected;
    for (unsigned v = 0; v < Stations * Each; ++v)
        expected.insert(v);
    EXPECT_TRUE(numbers == expected) << numbers.size() << " numbers";
    EXPECT_EQ(fileNext(), unsigned(Stations * Each));
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(SerialStationsTest, KilledStationsNeitherCorruptTheFileNorRepeatNumbers)
{
    constexpr int Stations = 6;
    constexpr int Each = 1500;
    constexpr int Victims = 4;
    // Stations that pause between numbers, as real ones do, are still at work when killed.
    constexpr int PauseMicroseconds = 100;
    start(Stations, Each, PauseMicroseconds);
    std::mt19937 random(std::random_device{}());
    KCSerialDefCtrl reader(&host, defFile);
    unsigned lastNext = 0;
    for (int victim = 0; victim < Victims; ++victim) {
        // Kills follow the progress of the line, at random points of a station's cycle.
        const unsigned killAt = lastNext + 50 + random() % 400;
        while (lastNext < killAt) {
            // A reader that takes no lock always finds a whole file, and the series only grows.
            ASSERT_EQ(reader.FILE_UpdateDefFileInfo(), 1);
            ASSERT_EQ(reader.blockCount(), 1);
            ASSERT_GE(reader.GetSerialBlock(0).next, lastNext);
            lastNext = reader.GetSerialBlock(0).next;
        }
        std::vector<Station *> running;
        for (Station &s : stations) {
            if (s.pid > 0 && waitpid(s.pid, &s.status, WNOHANG) != 0)
                s.pid = 0;
            if (s.pid > 0)
                running.push_back(&s);
        }
        ASSERT_FALSE(running.empty()) << "the stations finished before they could be killed";
        Station &s = *running[random() % running.size()];
        kill(s.pid, SIGKILL);
        waitpid(s.pid, &s.status, 0);
        s.pid = 0;
    }
    // Add stations after the killing so that work is left whenever the kills land.
    start(2, 50);
    ASSERT_TRUE(waitAll()) << "a surviving station hangs";
    for (const Station &s : stations) {
        const bool killed = WIFSIGNALED(s.status) && WTERMSIG(s.status) == SIGKILL;
        EXPECT_TRUE(killed || (WIFEXITED(s.status) && WEXITSTATUS(s.status) == 0));
    }

    const std::multiset<unsigned> numbers = handedOut();
    const std::set<unsigned> distinct(numbers.begin(), numbers.end());
    EXPECT_EQ(distinct.size(), numbers.size()) << "a number was handed out twice";
    const unsigned next = fileNext();
    EXPECT_LT(*distinct.rbegin(), next);
    // A station killed after advancing the file but before reporting loses its number.
    EXPECT_LE(next - numbers.size(), unsigned(Victims));
    EXPECT_TRUE(host.messages.empty());
}
