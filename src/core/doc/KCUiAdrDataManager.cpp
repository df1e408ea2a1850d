#include "doc/KCUiAdrDataManager.h"

#include "doc/KCLayoutNames.h"
#include "doc/TAG_BUFFER_PARAM.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"

namespace {

constexpr int Width8 = 8;
constexpr int Width16 = 16;
constexpr int Width32 = 32;
constexpr int Width64 = 64;

bool isOffsetLayout(const std::string &l) { return l == LAYOUT_BYTEVIEW_OFFSET; }
bool isWordLayout(const std::string &l) { return l == LAYOUT_WORDVIEW; }
bool isPlainByteLayout(const std::string &l) { return l == LAYOUT_JEDVIEW || l == LAYOUT_BYTEVIEW; }

} // namespace

BUFORGLAYOUT KCUiAdrDataManager::GetBufOrgLayout(const std::string &layout)
{
    return isWordLayout(layout) ? BUFORG_WORD : BUFORG_BYTE;
}

uint32_t KCUiAdrDataManager::CalcSize(uint32_t start, uint32_t end) { return end - start + 1; }
uint32_t KCUiAdrDataManager::CalcByteBSA(uint32_t w) { return 2 * w; }
uint32_t KCUiAdrDataManager::CalcByteBEA(uint32_t w) { return 2 * w + 1; }
uint32_t KCUiAdrDataManager::CalcWordBA(uint32_t b) { return b >> 1; }

uint32_t KCUiAdrDataManager::CalcDEA(int width, uint32_t dsa, uint32_t size)
{
    switch (width) {
    case Width8: return dsa + size - 1;
    case Width16: return dsa + (size >> 1) - 1;
    case Width32: return dsa + (size >> 2) - 1;
    case Width64: return dsa + (size >> 3) - 1;
    default: return Invalid;
    }
}

uint32_t KCUiAdrDataManager::CalcDSZ(int width, uint32_t n)
{
    switch (width) {
    case Width8: return n;
    case Width16: return 2 * n;
    case Width32: return 4 * n;
    case Width64: return 8 * n;
    default: return Invalid;
    }
}

uint32_t KCUiAdrDataManager::CalcDispBEA(int width, uint32_t dsa, uint32_t size)
{
    switch (width) {
    case Width8: return dsa + size - 1;
    case Width16: return dsa + (size >> 1) - 1;
    default: return Invalid;
    }
}

uint32_t KCUiAdrDataManager::GetFileDisplayBA(int org, uint32_t a)
{
    return org == BUFORG_BYTE ? a : org == BUFORG_WORD ? a >> 1 : Invalid;
}

uint32_t KCUiAdrDataManager::GetActualBSA(int org, uint32_t a)
{
    return org == BUFORG_BYTE ? a : org == BUFORG_WORD ? 2 * a : Invalid;
}

uint32_t KCUiAdrDataManager::GetActualBEA(int org, uint32_t a)
{
    return org == BUFORG_BYTE ? a : org == BUFORG_WORD ? 2 * a + 1 : Invalid;
}

void KCUiAdrDataManager::setActual(uint32_t &field, uint32_t byteAddress, DISPLAY_FLAGS flags)
{
    if (flags == DISPLAY_WITH_OFFSET) {
        if (!m_algoUiData)
            return;
        byteAddress -= m_algoUiData->addressOffset;
    }
    field = byteAddress;
}

void KCUiAdrDataManager::SetActualLBSA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags)
{
    if (m_bufferParam)
        setActual(m_bufferParam->LBSA, GetActualBSA(GetBufOrgLayout(layout), value), flags);
}

void KCUiAdrDataManager::SetActualLBEA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags)
{
    if (m_bufferParam)
        setActual(m_bufferParam->LBEA, GetActualBEA(GetBufOrgLayout(layout), value), flags);
}

void KCUiAdrDataManager::SetActualSBSA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags)
{
    if (m_bufferParam)
        setActual(m_bufferParam->SBSA, GetActualBSA(GetBufOrgLayout(layout), value), flags);
}

