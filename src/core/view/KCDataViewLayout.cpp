#include "view/KCDataViewLayout.h"

#include "view/KCSearchHits.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

const char HexDigits[] = "0123456789ABCDEF";
constexpr int MaxNumberDigits = 24;

// Writes `value` right-aligned with at least `digits` digits into `out`, at most `room`
// characters, as the printf conversions "%0*X" and "%0*u" would.
void writeNumber(uint64_t value, unsigned base, int digits, char *out, int room)
{
    char buf[MaxNumberDigits];
    int n = 0;
    do {
        buf[n++] = HexDigits[value % base];
        value /= base;
    } while (value != 0 && n < MaxNumberDigits);
    digits = std::min(digits, MaxNumberDigits);
    while (n < digits)
        buf[n++] = '0';
    for (int i = 0; i < n && i < room; ++i)
        out[i] = buf[n - 1 - i];
}

} // namespace

KCDataViewLayout::KCDataViewLayout(std::string name, int scrollFlags, Kind kind)
    : m_name(std::move(name)), m_scrollFlags(scrollFlags), m_kind(kind)
{
}

void KCDataViewLayout::beginBlock(int64_t first, int64_t last, int bytesPerRow)
{
    m_building = TAG_VIEW_BUFFER_LAYOUT_ITEM();
    m_building.firstAddress = first;
    m_building.lastAddress = last;
    // A data block needs a positive row width; a zero would make it a text block.
    m_building.bytesPerRow = std::max(bytesPerRow, 1);
    m_rowCursor = 0;
    m_isBuilding = true;
}

void KCDataViewLayout::beginTextBlock()
{
    m_building = TAG_VIEW_BUFFER_LAYOUT_ITEM();
    m_building.firstAddress = -1;
    m_building.lastAddress = -1;
    m_rowCursor = 0;
    m_isBuilding = true;
}

void KCDataViewLayout::addCell(TAG_X_LAYOUT cell)
{
    if (!m_isBuilding)
        beginTextBlock();
    cell.byteOffset = m_rowCursor;
    m_rowCursor += cell.step;
    m_building.cells.push_back(std::move(cell));
}

void KCDataViewLayout::addDataCell(int kind, int x, int width, int step, int flags)
{
    TAG_X_LAYOUT c;
    c.kind = kind;
    c.x = x;
    c.width = width;
    c.step = step;
    c.flags = flags;
    addCell(std::move(c));
}

void KCDataViewLayout::addHexCell(int x, int step, int flags)
{
    addDataCell(XL_HEXBYTE, x, 2, step, flags);
}

void KCDataViewLayout::addCharCell(int x, int step, int flags)
{
    addDataCell(XL_CHAR, x, 1, step, flags);
}

void KCDataViewLayout::addBitCell(int x, int step, int flags)
{
    addDataCell(XL_BIT, x, 1, step, flags);
}

void KCDataViewLayout::addAddressCell(int x, int digits, int32_t displayOffset, bool decimal, float scale)
{
    TAG_X_LAYOUT c;
    c.kind = decimal ? XL_ADDRESS_DEC : XL_ADDRESS_HEX;
    c.x = x;
    c.width = digits;
    c.digits = digits;
    c.displayOffset = displayOffset;
    c.scale = scale;
    addCell(std::move(c));
}

void KCDataViewLayout::addColumnNumberCell(int x, int width, int number)
{
    TAG_X_LAYOUT c;
    c.kind = XL_COLUMN_NUMBER;
    c.x = x;
    c.width = width;
    c.displayOffset = number;
    addCell(std::move(c));
}

void KCDataViewLayout::addTextCell(int x, const std::string &text)
{
    TAG_X_LAYOUT c;
    c.kind = XL_TEXT;
    c.x = x;
    c.width = static_cast<int>(text.size());
    c.text = text;
    addCell(std::move(c));
}

void KCDataViewLayout::addCursorAdjust(int amount)
{
    TAG_X_LAYOUT c;
    c.kind = XL_CURSOR_ADJUST;
    c.step = amount;
    addCell(std::move(c));
}

