#include "view/KCNavigationController.h"

#include "doc/KCDataDoc.h"
#include "view/KCDataViewListener.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

// Tab and Shift+Tab give up after travelling this many lines without finding a group start.
constexpr int64_t TabSearchLines = 10;

bool isArrow(KCDataViewModel::Key key)
{
    return key == KCDataViewModel::KeyLeft || key == KCDataViewModel::KeyRight || key == KCDataViewModel::KeyUp ||
           key == KCDataViewModel::KeyDown;
}

} // namespace

bool KCNavigationController::handleKey(KCDataViewModel::Key key, unsigned modifiers)
{
    KCDataViewLayout *l = m_view.GetBufferLayoutView();
    if (!l)
        return false;
    KCDataViewCursor &cursor = l->cursor();
    const uint64_t limit = m_view.bufferLimit();
    if (!cursor.caret().isValid())
        cursor.setCaret(l->firstPosition(limit));
    if (!cursor.caret().isValid())
        return true;
    const bool shift = modifiers & KCDataViewModel::ShiftModifier;
    if (shift && isArrow(key)) {
        extendMark(key);
        return true;
    }
    const bool control = modifiers & KCDataViewModel::ControlModifier;
    if (key == KCDataViewModel::KeyHome || key == KCDataViewModel::KeyEnd ||
        (control && (key == KCDataViewModel::KeyUp || key == KCDataViewModel::KeyDown))) {
        m_view.dropMark();
        jump(key, control);
        return true;
    }
    const TAG_VIEW_POSITION c = cursor.caret();
    switch (key) {
    case KCDataViewModel::KeyLeft:
    case KCDataViewModel::KeyBackspace: m_view.dropMark(); m_view.moveCaret(l->stepLeft(c, false, limit)); break;
    case KCDataViewModel::KeyRight: m_view.dropMark(); m_view.moveCaret(l->stepRight(c, false, limit)); break;
    case KCDataViewModel::KeyUp: m_view.dropMark(); m_view.moveCaret(l->stepLine(c, -1, limit)); break;
    case KCDataViewModel::KeyDown: m_view.dropMark(); m_view.moveCaret(l->stepLine(c, 1, limit)); break;
    case KCDataViewModel::KeyPageUp: m_view.dropMark(); m_view.scrollPages(-1); break;
    case KCDataViewModel::KeyPageDown: m_view.dropMark(); m_view.scrollPages(1); break;
    case KCDataViewModel::KeyTab: m_view.dropMark(); tabSearch(!shift); break;
    default: return false;
    }
    return true;
}

bool KCNavigationController::tabSearch(bool forward)
{
    const KCDataViewLayout *l = m_view.GetBufferLayoutView();
    const uint64_t limit = m_view.bufferLimit();
    const TAG_VIEW_POSITION start = l->cursor().caret();
    TAG_VIEW_POSITION pos = start;
    for (;;) {
        const TAG_VIEW_POSITION next = forward ? l->stepRight(pos, false, limit) : l->stepLeft(pos, false, limit);
        if (next == pos || std::llabs(next.line - start.line) > TabSearchLines)
            return false;
        pos = next;
        if (l->isGroupStart(pos)) {
            m_view.moveCaret(pos);
            return true;
        }
    }
}

void KCNavigationController::extendMark(KCDataViewModel::Key key)
{
    KCDataViewLayout *l = m_view.GetBufferLayoutView();
    KCDataViewCursor &cursor = l->cursor();
    const uint64_t limit = m_view.bufferLimit();
    if (!cursor.isMarked())
        cursor.setMark(cursor.caret(), cursor.caret(), MARKSTATE_MARKED);
    const TAG_VIEW_POSITION end = cursor.markEnd();
    TAG_VIEW_POSITION to = end;
    switch (key) {
    case KCDataViewModel::KeyLeft: to = l->stepLeft(end, true, limit); break;
    case KCDataViewModel::KeyRight: to = l->stepRight(end, true, limit); break;
    case KCDataViewModel::KeyUp: to = l->stepLine(end, -1, limit); break;
    default: to = l->stepLine(end, 1, limit); break;
    }
    cursor.setMarkEnd(to);
    m_view.moveCaret(to);
    m_view.notify(KCDataViewListener::ChangedRows);
}

bool KCNavigationController::jump(KCDataViewModel::Key key, bool control)
{
    const KCDataViewLayout *l = m_view.GetBufferLayoutView();
    const KCDataDoc *doc = m_view.document();
    const uint64_t limit = m_view.bufferLimit();
    if (!l || limit == 0 || !doc)
        return false;
    const TAG_VIEW_POSITION c = l->cursor().caret();
    const int64_t at = c.address;
    int64_t to = at;
    if (key == KCDataViewModel::KeyHome || key == KCDataViewModel::KeyEnd) {
        const bool home = key == KCDataViewModel::KeyHome;
        const TAG_VIEW_BUFFER_LAYOUT_ITEM &blk = l->blocks(LAYOUT_BODY)[size_t(c.block)];
        const int64_t rowStart = blk.bytesPerRow ? at - (at - blk.firstAddress) % blk.bytesPerRow : at;
        if (control)
            to = home ? 0 : int64_t(limit) - 1;
        else
            to = home ? rowStart : std::min<int64_t>(rowStart + blk.bytesPerRow - 1, int64_t(limit) - 1);
    } else {
        // The next or previous block of data: the start of a range of the image's data map.
        const std::vector<KCAddressRange> ranges = doc->dataMap().ranges();
        if (key == KCDataViewModel::KeyDown) {
            const auto next = std::find_if(ranges.begin(), ranges.end(),
                                           [at](const KCAddressRange &r) { return int64_t(r.first) > at; });
            if (next != ranges.end())
                to = int64_t(next->first);
        } else {
            const auto prev = std::find_if(ranges.rbegin(), ranges.rend(),
                                           [at](const KCAddressRange &r) { return int64_t(r.first) < at; });
            if (prev != ranges.rend())
                to = int64_t(prev->first);
        }
    }
    return to != at && m_view.setCaretAddress(to);
}

bool KCNavigationController::goToDisplayAddress(uint64_t displayAddress)
{
    const KCDataViewLayout *l = m_view.GetBufferLayoutView();
    if (!l)
        return false;
    int64_t address = int64_t(displayAddress);
    if (l->kind() == KCDataViewLayout::Kind::Words) {
        address = int64_t(displayAddress) * 2;
    } else {
        // Undo what the address column does: its scale and its display offset.
        for (const TAG_VIEW_BUFFER_LAYOUT_ITEM &blk : l->blocks(LAYOUT_BODY)) {
            const auto cell = std::find_if(blk.cells.begin(), blk.cells.end(), [](const TAG_X_LAYOUT &c) {
                return c.kind == XL_ADDRESS_HEX || c.kind == XL_ADDRESS_DEC;
            });
            if (cell == blk.cells.end())
                continue;
            const int64_t shifted = int64_t(displayAddress) - cell->displayOffset;
            address = cell->scale == 1.0f ? shifted : int64_t(double(shifted) / double(cell->scale));
            break;
        }
    }
    if (address < 0 || uint64_t(address) >= m_view.bufferLimit())
        return false;
    m_view.dropMark();
    return m_view.setCaretAddress(address);
}
