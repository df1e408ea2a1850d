#include "KCMessageMarks.h"

#include <cctype>

KCMessageMarks::Parsed KCMessageMarks::parse(const std::string &line)
{
    Parsed p;
    if (line.empty() || static_cast<unsigned char>(line[0]) != MarkByte) {
        p.text = line;
        return p;
    }
    // The marks end where a capital starts a word: "EWFailed" -> "EW" + "Failed".
    size_t i = 1;
    while (i + 1 < line.size() && std::isupper(static_cast<unsigned char>(line[i]))
           && std::isupper(static_cast<unsigned char>(line[i + 1])))
        ++i;
    p.marks = line.substr(1, i - 1);
    p.text = line.substr(i);
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
    case Error: return mark + "E";
    case Warning: return mark + "W";
    case Information: return mark + "I";
    default: return {};
    }
}