void KCDataViewLayout::finishBlock(LAYOUT_LIST list)
{
    if (!m_isBuilding)
        return;
    TAG_VIEW_BUFFER_LAYOUT_ITEM &b = m_building;
    std::vector<TAG_VIEW_BUFFER_LAYOUT_ITEM> &target = list == LAYOUT_TOP ? m_top : m_body;
    int64_t lines = 1;
    if (!b.isText())
        lines = b.lastAddress < b.firstAddress ? 0 : (b.lastAddress - b.firstAddress) / b.bytesPerRow + 1;
    b.firstLine = lineCount(list);
    b.lastLine = b.firstLine + lines - 1;
    b.firstStopOffset = INT_MAX;
    for (const TAG_X_LAYOUT &c : b.cells) {
        m_widestRow = std::max(m_widestRow, c.x + c.width);
        if (c.isCaretStop() && !b.isText()) {
            b.hasCaretStops = true;
            b.firstStopOffset = std::min(b.firstStopOffset, c.byteOffset);
        }
    }
    if (!b.hasCaretStops)
        b.firstStopOffset = 0;
    target.push_back(std::move(b));
    m_building = TAG_VIEW_BUFFER_LAYOUT_ITEM();
    m_isBuilding = false;
}

void KCDataViewLayout::close()
{
    finishBlock(LAYOUT_BODY);
}

int64_t KCDataViewLayout::lineCount(LAYOUT_LIST list) const
{
    const auto &l = blocks(list);
    return l.empty() ? 0 : l.back().lastLine + 1;
}

int KCDataViewLayout::findBlock(LAYOUT_LIST list, int64_t line) const
{
    const auto &l = blocks(list);
    // Blocks are in line order; empty blocks end one line before they begin and never match.
    const auto it = std::lower_bound(l.begin(), l.end(), line,
                                     [](const TAG_VIEW_BUFFER_LAYOUT_ITEM &b, int64_t v) { return b.lastLine < v; });
    if (it == l.end() || line < it->firstLine)
        return -1;
    return static_cast<int>(it - l.begin());
}

void KCDataViewLayout::renderRow(LAYOUT_LIST list, int64_t line, const uint8_t *data, uint64_t size,
                                 int64_t markLow, int64_t markHigh, TAG_VIEW_ROW &row,
                                 const KCDataMap *modified, const KCDataMap *defined, const KCSearchHits *hits) const
{
    row.text.assign(static_cast<size_t>(m_widestRow), ' ');
    row.state.assign(static_cast<size_t>(m_widestRow), VCS_EMPTY);
    const int b = findBlock(list, line);
    row.present = b >= 0;
    if (b < 0)
        return;
    const TAG_VIEW_BUFFER_LAYOUT_ITEM &blk = blocks(list)[b];
    const int64_t rowAddr = blk.isText() ? 0 : blk.rowAddress(line - blk.firstLine);
    const int64_t lastShown = std::min<int64_t>(blk.lastAddress, static_cast<int64_t>(size) - 1);
    char *text = &row.text[0];
    uint8_t *state = row.state.data();
    // One search per row; cells look up their own address only when the row holds a modified byte.
    if (modified && !blk.isText()) {
        if (rowAddr < 0 || modified->rangesIn(uint64_t(rowAddr), uint64_t(rowAddr) + blk.bytesPerRow - 1).empty())
            modified = nullptr;
    }
    if (hits && !blk.isText() && (rowAddr < 0 || !hits->overlaps(uint64_t(rowAddr), uint64_t(rowAddr) + blk.bytesPerRow - 1)))
        hits = nullptr;
    // Likewise a row of data only, or of fill only, needs no look-up per cell.
    bool allGap = false;
    if (defined && !blk.isText() && rowAddr >= 0) {
        const uint64_t first = uint64_t(rowAddr), last = first + blk.bytesPerRow - 1;
        const std::vector<KCAddressRange> in = defined->rangesIn(first, last);
        allGap = in.empty();
        if (!allGap && in.size() == 1 && in[0].first == first && in[0].second == last)
            defined = nullptr;
    }

    for (const TAG_X_LAYOUT &c : blk.cells) {
        if (c.kind == XL_CURSOR_ADJUST || c.x < 0 || c.x >= m_widestRow)
            continue;
        char *out = text + c.x;
        const int room = m_widestRow - c.x;
        const int width = std::min(c.width, room);
        uint8_t cellState = VCS_TEXT;
        switch (c.kind) {
        case XL_HEXBYTE:
        case XL_CHAR:
        case XL_BIT: {
            const int64_t addr = rowAddr + c.byteOffset;
            if (blk.isText() || addr < blk.firstAddress || addr > lastShown)
                continue;
            const uint8_t v = data[addr];
            if (c.kind == XL_HEXBYTE) {
                out[0] = HexDigits[v >> 4];
                if (room > 1)
                    out[1] = HexDigits[v & 0xF];
            } else if (c.kind == XL_CHAR) {
                out[0] = static_cast<char>(v);
            } else {
                out[0] = static_cast<char>('0' + (v & 1));
            }
            if (addr >= markLow && addr <= markHigh)
                cellState = VCS_MARKED;
            else if (hits && hits->contains(uint64_t(addr)))
                cellState = VCS_HIT;
            else if (modified && modified->contains(uint64_t(addr)))
                cellState = VCS_MODIFIED;
            else if (defined && (allGap || !defined->contains(uint64_t(addr))))
                cellState = VCS_GAP;
            else
                cellState = VCS_DATA;
            break;
        }
        case XL_ADDRESS_HEX:
        case XL_ADDRESS_DEC: {
            const int64_t scaled = c.scale == 1.0f ? rowAddr : static_cast<int64_t>(double(rowAddr) * c.scale);
            const uint32_t value = static_cast<uint32_t>(scaled + c.displayOffset);
            writeNumber(value, c.kind == XL_ADDRESS_HEX ? 16 : 10, c.digits, out, room);
            break;
        }
        case XL_COLUMN_NUMBER:
            writeNumber(static_cast<uint32_t>(c.displayOffset), 16, c.width, out, room);
            break;
        default:
            std::memcpy(out, c.text.data(), static_cast<size_t>(width));
            break;
        }
        std::memset(state + c.x, cellState, static_cast<size_t>(std::max(width, 0)));
    }
}

