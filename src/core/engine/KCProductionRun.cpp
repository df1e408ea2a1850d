#include "engine/KCProductionRun.h"

#include "doc/KCDataDoc.h"
#include "engine/KCEngine.h"
#include "engine/KCProductionListener.h"
#include "serial/KCSerialDispenser.h"

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
}

KCProductionRun::StopReason KCProductionRun::run()
{
    m_passed = m_failed = 0;
    m_stopText.clear();
    m_engine.resetCancel();
    // The image follows the buffer: only the serial number changes between devices.
    const cByteBuffer &buffer = m_doc.AlgoParam().buffer(0);
    std::vector<uint8_t> image(buffer.data(), buffer.data() + buffer.size());
    for (unsigned index = 0; index < m_quantity; ++index) {
        if (m_cancel) {
            m_stopText = "stopped by the operator";
            return Cancelled;
        }
        std::string key, bytes;
        if (m_dispenser) {
            if (!m_dispenser->take(&key, &bytes)) {
                m_stopText = m_cancel ? "stopped by the operator" : m_dispenser->error();
                return m_cancel ? Cancelled : NumbersRanOut;
            }
            const size_t n = std::min<size_t>(bytes.size(), m_byteCount);
            m_doc.WriteRange(m_address, reinterpret_cast<const uint8_t *>(bytes.data()), n);
            for (size_t i = 0; i < n && m_address + i < image.size(); ++i)
                image[m_address + i] = buffer.data()[m_address + i];
        }
        if (m_listener)
            m_listener->deviceStarted(index, key);
        const KCEngineResult result = m_engine.autoProgram(image);
        // A device the engine gave up on, for whatever reason, is a failed device.
        if (result.passed())
            ++m_passed;
        else
            ++m_failed;
        const bool journaled = !m_dispenser || m_dispenser->record(key, result.passed());
        if (m_listener)
            m_listener->deviceDone(index, key, result.passed(), result.message);
        if (!journaled) {
            m_stopText = m_dispenser->error();
            return JournalFailed;
        }
        if (result.status == KCEngineResult::Cancelled) {
            m_stopText = "stopped by the operator";
            return Cancelled;
        }
    }
    return QuantityReached;
}
