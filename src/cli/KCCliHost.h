#pragma once

#include "host/KCHostStringTable.h"
#include "host/KCMainProgDataExChange.h"

#include <string>

// The command line's host: messages go to stderr with their marks turned into
// "error:"/"warning:" prefixes; prompts are answered without asking (scripts cannot answer).
class KCCliHost : public KCMainProgDataExChange
{
public:
    KCCliHost();
    ~KCCliHost() override;

    void ShowMessage(const std::string &text, uint32_t textColor, uint32_t backColor, int flags) override;
    std::string GetHostString(unsigned id) const override { return m_strings.text(id); }
    void SetStatusBarText(unsigned paneId, const std::string &text) override;
    int MessageBox(const std::string &text, unsigned type) override;
    int GetOpenDataDocumentCount() const override { return 1; }
    std::string GetNoDeviceName() const override { return NoDeviceName; }
    uint64_t GetDefaultBufferSize() const override { return m_defaultBufferSize; }
    uint8_t GetFillByte() const override { return m_fillByte; }
    std::string GetLastDirectory() const override { return m_lastDirectory; }
    void SetLastDirectory(const std::string &dir) override { m_lastDirectory = dir; }

    // Plain (unmarked) messages are progress notes: shown only when verbose.
    void setVerbose(bool verbose) { m_verbose = verbose; }
    void setDefaultBufferSize(uint64_t size) { m_defaultBufferSize = size; }
    void setFillByte(uint8_t fill) { m_fillByte = fill; }
    const std::string &lastStatusText() const { return m_status; }
    int errorCount() const { return m_errors; }
    // Messages printed so far: a command adds its own summary only when nothing told the cause.
    int shownCount() const { return m_shown; }

    static constexpr const char *NoDeviceName = "No Device";

private:
    KCHostStringTable m_strings;
    uint64_t m_defaultBufferSize = 0;
    uint8_t m_fillByte = 0xFF;
    std::string m_lastDirectory;
    std::string m_status;
    int m_errors = 0;
    int m_shown = 0;
    bool m_verbose = false;
    KCMainProgDataExChange *m_previousHost;
};
