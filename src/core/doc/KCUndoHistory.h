#pragma once

#include "doc/KCDataMap.h"

#include <cstdint>
#include <string>
#include <vector>

// The document's undo and redo: each step holds, per changed range, the bytes that were
// there before, and the data map before. Undoing a step swaps those bytes with the buffer's,
// so the same record then redoes it; no byte is kept twice.
class KCUndoHistory
{
public:
    struct Change
    {
        uint64_t address = 0;
        std::vector<uint8_t> bytes; // the bytes the buffer does not hold now
    };
    struct Step
    {
        std::string name;
        std::vector<Change> changes;
        KCDataMap map; // the data map the buffer does not hold now
        uint64_t bytes() const;
    };

    static constexpr uint64_t DefaultBudget = uint64_t(256) << 20;

    // A budget of 0 turns the history off: nothing is kept and nothing is asked. Turning it
    // off forgets what was kept; a smaller budget drops the oldest steps at the next change.
    void setBudget(uint64_t bytes);
    uint64_t budget() const { return m_budget; }
    bool isEnabled() const { return m_budget != 0; }
    // Whether the open step (or a new one) can take `bytes` more old bytes.
    bool fits(uint64_t bytes) const;

    // Steps nest: changes between the outermost open and close are one step.
    void open(const std::string &name, const KCDataMap &mapBefore);
    void record(uint64_t address, const uint8_t *before, uint64_t count);
    void close();
    bool isOpen() const { return m_depth > 0; }

    // Forgets everything: after a load (the buffer then matches its file), or after a change
    // too large to keep (it does not).
    void clear(bool atSaved = true);
    bool canUndo() const { return !m_done.empty() && !isOpen(); }
    bool canRedo() const { return !m_undone.empty() && !isOpen(); }
    const std::string &undoName() const { return m_done.back().name; }
    const std::string &redoName() const { return m_undone.back().name; }
    Step &nextUndo() { return m_done.back(); }
    Step &nextRedo() { return m_undone.back(); }
    void undone() { m_undone.push_back(std::move(m_done.back())), m_done.pop_back(); }
    void redone() { m_done.push_back(std::move(m_undone.back())), m_undone.pop_back(); }

    // The buffer matches its file at the current position; false once that state is lost.
    void markSaved() { m_saved = int64_t(m_done.size()); }
    bool isAtSaved() const { return m_saved == int64_t(m_done.size()); }

private:
    uint64_t m_budget = DefaultBudget;
    std::vector<Step> m_done;
    std::vector<Step> m_undone;
    Step m_open;
    int m_depth = 0;
    int64_t m_saved = 0; // number of done steps when saved; -1: never again reachable
};