void KCDataViewLayout::setTextMetrics(int charWidth, int linePitch)
{
    m_charWidth = charWidth;
    m_linePitch = linePitch;
}

bool KCDataViewLayout::isUsable(int block, int64_t lineInBlock, int cell, uint64_t limit) const
{
    if (block < 0 || block >= static_cast<int>(m_body.size()))
        return false;
    const TAG_VIEW_BUFFER_LAYOUT_ITEM &b = m_body[block];
    if (b.isText() || lineInBlock < 0 || lineInBlock >= b.lineCount() || cell < 0 ||
        cell >= static_cast<int>(b.cells.size()))
        return false;
    const TAG_X_LAYOUT &c = b.cells[cell];
    if (!c.isCaretStop())
        return false;
    const int64_t addr = b.rowAddress(lineInBlock) + c.byteOffset;
    return addr >= b.firstAddress && addr <= b.lastAddress && static_cast<uint64_t>(addr) < limit;
}

TAG_VIEW_POSITION KCDataViewLayout::makePosition(int block, int64_t lineInBlock, int cell, int column) const
{
    TAG_VIEW_POSITION p;
    if (block < 0 || block >= static_cast<int>(m_body.size()))
        return p;
    const TAG_VIEW_BUFFER_LAYOUT_ITEM &b = m_body[block];
    if (cell < 0 || cell >= static_cast<int>(b.cells.size()))
        return p;
    p.block = block;
    p.lineInBlock = lineInBlock;
    p.line = b.firstLine + lineInBlock;
    p.cell = cell;
    p.column = column;
    p.address = b.isText() ? -1 : b.rowAddress(lineInBlock) + b.cells[cell].byteOffset;
    return p;
}

int64_t KCDataViewLayout::usableRows(int block, uint64_t limit) const
{
    const TAG_VIEW_BUFFER_LAYOUT_ITEM &b = m_body[block];
    if (b.isText() || !b.hasCaretStops || limit == 0)
        return 0;
    const int64_t last = std::min<int64_t>(b.lastAddress, static_cast<int64_t>(limit - 1));
    const int64_t span = last - b.firstAddress - b.firstStopOffset;
    if (span < 0)
        return 0;
    return std::min<int64_t>(span / b.bytesPerRow + 1, b.lineCount());
}

