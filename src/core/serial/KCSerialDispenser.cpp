#include "serial/KCSerialDispenser.h"

#include "serial/cSerialJournalAudit.h"

#include <cstdio>

namespace {

using Event = TAG_SERIAL_JOURNAL_EVENT;
const char *const DiscardName = "discard";
const char *const ReuseName = "reuse";

} // namespace

KCSerialDispenser::KCSerialDispenser(KCMainProgDataExChange *host, const std::string &defFile, unsigned flags,
                                     int block)
    : m_ctrl(host, defFile), m_journal(KCSerialJournal::pathFor(defFile)), m_flags(flags), m_block(block)
{
}

bool KCSerialDispenser::parsePolicy(const std::string &text, Policy *policy)
{
    if (text == DiscardName)
        *policy = Discard;
    else if (text == ReuseName)
        *policy = Reuse;
    else
        return false;
    return true;
}

const char *KCSerialDispenser::policyName(Policy policy)
{
    return policy == Reuse ? ReuseName : DiscardName;
}

KCSerialDispenser::Policy KCSerialDispenser::policyOf(unsigned flags)
{
    return flags & KCSerialDefCtrl::FlagReuseFailed ? Reuse : Discard;
}

bool KCSerialDispenser::seriesNext(std::string *key, std::string *bytes, bool advance)
{
    const TAG_SERIAL_NUMBER block = m_ctrl.GetSerialBlock(m_block);
    unsigned flags = m_flags, length = 0, value = 0;
    if (!m_ctrl.SERIAL_GetNextSerialNumber(m_block, &flags, &length, &value, nullptr, bytes, advance ? 1 : 0, 0))
        return false;
    char text[48];
    if (block.type == TAG_SERIAL_NUMBER::TypeList)
        std::snprintf(text, sizeof text, "%d:#%u", m_block,
                      static_cast<unsigned>(block.nextIndex % (block.elements.empty() ? 1 : block.elements.size())));
    else
        std::snprintf(text, sizeof text, "%d:0x%08X", m_block, value);
    *key = text;
    return true;
}

int KCSerialDispenser::takeLocked(std::string *key, std::string *bytes, bool *writeBack)
{
    std::vector<Event> events;
    if (!m_journal.read(&events)) {
        m_error = m_journal.error();
        return 0;
    }
    cSerialJournalAudit audit(events);
    std::string nextKey, nextBytes;
    if (!seriesNext(&nextKey, &nextBytes, false)) {
        m_error = "no serial number can be had from block " + std::to_string(m_block) + " of "
            + *m_ctrl.FILE_GetSerialFileName();
        return 0;
    }
    if (!audit.settleOpen(m_journal, nextKey, m_policy == Reuse)) {
        m_error = m_journal.error();
        return 0;
    }
    const std::vector<Event> &reuse = audit.reuseList();
    if (!reuse.empty()) {
        *key = reuse.front().key;
        *bytes = KCSerialJournal::fromHex(reuse.front().detail);
        *writeBack = false;
    } else {
        if (!seriesNext(key, bytes, true))
            return 0;
        *writeBack = true;
    }
    if (!m_journal.append(Event::Take, *key, KCSerialJournal::toHex(*bytes))) {
        m_error = m_journal.error();
        return 0;
    }
    return 1;
}

bool KCSerialDispenser::take(std::string *key, std::string *bytes)
{
    m_error.clear();
    const int ok = m_ctrl.FILE_ConsumeLocked([&](bool *writeBack) { return takeLocked(key, bytes, writeBack); });
    if (!ok && m_error.empty())
        m_error = "no serial number could be taken from " + *m_ctrl.FILE_GetSerialFileName();
    return ok != 0;
}

bool KCSerialDispenser::record(const std::string &key, bool passed)
{
    m_error.clear();
    const int ok = m_ctrl.FILE_ConsumeLocked([&](bool *) {
        return m_journal.append(passed ? Event::Pass : Event::Fail, key,
                                passed ? std::string() : policyName(m_policy))
            ? 1
            : 0;
    });
    if (!ok)
        m_error = m_journal.error().empty() ? "the result of " + key + " could not be journaled" : m_journal.error();
    return ok != 0;
}
