#include "bufops/KCJoinLanesModel.h"

#include "bufops/KCLaneJob.h"
#include "bufops/cLaneError.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr uint32_t WidestWidth = 64;

std::string titleOf(const KCDataDoc &doc)
{
    return doc.GetTitle().empty() ? doc.GetFileName() : doc.GetTitle();
}

std::string hex(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(value));
    return text;
}

} // namespace

KCJoinLanesModel::KCJoinLanesModel(std::vector<KCDataDoc *> docs, std::function<KCDataDoc *()> newDocument)
    : m_docs(std::move(docs)), m_newDocument(std::move(newDocument))
{
}

std::vector<std::string> KCJoinLanesModel::titles() const
{
    std::vector<std::string> list;
    for (const KCDataDoc *doc : m_docs)
        list.push_back(titleOf(*doc));
    return list;
}

std::vector<uint32_t> KCJoinLanesModel::WideWidths(uint32_t narrowBits)
{
    std::vector<uint32_t> widths;
    for (uint64_t w = uint64_t(narrowBits) * 2; narrowBits && w <= WidestWidth; w *= 2)
        widths.push_back(uint32_t(w));
    return widths;
}

std::vector<int> KCJoinLanesModel::defaultPicks(uint32_t narrowBits, uint32_t wideBits) const
{
    std::vector<int> picks;
    const uint32_t lanes = narrowBits ? wideBits / narrowBits : 0;
    for (uint32_t lane = 0; lane < lanes; ++lane) {
        const std::string suffix = " [" + cLaneNames::NameOf(narrowBits, wideBits, lane) + "]";
        int pick = m_docs.empty() ? -1 : int(std::min<size_t>(lane, m_docs.size() - 1));
        for (size_t i = 0; i < m_docs.size(); ++i) {
            const std::string title = titleOf(*m_docs[i]);
            if (title.size() > suffix.size() && title.compare(title.size() - suffix.size(), suffix.size(), suffix) == 0) {
                pick = int(i);
                break;
            }
        }
        picks.push_back(pick);
    }
    return picks;
}

KCJoinLanesModel::Result KCJoinLanesModel::apply(uint32_t narrowBits, uint32_t wideBits, const std::vector<int> &picks)
{
    KCMainProgDataExChange *host = g_pMainProgDataExChange;
    std::vector<KCDataDoc *> lanes;
    for (int pick : picks) {
        if (pick < 0 || size_t(pick) >= m_docs.size())
            return Refused;
        lanes.push_back(m_docs[size_t(pick)]);
    }
    if (lanes.empty() || lanes.size() != (narrowBits ? wideBits / narrowBits : 0))
        return Refused;
    KCDataDoc *doc = m_newDocument ? m_newDocument() : nullptr;
    if (!doc) {
        host->MessageBox(host->GetHostString(KCHostStrings::LaneNoDestination), KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        return Failed;
    }
    m_joined = doc;
    std::string name = titleOf(*lanes.front());
    const size_t bracket = name.rfind(" [");
    if (bracket != std::string::npos && name.back() == ']')
        name.erase(bracket);
    // An empty buffer that the join grows to what the lanes need.
    KCLaneJob::PrepareLaneDoc(*doc, 0, name, narrowBits, wideBits, 0);
    doc->SetTitle(name + " [joined]");
    std::pair<uint64_t, uint64_t> range;
    try {
        range = KCLaneJob::Join(lanes, narrowBits, wideBits, *doc);
    } catch (int code) {
        host->MessageBox("Join refused (code " + std::to_string(code) + "): " + cLaneError::Text(code) + ".",
                         KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        return Failed;
    }
    doc->UpdateAllViews(nullptr, DOCHINT_ALL);
    if (range.first <= range.second)
        host->ShowMessage(doc->GetTitle() + ": " + hex(range.first) + "-" + hex(range.second) + ", byte sum "
                          + hex(KCLaneJob::ByteSum(*doc, range.first, range.second)));
    return Done;
}
