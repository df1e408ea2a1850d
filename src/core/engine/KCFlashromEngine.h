#pragma once

#include "engine/KCEngine.h"

#include <cstdint>
#include <string>
#include <vector>

// The flashrom programmer engine, run as a child process per operation with its documented
// options. Images travel through files in a work folder of the engine's own.
class KCFlashromEngine : public KCEngine
{
public:
    static constexpr const char *DefaultProgram = "flashrom";
    // "--programmer emulator:FILE" stands for flashrom's emulator of the device's chip.
    static constexpr const char *EmulatorPrefix = "emulator:";

    // `programmer` is flashrom's -p argument, `chip` its -c name; `deviceSize` is the size
    // of the device's image (shorter images are filled up with erased bytes).
    KCFlashromEngine(const std::string &programmer, const std::string &chip, uint64_t deviceSize);
    ~KCFlashromEngine() override;

    std::string name() const override { return "flashrom"; }
    void setProgram(const std::string &path) { m_program = path; }

    KCEngineResult probe() override;
    KCEngineResult read(std::vector<uint8_t> *image) override;
    KCEngineResult erase() override;
    KCEngineResult program(const std::vector<uint8_t> &image) override;
    KCEngineResult verify(const std::vector<uint8_t> &image) override;
    // One flashrom write: it erases what needs it, writes and verifies in the same pass.
    KCEngineResult autoProgram(const std::vector<uint8_t> &image) override;

    // flashrom's -p argument for its emulator of `emulation` backed by `chipFile`.
    static std::string emulatorSpec(const std::string &emulation, const std::string &chipFile);
    // Makes `path` an erased chip of `size` bytes unless it exists with that size already;
    // flashrom's emulator needs its backing file to exist. Empty or why it failed.
    static std::string prepareEmulatedChip(const std::string &path, uint64_t size);

private:
    KCEngineResult runFlashrom(const std::string &operation, const std::vector<std::string> &args);
    bool writeImage(const std::vector<uint8_t> &image, std::string *why);

    std::string m_program = DefaultProgram;
    std::string m_programmer;
    std::string m_chip;
    uint64_t m_deviceSize;
    std::string m_workDir;
    std::string m_imagePath;
    // What the image file holds, so a device that differs only in its serial number costs a
    // few bytes written, not the whole chip.
    std::vector<uint8_t> m_written;
};
