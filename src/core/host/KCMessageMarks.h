#pragma once

#include <string>

// Reads the control marks of a message-window line: a leading 0xA7 followed by capital
// letters (E error, W warning, I information) before the text itself.
class KCMessageMarks
{
public:
    static constexpr unsigned char MarkByte = 0xA7;

    enum Severity { Plain, Information, Warning, Error };

    struct Parsed
    {
        Severity severity = Plain;
        std::string marks; // the capital letters after 0xA7
        std::string text;  // the line without its marks
    };

    static Parsed parse(const std::string &line);
    // The mark prefix for a severity, e.g. "\xA7" "E " for an error (the blank keeps the
    // marks apart from a text that starts with capitals).
    static std::string prefix(Severity severity);
};
