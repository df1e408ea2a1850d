#pragma once

#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialJournal.h"

#include <string>

class KCMainProgDataExChange;

// Hands out the serial numbers of one definition-file block to the devices of a production
// run and journals every number and every device result, all under the definition file's
// lock, so several stations can share the file and a station killed at any moment neither
// repeats nor silently loses a number.
//
// A take is journaled before the file is written back. A station killed between the two
// leaves a take the file never moved past; the next station marks it abandoned and hands the
// number out again. With the "reuse" policy a failed device gives its number back, and so
// does a station of this host that died holding one; given-back numbers go out first.
class KCSerialDispenser
{
public:
    enum Policy { Discard, Reuse };

    KCSerialDispenser(KCMainProgDataExChange *host, const std::string &defFile, unsigned flags, int block = 0);

    void setPolicy(Policy policy) { m_policy = policy; }
    Policy policy() const { return m_policy; }
    void setJournalPath(const std::string &path) { m_journal = KCSerialJournal(path); }
    const std::string &journalPath() const { return m_journal.path(); }
    // Ends a wait for the file held by another station; callable from any thread.
    void cancelWaiting() { m_ctrl.FILE_CancelWaiting(); }

    // The next number as the bytes for the buffer and its journal key; false with error()
    // when none can be had (the file unreadable or held until cancelled, no such block).
    bool take(std::string *key, std::string *bytes);
    // The device that got `key` passed or failed.
    bool record(const std::string &key, bool passed);
    const std::string &error() const { return m_error; }

    static bool parsePolicy(const std::string &text, Policy *policy);
    // "discard" or "reuse", as a failed device's journal line says it.
    static const char *policyName(Policy policy);
    // The policy a document's serial flags hold (KCSerialDefCtrl::FlagReuseFailed).
    static Policy policyOf(unsigned flags);

private:
    int takeLocked(std::string *key, std::string *bytes, bool *writeBack);
    bool seriesNext(std::string *key, std::string *bytes, bool advance);

    KCSerialDefCtrl m_ctrl;
    KCSerialJournal m_journal;
    unsigned m_flags;
    int m_block;
    Policy m_policy = Discard;
    std::string m_error;
};
