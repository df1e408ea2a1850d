#include "serial/KCSerialState.h"

#include "host/KCMainProgDataExChange.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialTarget.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr unsigned DefaultSerialLength = 8;
constexpr unsigned DefaultSerialByteCount = 8;
constexpr unsigned DefaultSerialAddress = 0x100;
constexpr unsigned DefaultSerialFlags = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagAsc | KCSerialDefCtrl::FlagBigEndian;

std::string hexBytes(const std::string &bytes)
{
    std::string text;
    char hex[4];
    for (unsigned char c : bytes) {
        std::snprintf(hex, sizeof hex, "%s%02X", text.empty() ? "" : " ", c);
        text += hex;
    }
    return text;
}

} // namespace

KCSerialState::KCSerialState(KCMainProgDataExChange *host, KCSerialTarget &target) : m_host(host), m_target(target)
{
    InitSerialNumberDefault();
}

KCSerialState::~KCSerialState() = default;

void KCSerialState::InitSerialNumberDefault()
{
    m_ctrl.reset();
    m_mode = 0;
    m_number.clear();
    m_length = DefaultSerialLength;
    m_value = 0;
    m_flags = DefaultSerialFlags;
    m_byteCount = DefaultSerialByteCount;
    m_address = DefaultSerialAddress;
    m_defPath.clear();
    m_valid = false;
}

int KCSerialState::EnableSerialNumberUsability(int enable)
{
    m_valid = false;
    if (!enable) {
        m_ctrl.reset();
        return 1;
    }
    if (m_defPath.empty())
        m_defPath = m_host->GetSerialDefaultFilePath();
    if (!m_ctrl)
        m_ctrl = std::make_unique<KCSerialDefCtrl>(m_host, m_defPath);
    else
        m_ctrl->FILE_SetSerialFilename(m_defPath);
    if (!m_ctrl->FILE_UpdateDefFileInfo()) {
        m_ctrl.reset();
        return 0;
    }
    return 1;
}

int KCSerialState::GetNextSerialNumberFromFile(int advance, int readFile)
{
    if (!m_ctrl)
        return 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    // The document always takes the file's first block.
    if (!m_ctrl->SERIAL_GetNextSerialNumber(0, &m_flags, &m_length, &m_value, &data[0], &m_number, advance,
                                            readFile))
        return 0;
    m_valid = true;
    return WriteSerialNumberToBuffer();
}

int KCSerialState::GetSerialNumber()
{
    if (!m_ctrl)
        return 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    if (!m_ctrl->SERIAL_GetSerialNumber(m_flags, m_length, m_value, &data[0], &m_number))
        return 0;
    return WriteSerialNumberToBuffer();
}

int KCSerialState::WriteSerialNumberToBuffer()
{
    if (!m_target.hasSerialTarget())
        return 0;
    const uint64_t size = m_target.serialTargetSize();
    bool changed = false;
    int result = 1;
    m_target.beginSerialWrite();
    for (uint64_t i = 0; i < m_byteCount && i < m_number.size(); ++i) {
        const uint64_t addr = uint64_t(m_address) + i;
        if (addr >= size) {
            result = 0; // what fits stays written
            break;
        }
        const uint8_t byte = static_cast<uint8_t>(m_number[i]);
        if (m_target.serialByte(addr) != byte) {
            m_target.writeSerialByte(addr, byte);
            changed = true;
        }
    }
    m_target.endSerialWrite(changed);
    return result;
}

int KCSerialState::UpdateSerialDataFromFile()
{
    return m_ctrl ? m_ctrl->FILE_UpdateDefFileInfo() : 0;
}

bool KCSerialState::peek(std::string &number)
{
    if (!m_ctrl)
        return false;
    unsigned flags = m_flags, length = m_length, value = m_value;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    return m_ctrl->SERIAL_GetNextSerialNumber(0, &flags, &length, &value, &data[0], &number, 0, 1) != 0;
}

std::string KCSerialState::placementProblem(size_t numberBytes, unsigned byteCount, unsigned address,
                                            uint64_t targetSize)
{
    char text[320];
    if (numberBytes > byteCount) {
        std::snprintf(text, sizeof text,
                      "the next serial number takes %zu bytes but %u are set aside for it: it would be cut and "
                      "devices would get the same number; set the byte count to %zu or more",
                      numberBytes, byteCount, numberBytes);
        return text;
    }
    if (uint64_t(address) + numberBytes > targetSize) {
        std::snprintf(text, sizeof text,
                      "the serial number at 0x%08X (%zu bytes) does not fit in the buffer (0x%llX bytes)", address,
                      numberBytes, static_cast<unsigned long long>(targetSize));
        return text;
    }
    return std::string();
}

std::string KCSerialState::stampProblem()
{
    std::string number;
    if (!peek(number))
        return "no serial number can be had from " + m_defPath;
    const uint64_t size = m_target.hasSerialTarget() ? m_target.serialTargetSize() : 0;
    return placementProblem(number.size(), m_byteCount, m_address, size);
}

bool KCSerialState::takeNext(std::string &report)
{
    report = stampProblem();
    if (!report.empty())
        return false;
    if (!GetNextSerialNumberFromFile(1, 1)) {
        report = "no serial number could be taken from " + m_defPath;
        return false;
    }
    report = writtenText();
    return true;
}

std::string KCSerialState::writtenText() const
{
    const bool text = (m_flags & KCSerialDefCtrl::FlagAsc) != 0;
    const size_t n = std::min<size_t>(m_number.size(), m_byteCount);
    char where[96];
    std::snprintf(where, sizeof where, " written at 0x%08X (%zu %s)", m_address, n, n == 1 ? "byte" : "bytes");
    return "Serial number " + (text ? m_number : hexBytes(m_number)) + where;
}
