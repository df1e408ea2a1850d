#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class KCDataDoc;

// The rules of the join dialog, the inverse of a split: lane documents picked in lane order
// become one new wide document.
class KCJoinLanesModel
{
public:
    enum Result { Done, Failed, Refused };

    // `docs` are the open buffer documents; `newDocument` makes a new one (null when it cannot).
    KCJoinLanesModel(std::vector<KCDataDoc *> docs, std::function<KCDataDoc *()> newDocument);
    std::vector<std::string> titles() const;

    static std::vector<uint32_t> NarrowWidths() { return {8, 16, 32}; }
    // 2w, 4w, ... up to 64.
    static std::vector<uint32_t> WideWidths(uint32_t narrowBits);
    // The document each lane starts with: the first document named after that lane, else the
    // lane's place in the list.
    std::vector<int> defaultPicks(uint32_t narrowBits, uint32_t wideBits) const;

    // OK: picks[l] is the index of lane l's document. The new document is named after lane 0's
    // without its lane ("image.hex [joined]"); its range and sum go to the message window.
    Result apply(uint32_t narrowBits, uint32_t wideBits, const std::vector<int> &picks);
    KCDataDoc *joined() const { return m_joined; }

private:
    std::vector<KCDataDoc *> m_docs;
    std::function<KCDataDoc *()> m_newDocument;
    KCDataDoc *m_joined = nullptr;
};
