#include "view/KCClipboardController.h"

#include "doc/KCDataDoc.h"
#include "host/KCMainProgDataExChange.h"
#include "view/KCClipboardPort.h"
#include "view/KCDataViewModel.h"

#include <vector>

int64_t KCClipboardController::blockLast() const
{
    const KCDataViewLayout *layout = m_view.GetBufferLayoutView();
    const TAG_VIEW_POSITION caret = m_view.caret();
    if (!layout || !caret.isValid() || caret.block < 0
        || size_t(caret.block) >= layout->blocks(LAYOUT_BODY).size())
        return -1;
    const TAG_VIEW_BUFFER_LAYOUT_ITEM &block = layout->blocks(LAYOUT_BODY)[size_t(caret.block)];
    return block.lastAddress - block.firstAddress;
}

uint64_t KCClipboardController::OnEditCopy(bool asText)
{
    KCDataDoc *doc = m_view.document();
    int64_t low = 0, high = 0;
    if (!doc || !m_view.markRange(low, high) || low < 0 || high < low || uint64_t(high) >= doc->GetBufferSize())
        return 0;
    // Bytes in gaps of a sparse image are what the image holds there: the fill byte.
    doc->materializeGaps(uint64_t(low), uint64_t(high));
    const uint8_t *data = doc->AlgoParam().buffer(0).data();
    const uint64_t count = uint64_t(high - low) + 1;
    return m_clipboard.put(data + low, count, asText ? 1 : 0) ? count : 0;
}

uint64_t KCClipboardController::OnEditCut()
{
    KCDataDoc *doc = m_view.document();
    int64_t low = 0, high = 0;
    if (!doc || !m_view.markRange(low, high))
        return 0;
    const uint64_t copied = OnEditCopy();
    if (copied == 0)
        return 0;
    const int64_t last = blockLast();
    int64_t n = int64_t(copied);
    if (low < last && uint64_t(last) < doc->GetBufferSize()) {
        if (low + n > last)
            n = last - low;
        doc->beginAction("Cut");
        const uint8_t *data = doc->AlgoParam().buffer(0).data();
        if (last - (low + n) + 1 > 0)
            doc->WriteRange(uint64_t(low), data + low + n, uint64_t(last - (low + n) + 1));
        if (n > 0)
            doc->FillRange(uint64_t(last - n + 1), uint64_t(last), doc->host()->GetFillByte());
        doc->endAction();
    }
    m_view.dropMark();
    m_view.setCaretAddress(low);
    return copied;
}

uint64_t KCClipboardController::OnEditPaste(bool insert)
{
    KCDataDoc *doc = m_view.document();
    std::vector<uint8_t> bytes;
    m_clipboard.get(bytes);
    const TAG_VIEW_POSITION caret = m_view.caret();
    const int64_t last = blockLast();
    if (!doc || !caret.isValid() || last < 0 || bytes.empty())
        return 0;
    const int64_t at = caret.address;
    const int64_t room = last + 1 - at;
    int64_t n = int64_t(bytes.size());
    const bool fits = n <= room;
    if (!fits)
        n = room; // cut at the block's end, whatever the mode, and nothing moves
    if (n <= 0 || uint64_t(at + n) > doc->GetBufferSize())
        return 0;
    doc->beginAction("Paste");
    if (fits && insert && last - (at + n) + 1 > 0) {
        const uint8_t *data = doc->AlgoParam().buffer(0).data();
        doc->WriteRange(uint64_t(at + n), data + at, uint64_t(last - (at + n) + 1));
    }
    doc->WriteRange(uint64_t(at), bytes.data(), uint64_t(n));
    doc->endAction();
    m_view.setMarkRange(at, at + n - 1);
    return uint64_t(n);
}

bool KCClipboardController::OnEditPasteUI() const
{
    return m_clipboard.isEmpty() == 0;
}
