#include "engine/KCProductionRun.h"

#include "doc/KCDataDoc.h"
#include "engine/KCEngine.h"
#include "engine/KCProductionListener.h"
#include "serial/KCSerialDispenser.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <algorithm>
#include <vector>

KCProductionRun::KCProductionRun(KCDataDoc &doc, KCEngine &engine) : m_doc(doc), m_engine(engine) {}

void KCProductionRun::setSerial(KCSerialDispenser *dispenser, unsigned address, unsigned byteCount)
{
    m_dispenser = dispenser;
    m_address = address;
    m_byteCount = byteCount;
}

void KCProductionRun::cancel()
{
    m_cancel = true;
    m_engine.cancel();
    if (m_dispenser)
        m_dispenser->cancelWaiting();
    if (m_csv)
        m_csv->cancelWaiting();
}

KCProductionRun::StopReason KCProductionRun::run()
{
    // While devices take its rows, the CSV file is not to be swapped for another.
    if (m_csv)
        m_csv->setInUse(true);
    const StopReason stop = runDevices();
    if (m_csv)
        m_csv->setInUse(false);
    return stop;
}

KCProductionRun::StopReason KCProductionRun::runDevices()
{
    m_passed = m_failed = 0;
    m_stopText.clear();
    m_engine.resetCancel();
    // The image follows the buffer: only the serial number changes between devices.
    const cByteBuffer &buffer = m_doc.AlgoParam().buffer(0);
    std::vector<uint8_t> image(buffer.data(), buffer.data() + buffer.size());
    // Bytes go into the buffer through the document and into the engine's image alike.
    auto write = [&](uint64_t address, const std::string &bytes, size_t n) {
        m_doc.WriteRange(address, reinterpret_cast<const uint8_t *>(bytes.data()), n);
        for (size_t i = 0; i < n && address + i < image.size(); ++i)
            image[address + i] = buffer.data()[address + i];
    };
    for (unsigned index = 0; index < m_quantity; ++index) {
        if (m_cancel) {
            m_stopText = "stopped by the operator";
            return Cancelled;
        }
        unsigned row = 0;
        if (m_csv) {
            std::vector<std::pair<uint32_t, std::string>> values;
            std::string why;
            if (!m_csv->takeNextRow(&row, &values, &why)) {
                m_stopText = m_cancel ? "stopped by the operator" : why;
                return m_cancel ? Cancelled : NumbersRanOut;
            }
            for (const auto &v : values)
                write(v.first, v.second, v.second.size());
        }
        std::string key, bytes;
        if (m_dispenser) {
            if (!m_dispenser->take(&key, &bytes)) {
                // The row was taken first (rows run out, numbers hardly ever); taken for
                // nothing, it is a device that never ran.
                std::string ignored;
                if (m_csv)
                    m_csv->recordRow(row, false, &ignored);
                m_stopText = m_cancel ? "stopped by the operator" : m_dispenser->error();
                return m_cancel ? Cancelled : NumbersRanOut;
            }
            write(m_address, bytes, std::min<size_t>(bytes.size(), m_byteCount));
        }
        const std::string label = m_csv ? key + (key.empty() ? "row " : " row ") + std::to_string(row) : key;
        if (m_listener)
            m_listener->deviceStarted(index, label);
        const KCEngineResult result = m_engineCall ? m_engineCall(m_engine, image) : m_engine.autoProgram(image);
        // A device the engine gave up on, for whatever reason, is a failed device. The
        // document's counters are the ones its project keeps.
        if (result.passed()) {
            ++m_passed;
            m_doc.SuccessCountIncrement();
        } else {
            ++m_failed;
            m_doc.FailCountIncrement();
        }
        bool journaled = !m_dispenser || m_dispenser->record(key, result.passed());
        std::string why;
        if (m_csv && !m_csv->recordRow(row, result.passed(), &why))
            journaled = false;
        if (m_listener)
            m_listener->deviceDone(index, label, result.passed(), result.message);
        if (!journaled) {
            m_stopText = m_dispenser && !m_dispenser->error().empty() ? m_dispenser->error() : why;
            return JournalFailed;
        }
        if (result.status == KCEngineResult::Cancelled) {
            m_stopText = "stopped by the operator";
            return Cancelled;
        }
    }
    return QuantityReached;
}
