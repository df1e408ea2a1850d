#pragma once

#include "engine/KCEngine.h"

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

// A device held in a file, with the rules of flash: programming only clears bits (a 1 over
// a 0 needs an erase first), an erase sets every byte to 0xFF. For devices no external
// engine programs and for fault tests: a share of program operations can fail and a share
// can leave a flipped bit that only the verify finds, drawn from a seeded generator so a
// run can be repeated.
class KCVirtualDeviceEngine : public KCEngine
{
public:
    // "FILE[,fail=RATE][,verify-fault=RATE][,seed=N]", rates from 0 to 1.
    static std::unique_ptr<KCVirtualDeviceEngine> fromSpec(const std::string &spec, uint64_t deviceSize,
                                                           std::string *why);

    KCVirtualDeviceEngine(const std::string &chipFile, uint64_t deviceSize);

    std::string name() const override { return "virtual"; }
    void setFailureRate(double rate) { m_failureRate = rate; }
    void setVerifyFaultRate(double rate) { m_verifyFaultRate = rate; }
    void setSeed(uint32_t seed) { m_random.seed(seed); }

    KCEngineResult probe() override;
    KCEngineResult read(std::vector<uint8_t> *image) override;
    KCEngineResult erase() override;
    KCEngineResult program(const std::vector<uint8_t> &image) override;

private:
    bool load(std::vector<uint8_t> *chip, std::string *why) const;
    bool store(const std::vector<uint8_t> &chip, std::string *why) const;
    bool chance(double rate);

    std::string m_chipFile;
    uint64_t m_deviceSize;
    double m_failureRate = 0;
    double m_verifyFaultRate = 0;
    std::mt19937 m_random;
};
