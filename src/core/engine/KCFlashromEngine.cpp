#include "engine/KCFlashromEngine.h"

#include "engine/cChildProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr unsigned MsPerSecond = 1000;
constexpr size_t WriteChunk = size_t(1) << 20;
// The unit in which a changed image is written again.
constexpr size_t PatchChunk = size_t(64) << 10;

// flashrom tells its phases in plain words; they are what the progress bar can show.
struct Phase
{
    const char *text;
    unsigned percent;
};
const Phase Phases[] = {
    {"Reading old flash chip contents", 10},
    {"Erasing and writing flash chip", 30},
    {"Erasing flash chip", 30},
    {"Reading flash", 40},
    {"Verifying flash", 80},
};
constexpr unsigned Done = 100;

bool writeAll(int fd, const uint8_t *data, size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, std::min(size, WriteChunk));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

bool readWhole(const std::string &path, std::vector<uint8_t> *out)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st;
    bool ok = ::fstat(fd, &st) == 0;
    if (ok) {
        out->resize(static_cast<size_t>(st.st_size));
        size_t got = 0;
        while (ok && got < out->size()) {
            const ssize_t n = ::read(fd, out->data() + got, out->size() - got);
            if (n < 0 && errno == EINTR)
                continue;
            ok = n > 0;
            if (ok)
                got += static_cast<size_t>(n);
        }
    }
    ::close(fd);
    return ok;
}

std::string tempBase()
{
    const char *tmp = std::getenv("TMPDIR");
    return tmp && *tmp ? tmp : "/tmp";
}

} // namespace

KCFlashromEngine::KCFlashromEngine(const std::string &programmer, const std::string &chip, uint64_t deviceSize)
    : m_programmer(programmer), m_chip(chip), m_deviceSize(deviceSize)
{
    std::string tmpl = tempBase() + "/krldv-flashrom-XXXXXX";
    if (::mkdtemp(&tmpl[0]))
        m_workDir = tmpl;
    m_imagePath = m_workDir + "/image.bin";
}

KCFlashromEngine::~KCFlashromEngine()
{
    if (m_workDir.empty())
        return;
    ::unlink(m_imagePath.c_str());
    ::unlink((m_workDir + "/read.bin").c_str());
    ::rmdir(m_workDir.c_str());
}

std::string KCFlashromEngine::emulatorSpec(const std::string &emulation, const std::string &chipFile)
{
    return "dummy:emulate=" + emulation + ",image=" + chipFile;
}

std::string KCFlashromEngine::prepareEmulatedChip(const std::string &path, uint64_t size)
{
    struct stat st;
    if (::stat(path.c_str(), &st) == 0) {
        if (static_cast<uint64_t>(st.st_size) == size)
            return {};
        return path + " has " + std::to_string(st.st_size) + " bytes, the chip " + std::to_string(size);
    }
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0)
        return path + ": " + std::strerror(errno);
    const std::vector<uint8_t> erased(WriteChunk, ErasedByte);
    bool ok = true;
    for (uint64_t left = size; ok && left > 0;) {
        const size_t n = static_cast<size_t>(std::min<uint64_t>(left, erased.size()));
        ok = writeAll(fd, erased.data(), n);
        left -= n;
    }
    ::close(fd);
    return ok ? std::string() : path + ": " + std::strerror(errno);
}

