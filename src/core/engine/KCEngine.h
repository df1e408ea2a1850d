#pragma once

#include "engine/KCEngineResult.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

class KCEngineListener;

// A programming engine: what programs, reads and checks one device. Images are the whole
// device, as the buffer holds it. Every operation ends within the time limit; cancel() may
// be called from any thread and ends the operation under way as Cancelled.
class KCEngine
{
public:
    static constexpr unsigned DefaultTimeLimitMs = 120000;
    static constexpr uint8_t ErasedByte = 0xFF;

    virtual ~KCEngine() = default;
    virtual std::string name() const = 0;

    virtual KCEngineResult probe() = 0;
    virtual KCEngineResult read(std::vector<uint8_t> *image) = 0;
    virtual KCEngineResult erase() = 0;
    virtual KCEngineResult blankCheck();
    virtual KCEngineResult program(const std::vector<uint8_t> &image) = 0;
    virtual KCEngineResult verify(const std::vector<uint8_t> &image);
    // Erase, program and verify, as a production run does it per device. An engine that does
    // all three in one pass overrides this.
    virtual KCEngineResult autoProgram(const std::vector<uint8_t> &image);

    void setListener(KCEngineListener *listener) { m_listener = listener; }
    void setTimeLimitMs(unsigned ms) { m_timeLimitMs = ms; }
    unsigned timeLimitMs() const { return m_timeLimitMs; }
    void cancel() { m_cancel = true; }
    // A new operation after a cancel must clear it first.
    void resetCancel() { m_cancel = false; }
    bool isCancelled() const { return m_cancel; }

protected:
    void message(const std::string &line) const;
    void progress(const std::string &operation, unsigned percent) const;
    // The first differing address, as a failure text; Passed when equal.
    static KCEngineResult compare(const std::vector<uint8_t> &expected, const std::vector<uint8_t> &actual);

    std::atomic<bool> m_cancel{false};

private:
    KCEngineListener *m_listener = nullptr;
    unsigned m_timeLimitMs = DefaultTimeLimitMs;
};
