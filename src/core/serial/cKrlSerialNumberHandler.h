#pragma once

#include "serial/KCSerialDispenser.h"
#include "serial/TAG_CSV_SERIAL_VARIABLE.h"
#include "serial/cCsvReader.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// A CSV serial variables file: per device one row of values that go into the buffer.
//
//   #var,SERIAL,0x100,8,asc      variable, buffer address, byte count, asc or hex
//   #var,MAC,0x110,6,hex
//   #key,SERIAL                  the column whose values are unique (default: the first)
//   USED,SERIAL,MAC              the header: the used mark, then the variables
//   ,SN000001,0011223344AA       a free row (empty USED); taking it writes the mark
//
// Records follow RFC 4180. The rule check collects every problem, each with its line, into
// getErrors(). Strict mode makes its warnings (a value shorter than its bytes, which is
// padded with zero bytes; an unknown directive) errors. Rows are handed out first free first,
// under the same exclusive lock as the definition file, with the mark written before the lock
// is released, and journaled in "<file>.journal". Under the "reuse" policy a failed device's
// row goes back and is handed out next, as the definition file's numbers are.
class cKrlSerialNumberHandler
{
public:
    enum Mode { ModeLenient = 0, ModeStrict = 1 };
    static constexpr const char *UsedColumn = "USED";

    cKrlSerialNumberHandler(const std::string &path, int mode);
    virtual ~cKrlSerialNumberHandler();

    unsigned char isInUse() const { return m_inUse ? 1 : 0; }
    void setInUse(bool inUse) { m_inUse = inUse; }
    // The device's size and the window of the definition file's number, when known: the
    // variables must lie inside the one and outside the other.
    void setDeviceSize(uint64_t size) { m_deviceSize = size; }
    void setReservedRange(uint32_t address, uint32_t count) { m_reserved = {address, count}; }
    void setPolicy(KCSerialDispenser::Policy policy) { m_policy = policy; }
    // Keeps the variables out of the bytes the definition file's next number takes at
    // `address` (at most `count` of them), when the file gives one.
    void reserveNumberWindow(KCMainProgDataExChange *host, const std::string &defFile, unsigned flags,
                             uint32_t address, uint32_t count);

    // Reads and checks the file; nonzero when it passes.
    unsigned char readCSVSerialNumberFile();
    std::string getErrors() const;
    // The same check of the file's text.
    bool check(const std::string &text);

    const std::vector<TAG_CSV_SERIAL_VARIABLE> &variables() const { return m_variables; }
    unsigned freeRows() const { return m_freeRows; }

    // Takes the next row (one given back for reuse, else the next free one): the file is
    // checked, the row journaled and a free row marked used, under the lock. `values` gets each variable's address and bytes. False with `why`.
    bool takeNextRow(unsigned *row, std::vector<std::pair<uint32_t, std::string>> *values, std::string *why);
    // The device that got `row` passed or failed; journaled under the lock. A failed
    // device's row stays used, or under "reuse" goes back.
    bool recordRow(unsigned row, bool passed, std::string *why);
    void cancelWaiting() { m_cancel = true; }

private:
    void error(int line, const std::string &text);
    void warning(int line, const std::string &text);
    bool parseVariable(const cCsvReader::Record &r);
    void checkRows(const std::vector<cCsvReader::Record> &records, size_t header);
    bool valueBytes(const TAG_CSV_SERIAL_VARIABLE &v, const std::string &value, std::string *bytes,
                    std::string *problem, bool *short_) const;
    const cCsvReader::Record *recordAtLine(int line) const;

    std::string m_path;
    int m_mode;
    KCSerialDispenser::Policy m_policy = KCSerialDispenser::Discard;
    bool m_inUse = false;
    uint64_t m_deviceSize = 0;
    std::pair<uint32_t, uint32_t> m_reserved{0, 0};
    std::vector<std::string> m_errors; // and warnings
    unsigned m_errorCount = 0;
    std::vector<TAG_CSV_SERIAL_VARIABLE> m_variables;
    std::string m_keyName;
    unsigned m_freeRows = 0;
    std::vector<cCsvReader::Record> m_records;
    size_t m_firstFree = 0; // index into m_records; 0 when none
    std::atomic<bool> m_cancel{false};
};
