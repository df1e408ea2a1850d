#pragma once

#include "fileio/KCFileDialogRequest.h"
#include "host/KCHostStringTable.h"
#include "host/KCMainProgDataExChange.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

// In-memory host for tests: records every message, status text and prompt, and answers
// prompts from a script. Installs itself as the global host while it lives.
class KCTestHost : public KCMainProgDataExChange
{
public:
    struct Prompt
    {
        std::string text;
        unsigned type;
    };

    KCTestHost();
    ~KCTestHost() override;

    void ShowMessage(const std::string &text, uint32_t textColor, uint32_t backColor, int flags) override;
    std::string GetHostString(unsigned id) const override;
    void SetStatusBarText(unsigned paneId, const std::string &text) override;
    int MessageBox(const std::string &text, unsigned type) override;
    int GetOpenDataDocumentCount() const override { return openDocuments; }
    std::string GetNoDeviceName() const override { return noDeviceName; }
    uint64_t GetDefaultBufferSize() const override { return defaultBufferSize; }
    uint8_t GetFillByte() const override { return fillByte; }
    std::string GetLastDirectory() const override { return lastDirectory; }
    void SetLastDirectory(const std::string &dir) override { lastDirectory = dir; }
    bool ActionUi_NULL() const override { return !actionRunning; }
    bool HasDeviceSelectWindow() const override { return deviceSelectWindow; }
    int GetDeviceConfigMode() const override { return deviceConfigMode; }
    bool IsDeviceTabStepSkipped() const override { return deviceTabStepSkipped; }

    bool RunFileDialog(KCFileDialogRequest &request) override;
    KCDocBase *OpenDocumentFile(const std::string &path) override
    {
        openedPaths.push_back(path);
        return openDocument ? openDocument(path) : nullptr;
    }

    // Results of the next file dialogs: a path chooses it (with the request's preselected
    // filter and format unless set), an empty path cancels.
    std::deque<KCFileDialogRequest> dialogAnswers;
    std::vector<KCFileDialogRequest> dialogRequests;
    std::function<KCDocBase *(const std::string &)> openDocument;
    std::vector<std::string> openedPaths;

    // Answers given to the next prompts, in order; with none left a prompt is answered IDCANCEL.
    void scriptAnswers(std::initializer_list<int> answers) { m_answers.insert(m_answers.end(), answers); }
    std::string statusText(unsigned paneId) const;
    const KCHostStringTable &strings() const { return m_strings; }

    std::vector<std::string> messages;
    std::vector<Prompt> prompts;
    std::map<unsigned, std::string> statusTexts;
    int openDocuments = 0;
    std::string noDeviceName = "No Device";
    uint64_t defaultBufferSize = 0x10000;
    uint8_t fillByte = 0xFF;
    std::string lastDirectory;
    bool actionRunning = false;
    bool deviceSelectWindow = true;
    int deviceConfigMode = 0;
    bool deviceTabStepSkipped = false;

private:
    KCHostStringTable m_strings;
    std::deque<int> m_answers;
    KCMainProgDataExChange *m_previousHost;
};
