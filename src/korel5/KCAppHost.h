#pragma once

#include "host/KCHostStringTable.h"
#include "host/KCMainProgDataExChange.h"

#include <string>

class KCMainFrame;

// korel5's side of the host interface: messages to the message window, status texts to the
// status bar, prompts as message boxes, the program's file dialog, documents opened through
// the main frame, and the settings the user keeps. Installs itself as the library's host.
class KCAppHost : public KCMainProgDataExChange
{
public:
    static constexpr const char *NoDeviceName = "No Device";

    explicit KCAppHost(KCMainFrame *frame);
    ~KCAppHost() override;
    KCAppHost(const KCAppHost &) = delete;
    KCAppHost &operator=(const KCAppHost &) = delete;

    void ShowMessage(const std::string &text, uint32_t textColor, uint32_t backColor, int flags) override;
    std::string GetHostString(unsigned id) const override { return m_strings.text(id); }
    void SetStatusBarText(unsigned paneId, const std::string &text) override;
    int MessageBox(const std::string &text, unsigned type) override;
    int GetOpenDataDocumentCount() const override;
    std::string GetNoDeviceName() const override { return NoDeviceName; }
    uint64_t GetDefaultBufferSize() const override;
    uint8_t GetFillByte() const override;
    std::string GetLastDirectory() const override;
    void SetLastDirectory(const std::string &dir) override;
    void BeginWaitCursor() override;
    void EndWaitCursor() override;
    bool RunFileDialog(KCFileDialogRequest &request) override;
    KCDocBase *OpenDocumentFile(const std::string &path) override;
    std::string GetSerialDefaultFilePath() const override;

    // Without a user (screenshots, benchmarks) no dialog is shown: prompts get the answer
    // that changes nothing and file dialogs are cancelled.
    void setInteractive(bool interactive) { m_interactive = interactive; }
    bool isInteractive() const { return m_interactive; }
    const std::string &stringTableError() const { return m_stringError; }

private:
    KCMainFrame *m_frame;
    KCHostStringTable m_strings;
    std::string m_stringError;
    bool m_interactive = true;
    int m_waitDepth = 0;
    KCMainProgDataExChange *m_previousHost;
};
