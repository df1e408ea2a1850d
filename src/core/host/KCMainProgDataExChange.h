#pragma once

#include <cstdint>
#include <string>


class KCDocBase;

// The host's information record of a file: eight 32-bit words.
struct TAG_KRLFILEINFO
{
    uint32_t words[8] = {};

    TAG_KRLFILEINFO() = default;
    // The record's own copy duplicates the first word pair into words 2 and 3.
    TAG_KRLFILEINFO(const TAG_KRLFILEINFO &o)
    {
        words[0] = words[2] = o.words[0];
        words[1] = words[3] = o.words[1];
        for (int i = 4; i < 8; ++i)
            words[i] = o.words[i];
    }
    TAG_KRLFILEINFO &operator=(const TAG_KRLFILEINFO &o)
    {
        const TAG_KRLFILEINFO copy(o);
        for (int i = 0; i < 8; ++i)
            words[i] = copy.words[i];
        return *this;
    }
};

struct KCFileDialogRequest;

// Failure bits of GetFileInfo's result.
constexpr uint32_t FILEINFO_FAILED_MASK = 0xC0000000u;

// Options of the program's file dialogs: hide read-only, prompt before overwriting, explorer style.
constexpr unsigned FILEDIALOG_OPTIONS = 0x80006;

// Answers and button sets of the host's prompt service (a message box).
namespace KCPrompt {
enum Buttons : unsigned {
    MB_OK = 0x0,
    MB_OKCANCEL = 0x1,
    MB_YESNOCANCEL = 0x3,
    MB_YESNO = 0x4,
    MB_ICONERROR = 0x10,
    MB_ICONQUESTION = 0x20,
    MB_ICONEXCLAMATION = 0x30,
    MB_ICONINFORMATION = 0x40,
    MB_BUTTONMASK = 0xF,
    MB_ICONMASK = 0xF0,
};
enum Answer : int { IDOK = 1, IDCANCEL = 2, IDYES = 6, IDNO = 7 };
}

// Everything the library needs from its host application. The library reaches the host
// only through this interface; korel5, the command line and the tests each implement it.
class KCMainProgDataExChange
{
public:
    // Colours and flags every message of the open/save pipeline passes along.
    static constexpr uint32_t MessageTextColor = 0xFF000000;
    static constexpr uint32_t MessageBackColor = 0xFFFFFFFF;

    virtual ~KCMainProgDataExChange() = default;

    // A line for the message window. A leading 0xA7 and capital letters are control marks.
    virtual void ShowMessage(const std::string &text, uint32_t textColor = MessageTextColor,
                             uint32_t backColor = MessageBackColor, int flags = 0) = 0;

    // Text of a numbered host string; a missing number gives "<string N>".
    virtual std::string GetHostString(unsigned id) const = 0;

    // Status-bar pane text (pane ids as the host numbers them).
    virtual void SetStatusBarText(unsigned paneId, const std::string &text) = 0;

    // Prompt service: shows text with the buttons and icon of `type` (KCPrompt::Buttons),
    // returns the button pressed (KCPrompt::Answer).
    virtual int MessageBox(const std::string &text, unsigned type) = 0;

    virtual int GetOpenDataDocumentCount() const = 0;
    virtual std::string GetNoDeviceName() const = 0;
    virtual uint64_t GetDefaultBufferSize() const = 0;
    virtual uint8_t GetFillByte() const = 0;

    // Opaque host objects handed on to the algorithm parameters.
    virtual void *GetHardwareParam() const { return nullptr; }
    virtual void *GetMainObject() const { return nullptr; }

    virtual std::string GetLastDirectory() const = 0;
    virtual void SetLastDirectory(const std::string &dir) = 0;

    // Long operations: the host shows a busy cursor between these calls.
    virtual void BeginWaitCursor() {}
    virtual void EndWaitCursor() {}

    // The file's information record; bits 30 or 31 set in the result mean failure. The
    // default reads the file system: size (low, high), modification time (low, high), mode.
    virtual uint32_t GetFileInfo(const std::string &path, TAG_KRLFILEINFO *info);

    // Runs the program's file dialog; false when the user cancels or there is no dialog.
    virtual bool RunFileDialog(KCFileDialogRequest &) { return false; }
    // Opens a path through the host's document template (a new document with its views).
    virtual KCDocBase *OpenDocumentFile(const std::string &) { return nullptr; }
    // Gives a new document the host's standard auto action.
    virtual void SetStandardAutoAction(KCDocBase *) {}
    // Where the default serial definition file lives.
    virtual std::string GetSerialDefaultFilePath() const { return "krdefser.ser"; }
    // Nonzero when the save prompt must not mention project files.
    virtual int GetNoProjectHintFlag() const { return 0; }

    // True while no programmer action (program, read, verify, ...) is running; the data
    // views refuse typing otherwise.
    virtual bool ActionUi_NULL() const { return true; }

    // Device selection. The document configures itself for a device only while the host's
    // device-select window exists.
    virtual bool HasDeviceSelectWindow() const { return true; }
    // When the buffer parameters follow the device: 0 on selection, 1 on device load.
    virtual int GetDeviceConfigMode() const { return 0; }
    // Set while the host builds the workspace tabs itself: selection then leaves them alone.
    virtual bool IsDeviceTabStepSkipped() const { return false; }

    // Production counts of the current job; -1 while none is known. Kept here because the
    // host owns the run; projects store and restore them.
    virtual int GetPassCount() const { return m_passCount; }
    virtual int GetFailCount() const { return m_failCount; }
    virtual void SetCounts(int pass, int fail)
    {
        m_passCount = pass;
        m_failCount = fail;
    }
    // Devices the job is to make; 0 when no target is set.
    virtual int GetTargetCount() const { return m_targetCount; }
    virtual void SetTargetCount(int target) { m_targetCount = target; }

private:
    int m_passCount = -1;
    int m_failCount = -1;
    int m_targetCount = 0;
};

// The host's data-exchange object; set by the host before it creates any document.
extern KCMainProgDataExChange *g_pMainProgDataExChange;
