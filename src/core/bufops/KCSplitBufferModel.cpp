#include "bufops/KCSplitBufferModel.h"

#include "bufops/KCLaneJob.h"
#include "bufops/cBufferSplit.h"
#include "bufops/cLaneError.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <cstdio>

namespace {

constexpr uint32_t NarrowestWidth = 8;
constexpr uint32_t WidestWidth = 64;
constexpr uint32_t BitsPerByte = 8;
constexpr uint32_t WidestUnit = WidestWidth / BitsPerByte;

std::string hex(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(value));
    return text;
}

} // namespace

KCSplitBufferModel::KCSplitBufferModel(KCDocBase *active, std::function<KCDataDoc *()> newDocument)
    : m_source(dynamic_cast<KCDataDoc *>(active)), m_newDocument(std::move(newDocument))
{
    KCMainProgDataExChange *host = g_pMainProgDataExChange;
    if (!active)
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNoDocument));
    else if (!m_source)
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNotBufferDocument));
    else if (m_source->GetBufferSize() == 0)
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNoData));
    else if (!KCLaneJob::DataRange(*m_source, WidestUnit, m_first, m_last))
        m_last = m_source->GetBufferSize() - 1;
    if (m_source && m_last >= m_source->GetBufferSize())
        m_last = m_source->GetBufferSize() - 1;
}

void KCSplitBufferModel::showErrors() const
{
    std::string text;
    for (const std::string &e : m_errors)
        text += (text.empty() ? "" : "\n") + e;
    if (!text.empty())
        g_pMainProgDataExChange->MessageBox(text, KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
}

std::vector<uint32_t> KCSplitBufferModel::SourceWidths()
{
    return {16, 32, 64};
}

std::vector<uint32_t> KCSplitBufferModel::DestWidths(uint32_t sourceWidth)
{
    std::vector<uint32_t> widths;
    for (uint32_t w = sourceWidth / 2; w >= NarrowestWidth; w /= 2)
        widths.push_back(w);
    return widths;
}

uint64_t KCSplitBufferModel::maxAddress() const
{
    return m_source && m_source->GetBufferSize() ? m_source->GetBufferSize() - 1 : 0;
}

KCSplitBufferModel::Result KCSplitBufferModel::apply(uint64_t first, uint64_t last, uint32_t sourceWidth,
                                                     uint32_t destWidth)
{
    if (!m_errors.empty()) {
        showErrors();
        return Refused;
    }
    KCMainProgDataExChange *host = m_source->host();
    const uint32_t lanes = destWidth ? sourceWidth / destWidth : 0;
    std::vector<const KCDataDoc *> parts;
    try {
        for (uint32_t lane = 0; lane < lanes; ++lane) {
            KCDataDoc *doc = m_newDocument ? m_newDocument() : nullptr;
            if (!doc) {
                host->MessageBox(host->GetHostString(KCHostStrings::LaneNoDestination), KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
                return Failed;
            }
            m_made.push_back(doc);
            const cBufferSplit split(m_source->AlgoParam().buffer(0), sourceWidth, doc->AlgoParam().buffer(0), destWidth);
            KCLaneJob::PrepareLaneDoc(*doc, split.GetDestEnd(last) + 1, m_source->GetFileName(), destWidth,
                                      sourceWidth, lane);
            const auto range = KCLaneJob::SplitLane(*m_source, first, last, sourceWidth, destWidth, lane, *doc);
            doc->UpdateAllViews(nullptr, DOCHINT_ALL);
            host->ShowMessage(doc->GetTitle() + ": " + hex(range.first) + "-" + hex(range.second) + ", byte sum "
                              + hex(KCLaneJob::ByteSum(*doc, range.first, range.second)));
            parts.push_back(doc);
        }
    } catch (int code) {
        host->MessageBox("Split refused (code " + std::to_string(code) + "): " + cLaneError::Text(code) + ".",
                         KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        return Failed;
    }
    const std::optional<uint64_t> differs =
        KCLaneJob::RoundTrip(*m_source, first, last, sourceWidth, destWidth, parts);
    host->ShowMessage(differs ? "round trip: differs at " + hex(*differs) : std::string("round trip: identical"));
    return Done;
}
