#include "KCCliHost.h"

#include "KCMessageMarks.h"

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
    const char *prefix = "";
    switch (p.severity) {
    case KCMessageMarks::Error:
        prefix = "error: ";
        ++m_errors;
        break;
    case KCMessageMarks::Warning:
        prefix = "warning: ";
        break;
    default:
        if (!m_verbose)
            return;
        break;
    }
    std::fprintf(stderr, "krldv: %s%s\n", prefix, p.text.c_str());
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
