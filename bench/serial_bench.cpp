// Serial numbers consumed per second by 1, 2 and 8 processes sharing one definition file,
// beside a peer doing the same cycle in the plainest way: flock(2), read the number,
// increment, write it back, flush, close.
//
//   bench_serial [--numbers N] [--repeat R] [--dir DIR]
//
// Without --dir it measures in $TMPDIR (or /tmp), where the flush reaches a disk, and in
// /dev/shm when there is one, where only the locking and the system calls count. Each
// figure is the best of R runs (the machine is shared; the best run is the least disturbed).
#include "serial/KCSerialDefCtrl.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {
const int ProcessCounts[] = {1, 2, 8};
constexpr int DiskNumbers = 800;
constexpr int MemoryNumbers = 40000;
constexpr int DiskRepeats = 1;
constexpr int MemoryRepeats = 3;

// The stations of the benchmark show nothing.
class QuietHost : public KCMainProgDataExChange
{
public:
    void ShowMessage(const std::string &, uint32_t, uint32_t, int) override {}
    std::string GetHostString(unsigned id) const override { return "<string " + std::to_string(id) + ">"; }
    void SetStatusBarText(unsigned, const std::string &) override {}
    int MessageBox(const std::string &, unsigned) override { return KCPrompt::IDCANCEL; }
    int GetOpenDataDocumentCount() const override { return 0; }
    std::string GetNoDeviceName() const override { return {}; }
    uint64_t GetDefaultBufferSize() const override { return 0; }
    uint8_t GetFillByte() const override { return 0xFF; }
    std::string GetLastDirectory() const override { return {}; }
    void SetLastDirectory(const std::string &) override {}
};

bool consumeWithCtrl(const std::string &path, int numbers)
{
    QuietHost host;
    KCSerialDefCtrl ctrl(&host, path);
    char data[KCSerialDefCtrl::DataBufferSize];
    std::string text;
    for (int i = 0; i < numbers; ++i) {
        unsigned flags = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagBin, length = 0, value = 0;
        if (!ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, data, &text, 1, 1))
            return false;
    }
    return true;
}

bool consumeWithFlock(const std::string &path, int numbers)
{
    char buffer[64];
    for (int i = 0; i < numbers; ++i) {
        const int fd = open(path.c_str(), O_RDWR | O_CLOEXEC);
        if (fd < 0 || flock(fd, LOCK_EX) != 0)
            return false;
        const ssize_t n = pread(fd, buffer, sizeof buffer - 1, 0);
        if (n < 0)
            return false;
        buffer[n] = '\0';
        const int length = std::snprintf(buffer, sizeof buffer, "%lu\n", std::strtoul(buffer, nullptr, 10) + 1);
        if (pwrite(fd, buffer, static_cast<size_t>(length), 0) != length || ftruncate(fd, length) != 0
            || fdatasync(fd) != 0)
            return false;
        close(fd);
    }
    return true;
}

// Numbers per second over all processes, or -1 when a process failed.
double run(bool (*consume)(const std::string &, int), const std::string &path, int processes, int numbers)
{
    const auto start = std::chrono::steady_clock::now();
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        const pid_t pid = fork();
        if (pid == 0)
            _exit(consume(path, numbers / processes) ? 0 : 1);
        children.push_back(pid);
    }
    bool ok = true;
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        ok = ok && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return ok ? numbers / processes * processes / seconds.count() : -1;
}

bool writeFile(const std::string &path, const char *text)
{
    FILE *f = std::fopen(path.c_str(), "wb");
    if (!f)
        return false;
    std::fputs(text, f);
    return std::fclose(f) == 0;
}

bool measure(const std::string &dir, int numbers, int repeats)
{
    const std::string ours = dir + "/krldv-bench.ser";
    const std::string peer = dir + "/krldv-bench.count";
    std::printf("\n%d numbers per run in %s, each flushed to the file's storage, best of %d\n", numbers,
                dir.c_str(), repeats);
    std::printf("%-10s %14s %14s %8s\n", "processes", "krldv [1/s]", "flock [1/s]", "ratio");
    for (int processes : ProcessCounts) {
        double a = 0, b = 0;
        for (int r = 0; r < repeats; ++r) {
            if (!writeFile(ours, KCSerialDefCtrl::DefaultFileText) || !writeFile(peer, "0\n")) {
                std::fprintf(stderr, "cannot write in %s\n", dir.c_str());
                return false;
            }
            const double ourRate = run(consumeWithCtrl, ours, processes, numbers);
            const double peerRate = run(consumeWithFlock, peer, processes, numbers);
            if (ourRate < 0 || peerRate < 0) {
                std::fprintf(stderr, "a station failed\n");
                return false;
            }
            a = std::max(a, ourRate);
            b = std::max(b, peerRate);
        }
        std::printf("%-10d %14.0f %14.0f %8.2f\n", processes, a, b, a / b);
    }
    unlink(ours.c_str());
    unlink(peer.c_str());
    return true;
}
}

int main(int argc, char **argv)
{
    int numbers = 0;
    int repeats = 0;
    std::string dir;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--numbers") == 0)
            numbers = std::atoi(argv[i + 1]);
        else if (std::strcmp(argv[i], "--repeat") == 0)
            repeats = std::atoi(argv[i + 1]);
        else if (std::strcmp(argv[i], "--dir") == 0)
            dir = argv[i + 1];
    }
    std::printf("Serial numbers consumed per second from one shared file\n");
    if (!dir.empty())
        return measure(dir, numbers > 0 ? numbers : DiskNumbers, repeats > 0 ? repeats : DiskRepeats) ? 0 : 1;
    const char *tmp = std::getenv("TMPDIR");
    bool ok = measure(tmp && *tmp ? tmp : "/tmp", numbers > 0 ? numbers : DiskNumbers,
                      repeats > 0 ? repeats : DiskRepeats);
    if (access("/dev/shm", W_OK) == 0)
        ok = measure("/dev/shm", numbers > 0 ? numbers : MemoryNumbers, repeats > 0 ? repeats : MemoryRepeats) && ok;
    return ok ? 0 : 1;
}
