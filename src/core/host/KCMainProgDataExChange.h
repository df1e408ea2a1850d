#pragma once

#include <cstdint>
#include <string>

struct TAG_KRLFILEINFO;

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
};

// The host's data-exchange object; set by the host before it creates any document.
extern KCMainProgDataExChange *g_pMainProgDataExChange;
