#include "fileio/KCHostFileMessage.h"

#include "host/KCMainProgDataExChange.h"
#include "host/KCMessageMarks.h"

void KCHostFileMessage::message(Severity severity, const std::string &fileName, uint64_t line, const std::string &text)
{
    KCMessageMarks::Severity mark = KCMessageMarks::Plain;
    if (severity == Error) {
        mark = KCMessageMarks::Error;
        ++m_errors;
    } else if (severity == Warning) {
        mark = KCMessageMarks::Warning;
        ++m_warnings;
    }
    std::string out = KCMessageMarks::prefix(mark) + fileName + " : ";
    if (line > 0)
        out += "line " + std::to_string(line) + ": ";
    out += text;
    if (m_host)
        m_host->ShowMessage(out);
}
