#pragma once

#include "view/KCEditPatternState.h"

#include <cstdint>
#include <functional>

class KCClipboardPort;

// One linked pattern field without a window: its caret in character columns (negative
// columns lie before the base offset), the array index and digit under it, and the editing
// every field shares. Subclasses map columns to indices and type their own characters. A
// field joins the state's chain while it lives.
class KCEditFieldModel
{
public:
    enum Key { KeyLeft, KeyRight, KeyHome, KeyEnd, KeyBackspace, KeyDelete, KeyInsert };
    // Digit numbering: 1 = high nibble or first digit, 2 = low nibble or second digit.
    enum : int { FirstDigit = 1, SecondDigit = 2 };

    explicit KCEditFieldModel(KCEditPatternState &state = KCEditPatternState::shared());
    virtual ~KCEditFieldModel();
    KCEditFieldModel(const KCEditFieldModel &) = delete;
    KCEditFieldModel &operator=(const KCEditFieldModel &) = delete;

    KCEditPatternState &state() const { return m_state; }
    KCEditFieldModel *nextField() const { return m_next; }
    // What repainting this field means to its window.
    void setRepaint(std::function<void()> repaint) { m_repaint = std::move(repaint); }
    void invalidate() { if (m_repaint) m_repaint(); }

    virtual int columnsPerByte() const = 0;
    // Array index and digit shown at caret column p (the base offset applied).
    virtual int64_t indexOfColumn(int p) const = 0;
    virtual int digitOfColumn(int p) const = 0;
    // The column showing an index's first digit.
    virtual int columnOfIndex(int64_t index) const = 0;
    // Whether the caret may stand at column p: on a byte, or on the first digit of the
    // place after the last where the next byte is typed.
    virtual bool isValidColumn(int p) const;

    int caretColumn() const { return m_caret; }
    void setCaretColumn(int p) { m_caret = p; }
    int64_t caretIndex() const { return indexOfColumn(m_caret); }
    int caretDigit() const { return digitOfColumn(m_caret); }

    // Typing: true when the bytes changed.
    virtual bool OnChar(unsigned ch) = 0;
    // Caret keys (Shift extends the mark), deletion and the insert switch; true when handled.
    bool OnKeyDown(Key key, bool shift = false);
    // Moves the caret back to the first digit of the byte (or word) it stands on.
    virtual void moveToUnitStart();

    // A click at column p: the caret goes to the unit's start there and the mark is dropped;
    // dragging to column q marks from the click's index up to q's.
    bool clickAt(int p);
    void dragTo(int p);

    // Clipboard ("KrlBinary"): the marked bytes; cut removes them. Paste puts the clipboard's
    // bytes at the caret, inserted or over the bytes there as the insert switch says,
    // growing the pattern as needed; the pasted bytes end marked and the caret after them.
    uint64_t copy(KCClipboardPort &clipboard) const;
    uint64_t cut(KCClipboardPort &clipboard);
    uint64_t paste(KCClipboardPort &clipboard);
    bool undo();

    // Context menu: Undo only with an undo copy; Cut and Copy are refused only for a mark
    // without a start but with a length (no mark at all leaves them on, doing nothing).
    bool canUndo() const { return m_state.hasUndo(); }
    bool canCutCopy() const { return !(m_state.markStart() < 0 && m_state.markLength() != 0); }

    // Shifts the shared base offset so the caret lies within `columns` visible columns.
    void ensureCaretVisible(int columns);

protected:
    // Hex digit entry shared by the byte and word fields: at the place after the last byte a
    // digit appends a byte (0xD0); in insert mode a first digit inserts one before the byte;
    // otherwise it replaces the nibble under the caret. The caret moves one column right.
    bool typeHexDigit(unsigned ch);
    // The caret one valid column to the right or left; false when there is none.
    bool stepCaret(int direction);
    void changed();

private:
    bool removeMarked();
    void markToCaret(int64_t anchor);

    friend class KCEditPatternState;
    KCEditPatternState &m_state;
    KCEditFieldModel *m_next = nullptr;
    std::function<void()> m_repaint;
    int m_caret = 0;
    int64_t m_anchor = -1;
};
