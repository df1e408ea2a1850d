#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class KCDataDoc;
class KCDocBase;

// The rules of the split dialog, apart from its widgets: the width lists, the range it starts
// with, and what OK does: one new buffer document per lane.
class KCSplitBufferModel
{
public:
    enum Result { Done, Failed, Refused };

    // `active` is the active document of the dialog's frame; `newDocument` makes a new buffer
    // document there (null when it cannot).
    KCSplitBufferModel(KCDocBase *active, std::function<KCDataDoc *()> newDocument);
    bool isValid() const { return m_errors.empty(); }
    const std::vector<std::string> &errors() const { return m_errors; }
    void showErrors() const;

    // Wide widths, and the narrow ones for a wide width: w/2, w/4, ... down to 8.
    static std::vector<uint32_t> SourceWidths();
    static std::vector<uint32_t> DestWidths(uint32_t sourceWidth);
    // The source's data in whole 64-bit units, the range every width pair can split.
    uint64_t first() const { return m_first; }
    uint64_t last() const { return m_last; }
    uint64_t maxAddress() const;

    // OK: lane 0 .. n-1 each into a new document, stopping at the first failure (the
    // documents made stay open); then the round trip and each lane's sum in the message window.
    Result apply(uint64_t first, uint64_t last, uint32_t sourceWidth, uint32_t destWidth);
    const std::vector<KCDataDoc *> &made() const { return m_made; }

private:
    KCDataDoc *m_source = nullptr;
    std::function<KCDataDoc *()> m_newDocument;
    std::vector<std::string> m_errors;
    std::vector<KCDataDoc *> m_made;
    uint64_t m_first = 0;
    uint64_t m_last = 0;
};
