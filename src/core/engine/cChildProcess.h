#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

// One run of an external program with its standard output and error captured line by line.
// The run ends when the program exits, when `cancel` is set or when the time limit passes;
// in the last two cases the program's whole process group is killed, so a program that
// hangs can never hold the caller.
class cChildProcess
{
public:
    enum Outcome { Exited, Cancelled, TimedOut, NotStarted };

    // Each complete line of output (standard output and error mixed as they come).
    using LineHandler = std::function<void(const std::string &line)>;

    // Runs argv[0] (looked up in PATH) with `argv`; waits at most `timeLimitMs`.
    Outcome run(const std::vector<std::string> &argv, unsigned timeLimitMs, const std::atomic<bool> &cancel,
                const LineHandler &onLine);
    // The exit status of an Exited run (a program ended by a signal gives 128 + signal).
    int exitStatus() const { return m_status; }
    // Why a run could not start, in the system's words.
    const std::string &startError() const { return m_startError; }

private:
    int m_status = -1;
    std::string m_startError;
};
