#pragma once

#include "doc/KCDataMap.h"

#include "view/KCDataViewCursor.h"
#include "view/TAG_VIEW_BUFFER_LAYOUT_ITEM.h"
#include "view/TAG_VIEW_POSITION.h"
#include "view/TAG_VIEW_ROW.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

class KCSearchHits;

// The two block lists of a layout: rows fixed at the top, rows that scroll.
enum LAYOUT_LIST : int { LAYOUT_TOP = 0, LAYOUT_BODY = 1 };

// One named layout: what stands where on the view's character grid, as blocks of rows of
// positioned cells, and the cursor the view keeps for it. The geometry knows nothing of the
// cursor; the cursor only rides along so that each layout brings its own back.
// Caret maths works on the body only; `limit` arguments are the buffer size, so addresses at
// or past it hold no cell. Lookups are binary searches: their cost does not grow with the
// buffer.
class KCDataViewLayout
{
public:
    // What the layout shows, so callers need not compare names.
    enum class Kind { Bytes, Words, Bits };

    KCDataViewLayout(std::string name, int scrollFlags, Kind kind = Kind::Bytes);

    const std::string &name() const { return m_name; }
    Kind kind() const { return m_kind; }
    int scrollFlags() const { return m_scrollFlags; }

    // Building blocks: begin a block, add its row template cell by cell, finish it into a list.
    void beginBlock(int64_t first, int64_t last, int bytesPerRow);
    void beginTextBlock();
    void addHexCell(int x, int step, int flags);
    void addCharCell(int x, int step, int flags);
    void addBitCell(int x, int step, int flags);
    void addAddressCell(int x, int digits, int32_t displayOffset, bool decimal = false, float scale = 1.0f);
    void addColumnNumberCell(int x, int width, int number);
    void addTextCell(int x, const std::string &text);
    void addCursorAdjust(int amount);
    void finishBlock(LAYOUT_LIST list);
    // Finishes a block still under construction into the body.
    void close();

    const std::vector<TAG_VIEW_BUFFER_LAYOUT_ITEM> &blocks(LAYOUT_LIST list) const
    {
        return list == LAYOUT_TOP ? m_top : m_body;
    }
    int64_t lineCount(LAYOUT_LIST list) const;
    int widestRow() const { return m_widestRow; }

    // The block holding `line` of `list`, -1 when none.
    int findBlock(LAYOUT_LIST list, int64_t line) const;
    // Fills `row` with the texts and states of `line`; bytes come from data[0..size).
    // Addresses in `modified` are shown as modified unless they are marked; with `defined`
    // given, addresses outside it are shown as gaps; bytes of `hits` as hits, unless marked.
    void renderRow(LAYOUT_LIST list, int64_t line, const uint8_t *data, uint64_t size, int64_t markLow,
                   int64_t markHigh, TAG_VIEW_ROW &row, const KCDataMap *modified = nullptr,
                   const KCDataMap *defined = nullptr, const KCSearchHits *hits = nullptr) const;

    void setTextMetrics(int charWidth, int linePitch);
    int charWidth() const { return m_charWidth; }
    int linePitch() const { return m_linePitch; }

    // Caret maths.
    bool isUsable(int block, int64_t lineInBlock, int cell, uint64_t limit) const;
    TAG_VIEW_POSITION makePosition(int block, int64_t lineInBlock, int cell, int column) const;
    TAG_VIEW_POSITION firstPosition(uint64_t limit) const;
    // The caret stop under body line `line` and `column`; invalid when there is none.
    TAG_VIEW_POSITION positionAt(int64_t line, int column, uint64_t limit) const;
    // Neighbours of a position; `from` itself when there is none. `wholeCell` steps over
    // a cell's characters at once.
    TAG_VIEW_POSITION stepRight(const TAG_VIEW_POSITION &from, bool wholeCell, uint64_t limit) const;
    TAG_VIEW_POSITION stepLeft(const TAG_VIEW_POSITION &from, bool wholeCell, uint64_t limit) const;
    TAG_VIEW_POSITION stepLine(const TAG_VIEW_POSITION &from, int direction, uint64_t limit) const;
    // `pos` if it is still a usable place, else the nearest one that is (invalid when none).
    TAG_VIEW_POSITION validated(const TAG_VIEW_POSITION &pos, uint64_t limit) const;
    // The first caret stop showing buffer address `address`; invalid when none.
    TAG_VIEW_POSITION positionOfAddress(int64_t address, uint64_t limit) const;
    const TAG_X_LAYOUT *cellAt(const TAG_VIEW_POSITION &pos) const;
    bool isGroupStart(const TAG_VIEW_POSITION &pos) const;

    KCDataViewCursor &cursor() { return m_cursor; }
    const KCDataViewCursor &cursor() const { return m_cursor; }
    // Takes over the cursor and metrics of `other`, e.g. when a layout is rebuilt over a new
    // range; positions are for the caller to revalidate.
    void takeViewState(const KCDataViewLayout &other);

private:
    void addCell(TAG_X_LAYOUT cell);
    void addDataCell(int kind, int x, int width, int step, int flags);
    int64_t usableRows(int block, uint64_t limit) const;
    bool rowHasStop(int block, int64_t lineInBlock, uint64_t limit) const;
    bool nextUsableRow(int &block, int64_t &lineInBlock, int direction, uint64_t limit) const;
    int usableCell(int block, int64_t lineInBlock, int from, int direction, uint64_t limit) const;
    int nearestCell(int block, int64_t lineInBlock, int column, int kind, uint64_t limit) const;

    std::string m_name;
    int m_scrollFlags;
    Kind m_kind;
    std::vector<TAG_VIEW_BUFFER_LAYOUT_ITEM> m_top;
    std::vector<TAG_VIEW_BUFFER_LAYOUT_ITEM> m_body;
    TAG_VIEW_BUFFER_LAYOUT_ITEM m_building;
    bool m_isBuilding = false;
    int m_rowCursor = 0;
    int m_widestRow = 0;
    int m_charWidth = 0;
    int m_linePitch = 0;

    KCDataViewCursor m_cursor;
};