void KCUiAdrDataManager::SetActualSBEA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags)
{
    if (m_bufferParam)
        setActual(m_bufferParam->SBEA, GetActualBEA(GetBufOrgLayout(layout), value), flags);
}

uint32_t KCUiAdrDataManager::getFileDisplay(uint32_t value, const std::string &layout, DISPLAY_FLAGS flags) const
{
    if (flags == DISPLAY_WITH_OFFSET && m_algoUiData)
        value += m_algoUiData->addressOffset;
    return GetFileDisplayBA(GetBufOrgLayout(layout), value);
}

uint32_t KCUiAdrDataManager::GetFileDisplayLBSA(const std::string &layout, DISPLAY_FLAGS flags) const
{
    return m_bufferParam ? getFileDisplay(m_bufferParam->LBSA, layout, flags) : Invalid;
}

uint32_t KCUiAdrDataManager::GetFileDisplayLBEA(const std::string &layout, DISPLAY_FLAGS flags) const
{
    return m_bufferParam ? getFileDisplay(m_bufferParam->LBEA, layout, flags) : Invalid;
}

uint32_t KCUiAdrDataManager::GetFileDisplaySBSA(const std::string &layout, DISPLAY_FLAGS flags) const
{
    return m_bufferParam ? getFileDisplay(m_bufferParam->SBSA, layout, flags) : Invalid;
}

uint32_t KCUiAdrDataManager::GetFileDisplaySBEA(const std::string &layout, DISPLAY_FLAGS flags) const
{
    return m_bufferParam ? getFileDisplay(m_bufferParam->SBEA, layout, flags) : Invalid;
}

uint32_t KCUiAdrDataManager::DOGetDisplayBSA(const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    if (isOffsetLayout(layout))
        return m_algoUiData->addressOffset + m_algoUiData->BSA;
    if (isPlainByteLayout(layout))
        return m_algoUiData->BSA;
    if (isWordLayout(layout))
        return m_algoUiData->BSA >> 1;
    return Invalid;
}

uint32_t KCUiAdrDataManager::DOGetDisplayBEA(const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    if (isOffsetLayout(layout))
        return m_algoUiData->addressOffset + m_algoUiData->BEA;
    if (isPlainByteLayout(layout))
        return m_algoUiData->BEA;
    if (isWordLayout(layout))
        return m_algoUiData->BEA >> 1;
    return Invalid;
}

uint32_t KCUiAdrDataManager::DOGetDisplayBMA(const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    if (isPlainByteLayout(layout) || isOffsetLayout(layout))
        return m_algoUiData->bufferSize - 1;
    if (isWordLayout(layout)) {
        // The shift is taken on the signed size.
        const int32_t size = static_cast<int32_t>(m_algoUiData->bufferSize);
        return static_cast<uint32_t>((size >> 1) - 1);
    }
    return Invalid;
}

uint32_t KCUiAdrDataManager::DOGetDisplayDSA(int width, const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    if (width == Width8)
        return isOffsetLayout(layout) ? m_algoUiData->addressOffset + m_algoUiData->DSA : m_algoUiData->DSA;
    if (width == Width16 || width == Width32)
        return m_algoUiData->DSA;
    return Invalid;
}

uint32_t KCUiAdrDataManager::DOGetDisplayDEA(int width, const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    const uint32_t dsa = DOGetDisplayDSA(width, layout);
    if (dsa == Invalid)
        return Invalid;
    return CalcDEA(width, dsa, CalcSize(m_algoUiData->BSA, m_algoUiData->BEA));
}

uint32_t KCUiAdrDataManager::DOGetDisplayDMA(int, const std::string &layout) const
{
    if (!m_algoUiData)
        return Invalid;
    return isOffsetLayout(layout) ? m_algoUiData->addressOffset + m_algoUiData->DMA : m_algoUiData->DMA;
}

uint32_t KCUiAdrDataManager::DOGetControlBSZ(uint32_t bsa, uint32_t bea, const std::string &layout) const
{
    if (isOffsetLayout(layout)) {
        if (!m_algoUiData || bsa < m_algoUiData->addressOffset)
            return Invalid;
    } else if (isWordLayout(layout)) {
        bsa = CalcByteBSA(bsa);
        bea = CalcByteBEA(bea);
    }
    return CalcSize(bsa, bea);
}

