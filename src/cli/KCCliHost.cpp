#include "KCCliHost.h"

#include "host/KCHostStrings.h"

#include "host/KCMessageMarks.h"

#include <cstdio>
#include <cstdlib>

KCCliHost::KCCliHost() : m_previousHost(g_pMainProgDataExChange)
{
    if (const char *v = std::getenv("KRLDV_VERBOSE"))
        m_verbose = *v && *v != '0';
    std::string error;
    if (!m_strings.load(KCHostStringTable::defaultPath(), &error))
        std::fprintf(stderr, "krldv: warning: %s\n", error.c_str());
    g_pMainProgDataExChange = this;
}

KCCliHost::~KCCliHost()
{
    g_pMainProgDataExChange = m_previousHost;
}

void KCCliHost::ShowMessage(const std::string &text, uint32_t, uint32_t, int)
{
    const KCMessageMarks::Parsed p = KCMessageMarks::parse(text);
    // Progress and reports of success are for the verbose; scripts want silence when all is well.
    if ((p.severity == KCMessageMarks::Plain || p.severity == KCMessageMarks::Information) && !m_verbose)
        return;
    // The library writes "FILE : detail" for its message window; the command line writes
    // "krldv: FILE: line N: text" everywhere, with "warning: " before a warning's text.
    std::string line = p.text;
    const size_t separator = line.find(" : ");
    if (separator != std::string::npos)
        line.replace(separator, 3, ": ");
    if (p.severity == KCMessageMarks::Error) {
        // A failed read's summary after its cause says nothing new.
        if (m_errors > 0 && line.rfind(m_strings.text(KCHostStrings::ReadFailed) + ": ", 0) == 0)
            return;
        ++m_errors;
    } else if (p.severity == KCMessageMarks::Warning) {
        size_t at = separator == std::string::npos ? 0 : separator + 2;
        if (at && line.compare(at, 5, "line ") == 0) {
            const size_t colon = line.find(": ", at);
            at = colon == std::string::npos ? at : colon + 2;
        }
        line.insert(at, "warning: ");
    }
    std::fprintf(stderr, "krldv: %s\n", line.c_str());
    ++m_shown;
}

void KCCliHost::SetStatusBarText(unsigned, const std::string &text)
{
    m_status = text;
}

int KCCliHost::MessageBox(const std::string &text, unsigned type)
{
    std::fprintf(stderr, "krldv: %s\n", text.c_str());
    // Nothing destructive happens unasked: a question is answered No, a confirmation Cancel.
    switch (type & KCPrompt::MB_BUTTONMASK) {
    case KCPrompt::MB_OK: return KCPrompt::IDOK;
    case KCPrompt::MB_YESNO: return KCPrompt::IDNO;
    default: return KCPrompt::IDCANCEL;
    }
}
