#pragma once

#include "serial/TAG_SERIAL_JOURNAL_EVENT.h"

#include <set>
#include <string>
#include <vector>

class KCSerialJournal;

// What a journal says when read in order: which numbers are out at a station without a
// result, which were handed out twice, and which failed devices gave back for reuse.
class cSerialJournalAudit
{
public:
    explicit cSerialJournalAudit(const std::vector<TAG_SERIAL_JOURNAL_EVENT> &events);

    // Takes that have no result yet, oldest first.
    const std::vector<TAG_SERIAL_JOURNAL_EVENT> &open() const { return m_open; }
    // A take of a number that was already out or used: the second take each.
    const std::vector<TAG_SERIAL_JOURNAL_EVENT> &repeats() const { return m_repeats; }
    // Numbers given back, the one to hand out next first; each with the bytes of its take.
    const std::vector<TAG_SERIAL_JOURNAL_EVENT> &reuseList() const { return m_reuse; }
    bool isOpen(const std::string &key) const;
    // Before a take, under the file's lock: an open take of `next` (the number or row the file
    // would hand out now) is one the file never moved past, and is marked abandoned. With
    // `reclaim`, takes held by stations of this host whose process is gone are abandoned for
    // reuse and go to the front of reuseList(). False when the journal cannot be written.
    bool settleOpen(KCSerialJournal &journal, const std::string &next, bool reclaim);
    unsigned passed() const { return m_passed; }
    unsigned failed() const { return m_failed; }

private:
    std::vector<TAG_SERIAL_JOURNAL_EVENT> m_open;
    std::vector<TAG_SERIAL_JOURNAL_EVENT> m_repeats;
    std::vector<TAG_SERIAL_JOURNAL_EVENT> m_reuse;
    unsigned m_passed = 0;
    unsigned m_failed = 0;
};
