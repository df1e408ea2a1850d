#pragma once

#include "host/KCMainProgDataExChange.h"

#include <cstdint>
#include <string>

// A silent host for benchmarks: every prompt answered OK, the buffer size and fill byte given.
class KCBenchHost : public KCMainProgDataExChange
{
public:
    KCBenchHost(uint64_t bufferSize, uint8_t fill) : m_bufferSize(bufferSize), m_fill(fill) {}
    void ShowMessage(const std::string &, uint32_t, uint32_t, int) override {}
    std::string GetHostString(unsigned) const override { return "%08X %08X %02X%02X%02X%02X"; }
    void SetStatusBarText(unsigned, const std::string &) override {}
    int MessageBox(const std::string &, unsigned) override { return KCPrompt::IDOK; }
    int GetOpenDataDocumentCount() const override { return 1; }
    std::string GetNoDeviceName() const override { return "none"; }
    uint64_t GetDefaultBufferSize() const override { return m_bufferSize; }
    uint8_t GetFillByte() const override { return m_fill; }
    std::string GetLastDirectory() const override { return {}; }
    void SetLastDirectory(const std::string &) override {}

private:
    uint64_t m_bufferSize;
    uint8_t m_fill;
};
