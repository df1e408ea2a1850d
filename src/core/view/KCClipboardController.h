#pragma once

#include <cstdint>

class KCClipboardPort;
class KCDataViewModel;

// Cut, copy and paste of a data view: which bytes go out and where incoming bytes land. All
// changes go through the document's range writes, so one command is one undo step and the
// checksum, the data map and the modified state follow.
class KCClipboardController
{
public:
    KCClipboardController(KCDataViewModel &view, KCClipboardPort &clipboard) : m_view(view), m_clipboard(clipboard) {}

    // The marked bytes onto the clipboard; the count, 0 with nothing marked.
    uint64_t OnEditCopy(bool asText = false);
    // Copies, then closes the gap: the bytes above the mark move down and the top of the
    // block takes the fill byte. The block's length counts as though it began at 0.
    uint64_t OnEditCut();
    // The clipboard's bytes at the caret, inserted (the tail moves up, bytes pushed past the
    // block's end are lost) or over the bytes there; cut at the block's room. The pasted range
    // ends marked. Returns the bytes written.
    uint64_t OnEditPaste(bool insert);
    // Paste is offered while the clipboard holds one of the formats; copy and cut always.
    bool OnEditPasteUI() const;

private:
    // The caret's block length less one: its last address as though it began at 0; -1 without a caret.
    int64_t blockLast() const;

    KCDataViewModel &m_view;
    KCClipboardPort &m_clipboard;
};
