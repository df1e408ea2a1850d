// The document's serial-number state: the definition file of the production run, the
// number's representation and where in the buffer it goes.
#include "KCDataDoc.h"

#include "KCMainProgDataExChange.h"
#include "KCSerialDefCtrl.h"

namespace {

constexpr unsigned DefaultSerialLength = 8;
constexpr unsigned DefaultSerialByteCount = 8;
constexpr unsigned DefaultSerialAddress = 0x100;
constexpr unsigned DefaultSerialFlags = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagAsc | KCSerialDefCtrl::FlagBigEndian;

} // namespace

void KCDataDoc::InitSerialNumberDefault()
{
    m_serialDefCtrl.reset();
    m_serialMode = 0;
    m_serialNumber.clear();
    m_serialLength = DefaultSerialLength;
    m_serialValue = 0;
    m_serialData.assign(DefaultSerialLength, '0');
    m_serialFlags = DefaultSerialFlags;
    m_serialByteCount = DefaultSerialByteCount;
    m_serialAddress = DefaultSerialAddress;
    m_serialDefPath.clear();
    m_serialValid = false;
}

int KCDataDoc::EnableSerialNumberUsability(int enable)
{
    m_serialValid = false;
    if (!enable) {
        m_serialDefCtrl.reset();
        return 1;
    }
    if (m_serialDefPath.empty())
        m_serialDefPath = m_host->GetSerialDefaultFilePath();
    if (!m_serialDefCtrl)
        m_serialDefCtrl = std::make_unique<KCSerialDefCtrl>(m_host, m_serialDefPath);
    else
        m_serialDefCtrl->FILE_SetSerialFilename(m_serialDefPath);
    if (!m_serialDefCtrl->FILE_UpdateDefFileInfo()) {
        m_serialDefCtrl.reset();
        return 0;
    }
    return 1;
}

int KCDataDoc::GetNextSerialNumberFromFile(int advance, int readFile)
{
    if (!m_serialDefCtrl)
        return 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    // The document always takes the file's first block.
    if (!m_serialDefCtrl->SERIAL_GetNextSerialNumber(0, &m_serialFlags, &m_serialLength, &m_serialValue, &data[0],
                                                     &m_serialNumber, advance, readFile))
        return 0;
    m_serialData = m_serialNumber;
    m_serialValid = true;
    return WriteSerialNumberToBuffer();
}

int KCDataDoc::GetSerialNumber()
{
    if (!m_serialDefCtrl)
        return 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    if (!m_serialDefCtrl->SERIAL_GetSerialNumber(m_serialFlags, m_serialLength, m_serialValue, &data[0],
                                                 &m_serialNumber))
        return 0;
    m_serialData = m_serialNumber;
    return WriteSerialNumberToBuffer();
}

int KCDataDoc::WriteSerialNumberToBuffer()
{
    if (!TF_GetBufferParam(nullptr, nullptr, nullptr, -1))
        return 0;
    const uint64_t size = GetBufferSize();
    bool changed = false;
    int result = 1;
    for (uint64_t i = 0; i < m_serialByteCount && i < m_serialNumber.size(); ++i) {
        const uint64_t addr = uint64_t(m_serialAddress) + i;
        if (addr >= size) {
            result = 0; // what fits stays written
            break;
        }
        const unsigned char byte = static_cast<unsigned char>(m_serialNumber[i]);
        if (GetData(static_cast<uint32_t>(addr)) != byte) {
            SetData(byte, static_cast<uint32_t>(addr));
            changed = true;
        }
    }
    if (changed)
        UpdateAllViews(nullptr, DOCHINT_DATA);
    return result;
}

int KCDataDoc::UpdateSerialDataFromFile()
{
    return m_serialDefCtrl ? m_serialDefCtrl->FILE_UpdateDefFileInfo() : 0;
}