bool KCFlashromEngine::writeImage(const std::vector<uint8_t> &image, std::string *why)
{
    if (m_workDir.empty()) {
        *why = "no work folder for flashrom's image files";
        return false;
    }
    // flashrom takes only images of the chip's size: what the image lacks is erased.
    const size_t size = static_cast<size_t>(m_deviceSize);
    const size_t given = static_cast<size_t>(std::min<uint64_t>(image.size(), m_deviceSize));
    const bool patch = m_written.size() == size;
    if (!patch)
        m_written.assign(size, ErasedByte);
    const int fd = ::open(m_imagePath.c_str(), O_WRONLY | O_CREAT | (patch ? 0 : O_TRUNC) | O_CLOEXEC, 0600);
    bool ok = fd >= 0;
    std::vector<uint8_t> chunk;
    for (size_t start = 0; ok && start < size; start += PatchChunk) {
        const size_t n = std::min(PatchChunk, size - start);
        const size_t fromImage = start < given ? std::min(n, given - start) : 0;
        chunk.assign(image.begin() + static_cast<std::ptrdiff_t>(start),
                     image.begin() + static_cast<std::ptrdiff_t>(start + fromImage));
        chunk.resize(n, ErasedByte);
        if (patch && std::memcmp(chunk.data(), &m_written[start], n) == 0)
            continue;
        std::memcpy(&m_written[start], chunk.data(), n);
        ok = ::lseek(fd, static_cast<off_t>(start), SEEK_SET) >= 0 && writeAll(fd, chunk.data(), n);
    }
    if (!ok) {
        *why = m_imagePath + ": " + std::strerror(errno);
        m_written.clear();
    }
    if (fd >= 0)
        ::close(fd);
    return ok;
}

KCEngineResult KCFlashromEngine::runFlashrom(const std::string &operation, const std::vector<std::string> &args)
{
    std::vector<std::string> argv = {m_program, "-p", m_programmer};
    if (!m_chip.empty()) {
        argv.push_back("-c");
        argv.push_back(m_chip);
    }
    argv.insert(argv.end(), args.begin(), args.end());
    progress(operation, 0);
    std::string lastLine;
    cChildProcess child;
    const cChildProcess::Outcome outcome = child.run(argv, timeLimitMs(), m_cancel, [&](const std::string &line) {
        message(line);
        lastLine = line;
        for (const Phase &p : Phases) {
            if (line.compare(0, std::strlen(p.text), p.text) == 0)
                progress(operation, p.percent);
        }
    });
    switch (outcome) {
    case cChildProcess::NotStarted:
        return KCEngineResult::fail(m_program + " cannot be started: " + child.startError());
    case cChildProcess::Cancelled:
        return {KCEngineResult::Cancelled, operation + " stopped; " + m_program + " was killed"};
    case cChildProcess::TimedOut:
        return {KCEngineResult::TimedOut, operation + ": " + m_program + " did not finish within "
                                              + std::to_string(timeLimitMs() / MsPerSecond) + " s and was killed"};
    case cChildProcess::Exited:
        break;
    }
    if (child.exitStatus() != 0)
        return KCEngineResult::fail(operation + " failed (" + m_program + " exit status "
                                    + std::to_string(child.exitStatus()) + (lastLine.empty() ? "" : ": " + lastLine)
                                    + ")");
    progress(operation, Done);
    return KCEngineResult::pass();
}

KCEngineResult KCFlashromEngine::probe()
{
    return runFlashrom("Probe", {});
}

KCEngineResult KCFlashromEngine::read(std::vector<uint8_t> *image)
{
    const std::string path = m_workDir + "/read.bin";
    ::unlink(path.c_str());
    KCEngineResult r = runFlashrom("Read", {"-r", path});
    if (r.passed() && !readWhole(path, image))
        r = KCEngineResult::fail("Read: " + path + ": " + std::strerror(errno));
    ::unlink(path.c_str());
    return r;
}

KCEngineResult KCFlashromEngine::erase()
{
    return runFlashrom("Erase", {"-E"});
}

KCEngineResult KCFlashromEngine::program(const std::vector<uint8_t> &image)
{
    std::string why;
    if (!writeImage(image, &why))
        return KCEngineResult::fail(why);
    return runFlashrom("Program", {"-w", m_imagePath, "-n"});
}

KCEngineResult KCFlashromEngine::verify(const std::vector<uint8_t> &image)
{
    std::string why;
    if (!writeImage(image, &why))
        return KCEngineResult::fail(why);
    return runFlashrom("Verify", {"-v", m_imagePath});
}

KCEngineResult KCFlashromEngine::autoProgram(const std::vector<uint8_t> &image)
{
    std::string why;
    if (!writeImage(image, &why))
        return KCEngineResult::fail(why);
    return runFlashrom("Auto", {"-w", m_imagePath});
}
