#pragma once

#include <cstdint>
#include <functional>
#include <string>

// A value edit bound to one parameter. Typing parses the text into the parameter; losing
// the focus rewrites the field from the parameter in the edit's format ("%02X" unless the
// description gives another), under a guard so the rewrite does not come back as a change.
class cDDEdit
{
public:
    using Read = std::function<bool(uint32_t &)>; // false: the parameter is missing
    using Write = std::function<void(uint32_t)>;
    using Sink = std::function<void(const std::string &)>;

    static constexpr const char *DefaultFormat = "%02X";

    cDDEdit(Read read, Write write, Sink show, std::string format = DefaultFormat);

    // The edit's change notification: the text goes into the parameter when it parses.
    void OnChange(const std::string &text);
    // The edit lost the focus: show the parameter as it now is.
    void OnKillFocus() { Show(); }
    // Shows the parameter's value (empty when the parameter is missing).
    void Show();
    // Writes the current text into the parameter again.
    void WriteBack();

    const std::string &text() const { return m_text; }
    bool parse(const std::string &text, uint32_t &value) const;

private:
    Read m_read;
    Write m_write;
    Sink m_show;
    std::string m_format;
    std::string m_text;
    bool m_guard = false;
};
