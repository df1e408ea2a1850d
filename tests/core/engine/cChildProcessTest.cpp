// A child program is always over within its time limit, whatever it does.
#include "engine/cChildProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {
using Clock = std::chrono::steady_clock;
constexpr unsigned ShortLimitMs = 300;
constexpr unsigned LongLimitMs = 20000;
// Generous against a loaded machine, far below the programs' own 30 s.
constexpr auto Bound = std::chrono::seconds(5);

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}
} // namespace

TEST(cChildProcess, CapturesLinesAndExitStatus)
{
    std::atomic<bool> cancel{false};
    std::vector<std::string> lines;
    cChildProcess child;
    const auto outcome = child.run({"sh", "-c", "echo one; echo two >&2; printf three; exit 3"}, LongLimitMs, cancel,
                                   [&](const std::string &l) { lines.push_back(l); });
    EXPECT_EQ(outcome, cChildProcess::Exited);
    EXPECT_EQ(child.exitStatus(), 3);
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(child.run({"no-such-program-krldv"}, LongLimitMs, cancel, nullptr), cChildProcess::NotStarted);
}

TEST(cChildProcess, HangingProgramsAreKilledAtTheLimit)
{
    std::atomic<bool> cancel{false};
    cChildProcess child;
    // Silent, and one that closes its output first and leaves a grandchild holding nothing.
    for (const char *script : {"sleep 30", "exec >/dev/null 2>&1; sleep 30", "sleep 30 & wait"}) {
        const auto start = Clock::now();
        EXPECT_EQ(child.run({"sh", "-c", script}, ShortLimitMs, cancel, nullptr), cChildProcess::TimedOut) << script;
        EXPECT_LT(secondsSince(start), std::chrono::duration<double>(Bound).count()) << script;
    }
}

TEST(cChildProcess, CancelFromAnotherThreadKills)
{
    std::atomic<bool> cancel{false};
    cChildProcess child;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(ShortLimitMs));
        cancel = true;
    });
    const auto start = Clock::now();
    EXPECT_EQ(child.run({"sh", "-c", "while :; do echo busy; sleep 0.01; done"}, LongLimitMs, cancel, nullptr),
              cChildProcess::Cancelled);
    stopper.join();
    EXPECT_LT(secondsSince(start), std::chrono::duration<double>(Bound).count());
}
