#pragma once

#include <cstdint>
#include <vector>

class KCEditFieldModel;

// The one state that all linked pattern fields edit together: the bytes, the array index
// shown at the fields' first position, the mark, the insert/overwrite switch, an undo copy,
// and the chain of live fields that are repainted together after every change.
class KCEditPatternState
{
public:
    // The process-wide state the dialog's fields share.
    static KCEditPatternState &shared();

    KCEditPatternState() = default;
    KCEditPatternState(const KCEditPatternState &) = delete;
    KCEditPatternState &operator=(const KCEditPatternState &) = delete;

    const std::vector<uint8_t> &bytes() const { return m_bytes; }
    int64_t size() const { return static_cast<int64_t>(m_bytes.size()); }
    // Replaces the bytes as one undoable change (the dialog's restore, a field's own edit).
    void setBytes(const std::vector<uint8_t> &bytes);
    // Takes the undo copy; every change below is preceded by one.
    void takeUndoCopy();
    std::vector<uint8_t> &editBytes() { return m_bytes; }

    int64_t baseOffset() const { return m_base; }
    void setBaseOffset(int64_t base) { m_base = base < 0 ? 0 : base; }

    // The mark: a start (-1 = none) and a signed length; a negative length marks the bytes
    // from start + length to start - 1.
    int64_t markStart() const { return m_markStart; }
    int64_t markLength() const { return m_markLength; }
    void setMark(int64_t start, int64_t length);
    void clearMark() { setMark(-1, 0); }
    // The marked indices low..high inclusive, cut to the array; false with none.
    bool markRange(int64_t &low, int64_t &high) const;
    bool isMarked(int64_t index) const;

    bool isInsertMode() const { return m_insert; }
    void setInsertMode(bool on) { m_insert = on; }

    bool hasUndo() const { return m_hasUndo; }
    // Restores the undo copy; the bytes it replaced become the undo copy, so a second undo
    // takes the change back again.
    bool undo();
    void clearUndo();

    // The chain of live fields: construction links, destruction unlinks.
    void link(KCEditFieldModel *field);
    void unlink(KCEditFieldModel *field);
    KCEditFieldModel *firstField() const { return m_first; }
    // Invalidates every live field.
    void repaintAll();

private:
    std::vector<uint8_t> m_bytes;
    int64_t m_base = 0;
    int64_t m_markStart = -1;
    int64_t m_markLength = 0;
    bool m_insert = true;
    std::vector<uint8_t> m_undo;
    bool m_hasUndo = false;
    KCEditFieldModel *m_first = nullptr;
};
