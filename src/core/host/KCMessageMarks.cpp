#include "host/KCMessageMarks.h"

#include <cctype>

KCMessageMarks::Parsed KCMessageMarks::parse(const std::string &line)
{
    Parsed p;
    if (line.empty() || static_cast<unsigned char>(line[0]) != MarkByte) {
        p.text = line;
        return p;
    }
    // The marks are the capitals after the mark byte; when they run into a word the last
    // capital starts that word ("EWFailed" -> "EW" + "Failed"). One blank may separate them.
    size_t end = 1;
    while (end < line.size() && std::isupper(static_cast<unsigned char>(line[end])))
        ++end;
    if (end - 1 >= 2 && end < line.size() && std::islower(static_cast<unsigned char>(line[end])))
        --end;
    p.marks = line.substr(1, end - 1);
    p.text = line.substr(end < line.size() && line[end] == ' ' ? end + 1 : end);
    if (!p.marks.empty()) {
        switch (p.marks[0]) {
        case 'E': p.severity = Error; break;
        case 'W': p.severity = Warning; break;
        case 'I': p.severity = Information; break;
        default: break;
        }
    }
    return p;
}

std::string KCMessageMarks::prefix(Severity severity)
{
    const std::string mark(1, static_cast<char>(MarkByte));
    switch (severity) {
    case Error: return mark + "E ";
    case Warning: return mark + "W ";
    case Information: return mark + "I ";
    default: return {};
    }
}
