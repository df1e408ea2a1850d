#pragma once

#include "bufops/KCShuffleBufferInitData.h"

#include <cstdint>
#include <string>
#include <vector>

class KCDataDoc;
class KCDocBase;

// The rules of the shuffle dialog, apart from its widgets: the width and lane lists, the
// documents that can receive the data, and what OK does.
class KCShuffleBufferModel
{
public:
    // A child window of the frame, in the frame's order.
    struct ChildWindow
    {
        KCDocBase *doc = nullptr;
        bool isDocumentFrame = true;
    };
    enum Result { Closed, Done, Failed, Refused };

    static constexpr const char *NotChildWindowText = "Window is not a MDI child window.";
    static constexpr const char *DestIndexText = "getDestDoc index =";
    static constexpr const char *CloseDocText = "KCShuffleBuffer::closeDoc not implemented.";

    // Records the problems of the start (host strings 367, 368, 370, 371, the walk's text).
    KCShuffleBufferModel(KCDocBase *doc, const std::vector<ChildWindow> &children,
                         const KCShuffleBufferInitData &init = KCShuffleBufferInitData());
    bool isValid() const { return m_errors.empty(); }
    const std::vector<std::string> &errors() const { return m_errors; }
    // The problems recorded so far in one message box.
    void showErrors() const;

    // Narrow widths for the document: the device's data width (8 without a device) and its
    // doubles that still have a wider width above them.
    const std::vector<uint32_t> &sourceWidths() const { return m_sourceWidths; }
    // 2w, 4w, ... up to 64.
    static std::vector<uint32_t> DestWidths(uint32_t sourceWidth);
    const std::vector<KCDataDoc *> &destDocs() const { return m_destDocs; }
    std::vector<std::string> destTitles() const;
    const KCShuffleBufferInitData &initData() const { return m_init; }

    // OK: with problems recorded only closes; otherwise shuffles source first..last into the
    // lane of the document at destIndex, sets its data range and checksum and refreshes both.
    // An engine code is shown to the user and the destination left open.
    Result apply(int destIndex, uint64_t first, uint64_t last, uint32_t sourceWidth, uint32_t destWidth,
                 uint32_t lane);

private:
    void closeDoc(KCDataDoc *doc);

    KCDataDoc *m_doc = nullptr;
    std::vector<std::string> m_errors;
    std::vector<uint32_t> m_sourceWidths;
    std::vector<KCDataDoc *> m_destDocs;
    KCShuffleBufferInitData m_init;
};
