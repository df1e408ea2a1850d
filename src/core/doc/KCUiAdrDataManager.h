#pragma once

#include <cstdint>
#include <string>

struct TAG_BUFFER_PARAM;
struct TAG_UI_ALGODATA_KRL3;

// Buffer organisation of a layout.
enum BUFORGLAYOUT : int { BUFORG_BYTE = 0, BUFORG_WORD = 1 };

// Whether an address is a display address that includes the layout's address offset.
enum DISPLAY_FLAGS : int { DISPLAY_PLAIN = 0, DISPLAY_WITH_OFFSET = 1 };

// Converts between byte addresses of the buffer, display addresses of a layout, and the
// load and save ranges of the buffer parameters. Works on two records it does not own;
// without the record an operation needs it does nothing or returns -1 (0xFFFFFFFF).
class KCUiAdrDataManager
{
public:
    static constexpr uint32_t Invalid = 0xFFFFFFFFu;

    KCUiAdrDataManager(TAG_BUFFER_PARAM *bufferParam = nullptr, TAG_UI_ALGODATA_KRL3 *algoUiData = nullptr)
        : m_bufferParam(bufferParam), m_algoUiData(algoUiData)
    {
    }
    virtual ~KCUiAdrDataManager() = default;
    KCUiAdrDataManager(const KCUiAdrDataManager &) = default;
    KCUiAdrDataManager &operator=(const KCUiAdrDataManager &) = default;

    TAG_UI_ALGODATA_KRL3 *getAlgoUIData() const { return m_algoUiData; }
    TAG_BUFFER_PARAM *getBufferParam() const { return m_bufferParam; }

    static BUFORGLAYOUT GetBufOrgLayout(const std::string &layout);

    // Unit conversions.
    static uint32_t CalcSize(uint32_t start, uint32_t end);
    static uint32_t CalcByteBSA(uint32_t w);
    static uint32_t CalcByteBEA(uint32_t w);
    static uint32_t CalcWordBA(uint32_t b);
    static uint32_t CalcDEA(int width, uint32_t dsa, uint32_t size);
    static uint32_t CalcDSZ(int width, uint32_t n);
    static uint32_t CalcDispBEA(int width, uint32_t dsa, uint32_t size);
    static uint32_t GetFileDisplayBA(int org, uint32_t a);
    static uint32_t GetActualBSA(int org, uint32_t a);
    static uint32_t GetActualBEA(int org, uint32_t a);

    // Load and save ranges.
    void SetActualLBSA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags);
    void SetActualLBEA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags);
    void SetActualSBSA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags);
    void SetActualSBEA(const std::string &layout, uint32_t value, DISPLAY_FLAGS flags);
    uint32_t GetFileDisplayLBSA(const std::string &layout, DISPLAY_FLAGS flags) const;
    uint32_t GetFileDisplayLBEA(const std::string &layout, DISPLAY_FLAGS flags) const;
    uint32_t GetFileDisplaySBSA(const std::string &layout, DISPLAY_FLAGS flags) const;
    uint32_t GetFileDisplaySBEA(const std::string &layout, DISPLAY_FLAGS flags) const;

    // Display queries on the device record.
    uint32_t DOGetDisplayBSA(const std::string &layout) const;
    uint32_t DOGetDisplayBEA(const std::string &layout) const;
    uint32_t DOGetDisplayBMA(const std::string &layout) const;
    uint32_t DOGetDisplayDSA(int width, const std::string &layout) const;
    uint32_t DOGetDisplayDEA(int width, const std::string &layout) const;
    uint32_t DOGetDisplayDMA(int width, const std::string &layout) const;
    uint32_t DOGetControlBSZ(uint32_t bsa, uint32_t bea, const std::string &layout) const;
    uint32_t DOGetDisplayDEA(int width, uint32_t bsa, uint32_t bea, uint32_t dsa, const std::string &layout) const;
    uint32_t DOGetControlDSZ(int width, uint32_t start, uint32_t end, const std::string &layout) const;
    uint32_t DOGetDisplayBEA(int width, uint32_t start, uint32_t end, uint32_t dsa, const std::string &layout) const;
    void DOSaveABI(uint32_t bsa, uint32_t bea, uint32_t dsa, uint32_t dea, const std::string &layout);

    // Configuration steps.
    void CfgSelectConditionFile();
    void CfgOnLoadFile();
    void CfgOnDevLoadDefaults() { copyDeviceRangeToBuffer(); }
    void CfgOnDevSaveDefaults() { copyDeviceRangeToBuffer(); }
    void CfgOnDeviceOptionEdit() { copyDeviceRangeToBuffer(); }
    void CfgSelectConditionDevice() { copyDeviceRangeToBuffer(); }

private:
    void setActual(uint32_t &field, uint32_t byteAddress, DISPLAY_FLAGS flags);
    uint32_t getFileDisplay(uint32_t value, const std::string &layout, DISPLAY_FLAGS flags) const;
    void copyDeviceRangeToBuffer();

    TAG_BUFFER_PARAM *m_bufferParam;
    TAG_UI_ALGODATA_KRL3 *m_algoUiData;
};
