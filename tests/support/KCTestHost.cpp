#include "KCTestHost.h"
#include "fileio/KCFileDialogRequest.h"

KCTestHost::KCTestHost() : m_previousHost(g_pMainProgDataExChange)
{
    m_strings.load(KRLDV_SOURCE_DATA_DIR "/host-strings.txt");
    g_pMainProgDataExChange = this;
}

KCTestHost::~KCTestHost()
{
    g_pMainProgDataExChange = m_previousHost;
}

void KCTestHost::ShowMessage(const std::string &text, uint32_t, uint32_t, int)
{
    messages.push_back(text);
}

std::string KCTestHost::GetHostString(unsigned id) const
{
    return m_strings.text(id);
}

void KCTestHost::SetStatusBarText(unsigned paneId, const std::string &text)
{
    statusTexts[paneId] = text;
}

int KCTestHost::MessageBox(const std::string &text, unsigned type)
{
    prompts.push_back({text, type});
    if (m_answers.empty())
        return KCPrompt::IDCANCEL;
    const int answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

std::string KCTestHost::statusText(unsigned paneId) const
{
    const auto it = statusTexts.find(paneId);
    return it == statusTexts.end() ? std::string() : it->second;
}

bool KCTestHost::RunFileDialog(KCFileDialogRequest &request)
{
    dialogRequests.push_back(request);
    if (dialogAnswers.empty())
        return false;
    const KCFileDialogRequest answer = dialogAnswers.front();
    dialogAnswers.pop_front();
    if (answer.path.empty())
        return false;
    request.path = answer.path;
    request.chosenFilterType = answer.chosenFilterType;
    request.chosenLoadSaveType = answer.chosenLoadSaveType;
    return true;
}