bool KCDataViewLayout::rowHasStop(int block, int64_t lineInBlock, uint64_t limit) const
{
    return usableCell(block, lineInBlock, 0, 1, limit) >= 0;
}

int KCDataViewLayout::usableCell(int block, int64_t lineInBlock, int from, int direction, uint64_t limit) const
{
    const int n = static_cast<int>(m_body[block].cells.size());
    for (int c = from; c >= 0 && c < n; c += direction)
        if (isUsable(block, lineInBlock, c, limit))
            return c;
    return -1;
}

bool KCDataViewLayout::nextUsableRow(int &block, int64_t &lineInBlock, int direction, uint64_t limit) const
{
    const int n = static_cast<int>(m_body.size());
    int b = block;
    int64_t r = lineInBlock;
    int64_t rows = b >= 0 && b < n ? usableRows(b, limit) : 0;
    for (;;) {
        r += direction;
        if (direction < 0 && r >= rows)
            r = rows - 1;
        while (r < 0 || r >= rows) {
            b += direction;
            if (b < 0 || b >= n)
                return false;
            rows = usableRows(b, limit);
            r = direction > 0 ? 0 : rows - 1;
        }
        if (rowHasStop(b, r, limit)) {
            block = b;
            lineInBlock = r;
            return true;
        }
    }
}

int KCDataViewLayout::nearestCell(int block, int64_t lineInBlock, int column, int kind, uint64_t limit) const
{
    const auto &cells = m_body[block].cells;
    int best = -1;
    int bestDistance = INT_MAX;
    bool bestSameKind = false;
    for (int c = 0; c < static_cast<int>(cells.size()); ++c) {
        if (!isUsable(block, lineInBlock, c, limit))
            continue;
        // A cell of the kind the caret comes from wins over a nearer one of another kind.
        const bool sameKind = cells[c].kind == kind;
        if (bestSameKind && !sameKind)
            continue;
        if (sameKind && !bestSameKind)
            bestDistance = INT_MAX;
        const int lo = cells[c].x;
        const int hi = cells[c].x + cells[c].width - 1;
        const int d = column < lo ? lo - column : column > hi ? column - hi : 0;
        if (d < bestDistance) {
            best = c;
            bestDistance = d;
            bestSameKind = sameKind;
        }
    }
    return best;
}

TAG_VIEW_POSITION KCDataViewLayout::firstPosition(uint64_t limit) const
{
    int b = 0;
    int64_t r = -1;
    if (m_body.empty() || !nextUsableRow(b, r, 1, limit))
        return TAG_VIEW_POSITION();
    const int c = usableCell(b, r, 0, 1, limit);
    return makePosition(b, r, c, m_body[b].cells[c].x);
}

TAG_VIEW_POSITION KCDataViewLayout::positionAt(int64_t line, int column, uint64_t limit) const
{
    const int b = findBlock(LAYOUT_BODY, line);
    if (b < 0)
        return TAG_VIEW_POSITION();
    const int64_t r = line - m_body[b].firstLine;
    const auto &cells = m_body[b].cells;
    for (int c = 0; c < static_cast<int>(cells.size()); ++c)
        if (column >= cells[c].x && column < cells[c].x + cells[c].width && isUsable(b, r, c, limit))
            return makePosition(b, r, c, column);
    return TAG_VIEW_POSITION();
}

TAG_VIEW_POSITION KCDataViewLayout::stepRight(const TAG_VIEW_POSITION &from, bool wholeCell, uint64_t limit) const
{
    const TAG_X_LAYOUT *cell = cellAt(from);
    if (!cell)
        return from;
    if (!wholeCell && from.column + 1 < cell->x + cell->width) {
        TAG_VIEW_POSITION p = from;
        ++p.column;
        return p;
    }
    int b = from.block;
    int64_t r = from.lineInBlock;
    int c = usableCell(b, r, from.cell + 1, 1, limit);
    if (c < 0) {
        if (!nextUsableRow(b, r, 1, limit))
            return from;
        c = usableCell(b, r, 0, 1, limit);
    }
    return makePosition(b, r, c, m_body[b].cells[c].x);
}

