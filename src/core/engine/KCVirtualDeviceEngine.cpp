#include "engine/KCVirtualDeviceEngine.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace {

// Progress is told per chunk, and cancel looked at as often.
constexpr size_t Chunk = size_t(64) << 10;
constexpr unsigned Done = 100;
constexpr int BitsPerByte = 8;

bool parseRate(const std::string &text, double *rate)
{
    char *end = nullptr;
    errno = 0;
    const double v = std::strtod(text.c_str(), &end);
    if (errno || end == text.c_str() || *end || !(v >= 0 && v <= 1))
        return false;
    *rate = v;
    return true;
}

} // namespace

std::unique_ptr<KCVirtualDeviceEngine> KCVirtualDeviceEngine::fromSpec(const std::string &spec, uint64_t deviceSize,
                                                                       std::string *why)
{
    std::vector<std::string> parts;
    std::stringstream ss(spec);
    for (std::string part; std::getline(ss, part, ',');)
        parts.push_back(part);
    if (parts.empty() || parts[0].empty()) {
        *why = "the virtual device needs its chip file: FILE[,fail=RATE][,verify-fault=RATE][,seed=N]";
        return nullptr;
    }
    auto engine = std::make_unique<KCVirtualDeviceEngine>(parts[0], deviceSize);
    for (size_t i = 1; i < parts.size(); ++i) {
        const size_t eq = parts[i].find('=');
        const std::string key = parts[i].substr(0, eq);
        const std::string value = eq == std::string::npos ? std::string() : parts[i].substr(eq + 1);
        double rate = 0;
        if (key == "fail" && parseRate(value, &rate)) {
            engine->setFailureRate(rate);
        } else if (key == "verify-fault" && parseRate(value, &rate)) {
            engine->setVerifyFaultRate(rate);
        } else if (key == "seed" && !value.empty() && value.find_first_not_of("0123456789") == std::string::npos) {
            engine->setSeed(static_cast<uint32_t>(std::stoul(value)));
        } else {
            *why = "the virtual device does not take \"" + parts[i] + "\" (fail=RATE, verify-fault=RATE, seed=N)";
            return nullptr;
        }
    }
    return engine;
}

KCVirtualDeviceEngine::KCVirtualDeviceEngine(const std::string &chipFile, uint64_t deviceSize)
    : m_chipFile(chipFile), m_deviceSize(deviceSize)
{
}

bool KCVirtualDeviceEngine::chance(double rate)
{
    return rate > 0 && std::uniform_real_distribution<double>(0, 1)(m_random) < rate;
}

bool KCVirtualDeviceEngine::load(std::vector<uint8_t> *chip, std::string *why) const
{
    struct stat st;
    if (::stat(m_chipFile.c_str(), &st) != 0) {
        // A new device comes erased.
        chip->assign(static_cast<size_t>(m_deviceSize), ErasedByte);
        return true;
    }
    if (static_cast<uint64_t>(st.st_size) != m_deviceSize) {
        *why = m_chipFile + " has " + std::to_string(st.st_size) + " bytes, the device "
            + std::to_string(m_deviceSize);
        return false;
    }
    std::ifstream in(m_chipFile, std::ios::binary);
    chip->resize(static_cast<size_t>(m_deviceSize));
    if (!in.read(reinterpret_cast<char *>(chip->data()), static_cast<std::streamsize>(chip->size()))) {
        *why = m_chipFile + ": cannot read it";
        return false;
    }
    return true;
}

bool KCVirtualDeviceEngine::store(const std::vector<uint8_t> &chip, std::string *why) const
{
    std::ofstream out(m_chipFile, std::ios::binary | std::ios::trunc);
    if (!out.write(reinterpret_cast<const char *>(chip.data()), static_cast<std::streamsize>(chip.size()))
        || !out.flush()) {
        *why = m_chipFile + ": cannot write it";
        return false;
    }
    return true;
}

KCEngineResult KCVirtualDeviceEngine::probe()
{
    std::vector<uint8_t> chip;
    std::string why;
    return load(&chip, &why) ? KCEngineResult::pass() : KCEngineResult::fail(why);
}

KCEngineResult KCVirtualDeviceEngine::read(std::vector<uint8_t> *image)
{
    std::string why;
    if (m_cancel)
        return {KCEngineResult::Cancelled, "Read stopped"};
    progress("Read", 0);
    if (!load(image, &why))
        return KCEngineResult::fail("Read: " + why);
    progress("Read", Done);
    return KCEngineResult::pass();
}

KCEngineResult KCVirtualDeviceEngine::erase()
{
    std::string why;
    if (m_cancel)
        return {KCEngineResult::Cancelled, "Erase stopped"};
    const std::vector<uint8_t> chip(static_cast<size_t>(m_deviceSize), ErasedByte);
    if (!store(chip, &why))
        return KCEngineResult::fail("Erase: " + why);
    progress("Erase", Done);
    return KCEngineResult::pass();
}

KCEngineResult KCVirtualDeviceEngine::program(const std::vector<uint8_t> &image)
{
    std::vector<uint8_t> chip;
    std::string why;
    if (!load(&chip, &why))
        return KCEngineResult::fail("Program: " + why);
    const size_t n = static_cast<size_t>(std::min<uint64_t>(image.size(), m_deviceSize));
    // A failing device gives up somewhere inside the image, leaving what was written.
    const bool failing = chance(m_failureRate);
    const size_t failAt = failing && n > 0 ? std::uniform_int_distribution<size_t>(0, n - 1)(m_random) : n;
    KCEngineResult result = KCEngineResult::pass();
    for (size_t start = 0; start < n && result.passed(); start += Chunk) {
        if (m_cancel) {
            result = {KCEngineResult::Cancelled, "Program stopped"};
            break;
        }
        const size_t end = std::min(n, start + Chunk);
        for (size_t i = start; i < end; ++i) {
            if (i == failAt) {
                char text[80];
                std::snprintf(text, sizeof text, "Program: the device does not answer at 0x%08zX", i);
                result = KCEngineResult::fail(text);
                break;
            }
            if (image[i] & ~chip[i]) {
                char text[112];
                std::snprintf(text, sizeof text, "Program: 0x%02X cannot be programmed over 0x%02X at 0x%08zX "
                              "without an erase", image[i], chip[i], i);
                result = KCEngineResult::fail(text);
                break;
            }
            chip[i] = image[i];
        }
        progress("Program", static_cast<unsigned>(uint64_t(end) * Done / n));
    }
    // A weak cell: the write seemed to work, only reading back tells.
    if (result.passed() && n > 0 && chance(m_verifyFaultRate)) {
        const size_t at = std::uniform_int_distribution<size_t>(0, n - 1)(m_random);
        const int bit = std::uniform_int_distribution<int>(0, BitsPerByte - 1)(m_random);
        chip[at] ^= static_cast<uint8_t>(1u << bit);
    }
    if (!store(chip, &why))
        return KCEngineResult::fail("Program: " + why);
    return result;
}
