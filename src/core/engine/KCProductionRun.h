#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class KCDataDoc;
class KCEngine;
struct KCEngineResult;
class KCProductionListener;
class KCSerialDispenser;
class cKrlSerialNumberHandler;

// A production run: per device the next serial number is taken and written into the buffer
// through the document, the device is erased, programmed and verified by the engine, and the
// result is counted (in the run and in the document's pass and fail counters) and journaled.
// The run stops at the quantity, on cancel(), or when no further number can be had.
class KCProductionRun
{
public:
    enum StopReason { QuantityReached, Cancelled, NumbersRanOut, JournalFailed };

    KCProductionRun(KCDataDoc &doc, KCEngine &engine);

    // Without a dispenser every device gets the buffer as it is.
    void setSerial(KCSerialDispenser *dispenser, unsigned address, unsigned byteCount);
    // Rows of a CSV serial variables file, one per device, beside or instead of the numbers.
    void setCsv(cKrlSerialNumberHandler *csv) { m_csv = csv; }
    void setQuantity(unsigned quantity) { m_quantity = quantity; }
    void setListener(KCProductionListener *listener) { m_listener = listener; }
    // How the engine's erase-program-verify is called; a window runs it off its own thread
    // and keeps painting meanwhile. Default: called directly.
    using EngineCall = std::function<KCEngineResult(KCEngine &, const std::vector<uint8_t> &)>;
    void setEngineCall(EngineCall call) { m_engineCall = std::move(call); }
    // Callable from any thread: ends the engine's operation and any wait for the file.
    void cancel();

    StopReason run();
    unsigned passed() const { return m_passed; }
    unsigned failed() const { return m_failed; }
    // Why the run stopped early, for the message window.
    const std::string &stopText() const { return m_stopText; }

private:
    StopReason runDevices();

    KCDataDoc &m_doc;
    KCEngine &m_engine;
    KCSerialDispenser *m_dispenser = nullptr;
    cKrlSerialNumberHandler *m_csv = nullptr;
    unsigned m_address = 0;
    unsigned m_byteCount = 0;
    unsigned m_quantity = 1;
    KCProductionListener *m_listener = nullptr;
    EngineCall m_engineCall;
    std::atomic<bool> m_cancel{false};
    unsigned m_passed = 0;
    unsigned m_failed = 0;
    std::string m_stopText;
};
