#include "engine/cChildProcess.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

// How often a running child is looked at for cancel and time limit.
constexpr int PollIntervalMs = 50;
constexpr size_t ReadChunk = 4096;
constexpr int SignalExitBase = 128;

using Clock = std::chrono::steady_clock;

} // namespace

cChildProcess::Outcome cChildProcess::run(const std::vector<std::string> &argv, unsigned timeLimitMs,
                                          const std::atomic<bool> &cancel, const LineHandler &onLine)
{
    m_status = -1;
    m_startError.clear();
    if (argv.empty()) {
        m_startError = "no program given";
        return NotStarted;
    }
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
        m_startError = std::strerror(errno);
        return NotStarted;
    }
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attr;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDERR_FILENO);
    posix_spawnattr_init(&attr);
    // A group of its own, so a kill reaches whatever the program started too.
    posix_spawnattr_setpgroup(&attr, 0);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETPGROUP);

    std::vector<char *> args;
    for (const std::string &a : argv)
        args.push_back(const_cast<char *>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = -1;
    const int spawned = ::posix_spawnp(&pid, args[0], &actions, &attr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attr);
    ::close(pipeFds[1]);
    if (spawned != 0) {
        ::close(pipeFds[0]);
        m_startError = std::strerror(spawned);
        return NotStarted;
    }

    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeLimitMs);
    Outcome outcome = Exited;
    std::string pending;
    bool open = true;
    while (open) {
        if (cancel) {
            outcome = Cancelled;
            break;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            outcome = TimedOut;
            break;
        }
        pollfd p{pipeFds[0], POLLIN, 0};
        const int ready = ::poll(&p, 1, static_cast<int>(std::min<long long>(left, PollIntervalMs)));
        if (ready < 0 && errno != EINTR)
            break;
        if (ready <= 0)
            continue;
        char chunk[ReadChunk];
        const ssize_t n = ::read(pipeFds[0], chunk, sizeof chunk);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            open = false; // the program closed its output: it is ending
            break;
        }
        pending.append(chunk, static_cast<size_t>(n));
        size_t start = 0;
        for (size_t nl; (nl = pending.find_first_of("\r\n", start)) != std::string::npos; start = nl + 1) {
            if (nl > start && onLine)
                onLine(pending.substr(start, nl - start));
        }
        pending.erase(0, start);
    }
    ::close(pipeFds[0]);
    if (outcome != Exited)
        ::kill(-pid, SIGKILL);
    else if (!pending.empty() && onLine)
        onLine(pending);

    int status = 0;
    // A program that closed its output ends at once as a rule: look again soon, then less often.
    int waitMs = 1;
    for (;;) {
        // A program that closed its output but keeps running still gets the time limit.
        const pid_t done = ::waitpid(pid, &status, outcome == Exited ? WNOHANG : 0);
        if (done == pid)
            break;
        if (done < 0 && errno != EINTR)
            break;
        if (done == 0) {
            if (cancel || Clock::now() >= deadline) {
                outcome = cancel ? Cancelled : TimedOut;
                ::kill(-pid, SIGKILL);
                continue;
            }
            ::usleep(static_cast<useconds_t>(waitMs) * 1000);
            waitMs = std::min(waitMs * 2, PollIntervalMs);
        }
    }
    if (WIFEXITED(status))
        m_status = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        m_status = SignalExitBase + WTERMSIG(status);
    return outcome;
}
