#include "bufops/KCShuffleBufferModel.h"

#include "bufops/KCLaneJob.h"
#include "bufops/cLaneError.h"
#include "doc/KCDataDoc.h"
#include "host/KCDebugLog.h"
#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>

namespace {

constexpr uint32_t NarrowestWidth = 8;
constexpr uint32_t WidestWidth = 64;

} // namespace

KCShuffleBufferModel::KCShuffleBufferModel(KCDocBase *doc, const std::vector<ChildWindow> &children,
                                           const KCShuffleBufferInitData &init)
    : m_doc(dynamic_cast<KCDataDoc *>(doc)), m_init(init)
{
    KCMainProgDataExChange *host = g_pMainProgDataExChange;
    if (!doc) {
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNoDocument));
        return;
    }
    if (!m_doc) {
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNotBufferDocument));
        return;
    }
    uint32_t width = NarrowestWidth;
    if (m_doc->GetBufferSize() == 0) {
        m_errors.push_back(host->GetHostString(KCHostStrings::LaneNoData));
    } else if (m_doc->HasDeviceX()) {
        const int deviceWidth = m_doc->AlgoParam().algoUiData().dataWidth;
        if (deviceWidth <= 0 || deviceWidth % NarrowestWidth)
            m_errors.push_back(KCFormat::format(host->GetHostString(KCHostStrings::LaneDeviceWidth), {deviceWidth}));
        else
            width = uint32_t(deviceWidth);
    }
    for (; width < WidestWidth; width *= 2)
        m_sourceWidths.push_back(width);
    // Without a range given the dialog offers the source's data.
    if (m_init.m_firstAddress == 0 && m_init.m_lastAddress == 0) {
        uint64_t first = 0, last = 0;
        if (KCLaneJob::DataRange(*m_doc, 1, first, last)) {
            m_init.m_firstAddress = uint32_t(first);
            m_init.m_lastAddress = uint32_t(last);
        }
    }
    for (const ChildWindow &child : children) {
        if (!child.isDocumentFrame) {
            m_errors.push_back(NotChildWindowText);
            break;
        }
        auto *other = dynamic_cast<KCDataDoc *>(child.doc);
        // A document with several windows is listed once.
        if (other && other != m_doc && std::find(m_destDocs.begin(), m_destDocs.end(), other) == m_destDocs.end())
            m_destDocs.push_back(other);
    }
}

void KCShuffleBufferModel::showErrors() const
{
    std::string text;
    for (const std::string &e : m_errors)
        text += (text.empty() ? "" : "\n") + e;
    if (!text.empty())
        g_pMainProgDataExChange->MessageBox(text, KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
}

std::vector<uint32_t> KCShuffleBufferModel::DestWidths(uint32_t sourceWidth)
{
    std::vector<uint32_t> widths;
    for (uint64_t w = uint64_t(sourceWidth) * 2; sourceWidth && w <= WidestWidth; w *= 2)
        widths.push_back(uint32_t(w));
    return widths;
}

std::vector<std::string> KCShuffleBufferModel::destTitles() const
{
    std::vector<std::string> titles;
    for (const KCDataDoc *doc : m_destDocs)
        titles.push_back(doc->GetTitle().empty() ? doc->GetFileName() : doc->GetTitle());
    return titles;
}

KCShuffleBufferModel::Result KCShuffleBufferModel::apply(int destIndex, uint64_t first, uint64_t last,
                                                         uint32_t sourceWidth, uint32_t destWidth, uint32_t lane)
{
    if (!m_errors.empty())
        return Closed;
    KCDebugLog::Write(std::string(DestIndexText) + " " + std::to_string(destIndex));
    KCDataDoc *dest = destIndex >= 0 && size_t(destIndex) < m_destDocs.size() ? m_destDocs[destIndex] : nullptr;
    if (!dest) {
        m_errors.push_back(g_pMainProgDataExChange->GetHostString(KCHostStrings::LaneNoDestination));
        showErrors();
        return Refused;
    }
    try {
        KCLaneJob::Shuffle(*m_doc, first, last, sourceWidth, destWidth, lane, *dest);
    } catch (int code) {
        g_pMainProgDataExChange->MessageBox("Shuffle refused (code " + std::to_string(code) + "): "
                                                + cLaneError::Text(code) + ".",
                                            KCPrompt::MB_OK | KCPrompt::MB_ICONERROR);
        closeDoc(dest);
        return Failed;
    }
    dest->UpdateAllViews(nullptr, DOCHINT_ALL);
    m_doc->UpdateAllViews(nullptr, DOCHINT_ALL);
    return Done;
}

void KCShuffleBufferModel::closeDoc(KCDataDoc *)
{
    // The destination stays open with the bytes already written, which undo takes back.
    KCDebugLog::Write(CloseDocText);
}