TAG_VIEW_POSITION KCDataViewLayout::stepLeft(const TAG_VIEW_POSITION &from, bool wholeCell, uint64_t limit) const
{
    const TAG_X_LAYOUT *cell = cellAt(from);
    if (!cell)
        return from;
    if (!wholeCell && from.column > cell->x) {
        TAG_VIEW_POSITION p = from;
        --p.column;
        return p;
    }
    int b = from.block;
    int64_t r = from.lineInBlock;
    int c = usableCell(b, r, from.cell - 1, -1, limit);
    if (c < 0) {
        if (!nextUsableRow(b, r, -1, limit))
            return from;
        c = usableCell(b, r, static_cast<int>(m_body[b].cells.size()) - 1, -1, limit);
    }
    const TAG_X_LAYOUT &to = m_body[b].cells[c];
    return makePosition(b, r, c, wholeCell ? to.x : to.x + to.width - 1);
}

TAG_VIEW_POSITION KCDataViewLayout::stepLine(const TAG_VIEW_POSITION &from, int direction, uint64_t limit) const
{
    if (!cellAt(from))
        return from;
    int b = from.block;
    int64_t r = from.lineInBlock;
    if (!nextUsableRow(b, r, direction < 0 ? -1 : 1, limit))
        return from;
    const int c = nearestCell(b, r, from.column, cellAt(from)->kind, limit);
    const TAG_X_LAYOUT &to = m_body[b].cells[c];
    const bool inside = from.column >= to.x && from.column < to.x + to.width;
    return makePosition(b, r, c, inside ? from.column : to.x);
}

TAG_VIEW_POSITION KCDataViewLayout::validated(const TAG_VIEW_POSITION &pos, uint64_t limit) const
{
    if (isUsable(pos.block, pos.lineInBlock, pos.cell, limit)) {
        const TAG_X_LAYOUT &c = m_body[pos.block].cells[pos.cell];
        const int column = pos.column >= c.x && pos.column < c.x + c.width ? pos.column : c.x;
        return makePosition(pos.block, pos.lineInBlock, pos.cell, column);
    }
    if (pos.block >= 0 && pos.block < static_cast<int>(m_body.size())) {
        // Past the usable end of its block (the buffer shrank): the last usable row before it.
        int b = pos.block;
        int64_t r = std::max<int64_t>(pos.lineInBlock, 0) + 1;
        if (nextUsableRow(b, r, -1, limit)) {
            const TAG_X_LAYOUT *was = cellAt(pos);
            const int c = nearestCell(b, r, pos.column, was ? was->kind : XL_HEXBYTE, limit);
            return makePosition(b, r, c, m_body[b].cells[c].x);
        }
    }
    return firstPosition(limit);
}

const TAG_X_LAYOUT *KCDataViewLayout::cellAt(const TAG_VIEW_POSITION &pos) const
{
    if (pos.block < 0 || pos.block >= static_cast<int>(m_body.size()))
        return nullptr;
    const auto &cells = m_body[pos.block].cells;
    if (pos.cell < 0 || pos.cell >= static_cast<int>(cells.size()))
        return nullptr;
    return &cells[pos.cell];
}

bool KCDataViewLayout::isGroupStart(const TAG_VIEW_POSITION &pos) const
{
    const TAG_X_LAYOUT *c = cellAt(pos);
    return c && (c->flags & XLF_GROUP_FIRST) && pos.column == c->x;
}

void KCDataViewLayout::takeViewState(const KCDataViewLayout &other)
{
    m_cursor = other.m_cursor;
    m_charWidth = other.m_charWidth;
    m_linePitch = other.m_linePitch;
}

TAG_VIEW_POSITION KCDataViewLayout::positionOfAddress(int64_t address, uint64_t limit) const
{
    for (int b = 0; b < static_cast<int>(m_body.size()); ++b) {
        const TAG_VIEW_BUFFER_LAYOUT_ITEM &blk = m_body[b];
        if (blk.isText() || address < blk.firstAddress || address > blk.lastAddress)
            continue;
        const int64_t r = (address - blk.firstAddress) / blk.bytesPerRow;
        const int offset = static_cast<int>((address - blk.firstAddress) % blk.bytesPerRow);
        for (int c = 0; c < static_cast<int>(blk.cells.size()); ++c)
            if (blk.cells[c].byteOffset == offset && isUsable(b, r, c, limit))
                return makePosition(b, r, c, blk.cells[c].x);
    }
    return TAG_VIEW_POSITION();
}