uint32_t KCUiAdrDataManager::DOGetDisplayDEA(int width, uint32_t bsa, uint32_t bea, uint32_t dsa,
                                             const std::string &layout) const
{
    const uint32_t size = DOGetControlBSZ(bsa, bea, layout);
    if (isOffsetLayout(layout) && (!m_algoUiData || dsa < m_algoUiData->addressOffset))
        return Invalid;
    if (static_cast<int32_t>(size) < 1)
        return Invalid;
    return CalcDEA(width, dsa, size);
}

uint32_t KCUiAdrDataManager::DOGetControlDSZ(int width, uint32_t start, uint32_t end, const std::string &) const
{
    return CalcDSZ(width, CalcSize(start, end));
}

uint32_t KCUiAdrDataManager::DOGetDisplayBEA(int width, uint32_t start, uint32_t end, uint32_t dsa,
                                             const std::string &layout) const
{
    const uint32_t n = DOGetControlDSZ(width, start, end, layout);
    if (static_cast<int32_t>(n) < 1)
        return Invalid;
    if (isPlainByteLayout(layout) || isOffsetLayout(layout))
        return CalcDispBEA(Width8, dsa, n);
    if (isWordLayout(layout))
        return CalcDispBEA(Width16, dsa, n);
    return Invalid;
}

void KCUiAdrDataManager::DOSaveABI(uint32_t bsa, uint32_t bea, uint32_t dsa, uint32_t dea, const std::string &layout)
{
    if (!m_algoUiData)
        return;
    TAG_UI_ALGODATA_KRL3 &d = *m_algoUiData;
    if (isOffsetLayout(layout)) {
        const uint32_t off = d.addressOffset;
        d.BSA = bsa - off;
        d.BEA = bea - off;
        d.DSA = dsa - off;
        d.DEA = dea - off;
    } else if (isPlainByteLayout(layout)) {
        d.BSA = bsa;
        d.BEA = bea;
        d.DSA = dsa;
        d.DEA = dea;
    } else if (isWordLayout(layout)) {
        d.BSA = CalcByteBSA(bsa);
        d.BEA = CalcByteBEA(bea);
        d.DSA = dsa;
        d.DEA = dea;
    }
}

void KCUiAdrDataManager::CfgSelectConditionFile()
{
    if (!m_bufferParam || !m_algoUiData)
        return;
    m_algoUiData->BSA = m_bufferParam->LBSA;
    m_algoUiData->BEA = m_bufferParam->LBEA;
    // Always in bytes here, whatever the device's data width.
    m_algoUiData->DEA = CalcDEA(Width8, m_algoUiData->DSA, CalcSize(m_algoUiData->BSA, m_algoUiData->BEA));
}

void KCUiAdrDataManager::CfgOnLoadFile()
{
    if (!m_bufferParam || !m_algoUiData || !m_bufferParam->loadRangeFromDevice)
        return;
    m_algoUiData->BSA = m_bufferParam->LBSA;
    m_algoUiData->BEA = m_bufferParam->LBEA;
    const uint32_t dea = CalcDEA(m_algoUiData->dataWidth, m_algoUiData->DSA,
                                 CalcSize(m_algoUiData->BSA, m_algoUiData->BEA));
    if (dea != Invalid)
        m_algoUiData->DEA = dea;
}

void KCUiAdrDataManager::copyDeviceRangeToBuffer()
{
    if (!m_bufferParam || !m_algoUiData || !m_algoUiData->deviceRangeValid)
        return;
    if (m_bufferParam->loadRangeFromDevice) {
        m_bufferParam->LBSA = m_algoUiData->BSA;
        m_bufferParam->LBEA = m_algoUiData->BEA;
    }
    if (m_bufferParam->saveRangeFromDevice) {
        m_bufferParam->SBSA = m_algoUiData->BSA;
        m_bufferParam->SBEA = m_algoUiData->BEA;
    }
}
