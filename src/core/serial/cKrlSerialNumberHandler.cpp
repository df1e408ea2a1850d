#include "serial/cKrlSerialNumberHandler.h"

#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialJournal.h"
#include "serial/cSerialDefFile.h"
#include "serial/cSerialJournalAudit.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <set>

namespace {

using Variable = TAG_CSV_SERIAL_VARIABLE;
const char *const VarDirective = "#var";
const char *const KeyDirective = "#key";
constexpr size_t VarFields = 5;
constexpr size_t MaxFileSize = size_t(64) << 20;
constexpr uint64_t MaxAddress = 0xFFFFFFFFull;
const char *const RowKeyPrefix = "row:";

bool parseNumber(const std::string &text, uint64_t *value)
{
    if (text.empty())
        return false;
    char *end = nullptr;
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    *value = std::strtoull(text.c_str() + (hex ? 2 : 0), &end, hex ? 16 : 10);
    return *end == '\0' && text[0] != '-' && *value <= MaxAddress;
}

std::string rowKey(int line)
{
    return RowKeyPrefix + std::to_string(line);
}

std::string lineText(int line)
{
    return "line " + std::to_string(line) + ": ";
}

} // namespace

cKrlSerialNumberHandler::cKrlSerialNumberHandler(const std::string &path, int mode) : m_path(path), m_mode(mode) {}

cKrlSerialNumberHandler::~cKrlSerialNumberHandler() = default;

void cKrlSerialNumberHandler::error(int line, const std::string &text)
{
    m_errors.push_back(m_path + ": " + (line > 0 ? lineText(line) : std::string()) + text);
    ++m_errorCount;
}

void cKrlSerialNumberHandler::warning(int line, const std::string &text)
{
    m_errors.push_back(m_path + ": " + (line > 0 ? lineText(line) : std::string())
                       + (m_mode == ModeStrict ? "" : "warning: ") + text);
    if (m_mode == ModeStrict)
        ++m_errorCount;
}

std::string cKrlSerialNumberHandler::getErrors() const
{
    std::string text;
    for (const std::string &e : m_errors)
        text += e + "\n";
    return text;
}

unsigned char cKrlSerialNumberHandler::readCSVSerialNumberFile()
{
    cSerialDefFile file;
    const std::atomic<bool> noCancel{false};
    std::string text;
    m_errors.clear();
    m_errorCount = 0;
    if (file.open(m_path, false, noCancel) != cSerialDefFile::Opened || !file.readAll(&text, MaxFileSize)) {
        error(0, "cannot read it: " + file.errorText());
        return 0;
    }
    file.close();
    return check(text) ? 1 : 0;
}

bool cKrlSerialNumberHandler::parseVariable(const cCsvReader::Record &r)
{
    if (r.fields.size() != VarFields) {
        error(r.line, "#var takes a name, an address, a byte count and asc or hex");
        return false;
    }
    Variable v;
    v.name = r.fields[1];
    v.line = r.line;
    uint64_t address = 0, count = 0;
    bool ok = true;
    if (v.name.empty()) {
        error(r.line, "a variable without a name");
        ok = false;
    }
    if (!parseNumber(r.fields[2], &address)) {
        error(r.line, "address \"" + r.fields[2] + "\" of " + v.name + " is no number");
        ok = false;
    }
    if (!parseNumber(r.fields[3], &count) || count == 0) {
        error(r.line, "byte count \"" + r.fields[3] + "\" of " + v.name + " is no number above 0");
        ok = false;
    }
    if (r.fields[4] == "asc")
        v.representation = Variable::Ascii;
    else if (r.fields[4] == "hex")
        v.representation = Variable::Hex;
    else {
        error(r.line, "representation \"" + r.fields[4] + "\" of " + v.name + " is neither asc nor hex");
        ok = false;
    }
    for (const Variable &other : m_variables) {
        if (other.name == v.name) {
            error(r.line, "variable " + v.name + " is declared twice");
            ok = false;
        }
    }
    v.address = static_cast<uint32_t>(address);
    v.byteCount = static_cast<uint32_t>(count);
    if (ok)
        m_variables.push_back(v);
    return ok;
}

bool cKrlSerialNumberHandler::valueBytes(const Variable &v, const std::string &value, std::string *bytes,
                                         std::string *problem, bool *isShort) const
{
    *isShort = false;
    if (v.representation == Variable::Ascii) {
        *bytes = value;
    } else {
        if (value.size() % 2 != 0
            || !std::all_of(value.begin(), value.end(), [](unsigned char c) { return std::isxdigit(c) != 0; })) {
            *problem = "\"" + value + "\" is not hexadecimal bytes";
            return false;
        }
        bytes->clear();
        for (size_t i = 0; i < value.size(); i += 2)
            *bytes += static_cast<char>(std::strtoul(value.substr(i, 2).c_str(), nullptr, 16));
    }
    if (bytes->size() > v.byteCount) {
        *problem = "\"" + value + "\" takes " + std::to_string(bytes->size()) + " bytes, " + v.name + " has "
            + std::to_string(v.byteCount);
        return false;
    }
    *isShort = bytes->size() < v.byteCount;
    bytes->resize(v.byteCount, '\0');
    return true;
}

bool cKrlSerialNumberHandler::check(const std::string &text)
{
    m_errors.clear();
    m_errorCount = 0;
    m_variables.clear();
    m_keyName.clear();
    m_freeRows = 0;
    m_firstFree = 0;
    std::vector<std::string> syntax;
    m_records = cCsvReader::read(text, &syntax);
    for (const std::string &s : syntax)
        error(0, s);

    size_t header = m_records.size();
    for (size_t i = 0; i < m_records.size() && header == m_records.size(); ++i) {
        const cCsvReader::Record &r = m_records[i];
        const std::string &first = r.fields[0];
        if (first == VarDirective)
            parseVariable(r);
        else if (first == KeyDirective && r.fields.size() == 2)
            m_keyName = r.fields[1];
        else if (!first.empty() && first[0] == '#')
            warning(r.line, "unknown directive " + first);
        else
            header = i;
    }
    if (header == m_records.size() || m_records[header].fields[0] != UsedColumn) {
        error(header < m_records.size() ? m_records[header].line : 0,
              std::string("the header row must begin with ") + UsedColumn + " and name the variables");
        return false;
    }
    const cCsvReader::Record &h = m_records[header];
    for (size_t c = 1; c < h.fields.size(); ++c) {
        const auto v = std::find_if(m_variables.begin(), m_variables.end(),
                                    [&](const Variable &x) { return x.name == h.fields[c]; });
        if (v == m_variables.end())
            error(h.line, "column " + h.fields[c] + " has no #var line");
        else
            v->column = static_cast<int>(c);
    }
    for (const Variable &v : m_variables) {
        if (v.column < 0)
            error(v.line, "variable " + v.name + " has no column in the header row");
        if (m_deviceSize && uint64_t(v.address) + v.byteCount > m_deviceSize)
            error(v.line, v.name + " does not fit in the device");
        if (m_reserved.second && v.address < uint64_t(m_reserved.first) + m_reserved.second
            && m_reserved.first < uint64_t(v.address) + v.byteCount)
            error(v.line, v.name + " overlaps the serial number of the definition file");
        for (const Variable &w : m_variables) {
            if (&w < &v && v.address < uint64_t(w.address) + w.byteCount && w.address < uint64_t(v.address) + v.byteCount)
                error(v.line, v.name + " overlaps " + w.name);
        }
    }
    if (m_keyName.empty() && !m_variables.empty())
        m_keyName = m_variables.front().name;
    else if (!m_keyName.empty()
             && std::none_of(m_variables.begin(), m_variables.end(), [&](const Variable &v) { return v.name == m_keyName; }))
        error(0, "#key names no variable: " + m_keyName);
    checkRows(m_records, header);
    return m_errorCount == 0;
}

void cKrlSerialNumberHandler::checkRows(const std::vector<cCsvReader::Record> &records, size_t header)
{
    const size_t columns = records[header].fields.size();
    const auto key = std::find_if(m_variables.begin(), m_variables.end(),
                                  [&](const Variable &v) { return v.name == m_keyName; });
    std::set<std::string> keys;
    bool sawFree = false;
    for (size_t i = header + 1; i < records.size(); ++i) {
        const cCsvReader::Record &r = records[i];
        if (r.fields.size() != columns) {
            error(r.line, "the row has " + std::to_string(r.fields.size()) + " fields, the header "
                  + std::to_string(columns));
            continue;
        }
        if (r.fields[0].empty()) {
            if (!sawFree)
                m_firstFree = i;
            sawFree = true;
            ++m_freeRows;
        } else if (sawFree) {
            error(r.line, "a used row after a free one: rows are used in order");
        }
        for (const Variable &v : m_variables) {
            if (v.column < 0)
                continue;
            const std::string &value = r.fields[static_cast<size_t>(v.column)];
            std::string bytes, problem;
            bool isShort = false;
            if (value.empty())
                error(r.line, v.name + " is empty");
            else if (!valueBytes(v, value, &bytes, &problem, &isShort))
                error(r.line, problem);
            else if (isShort)
                warning(r.line, v.name + " \"" + value + "\" is shorter than its " + std::to_string(v.byteCount)
                        + " bytes and is padded with zero bytes");
            if (key != m_variables.end() && v.name == key->name && !value.empty() && !keys.insert(value).second)
                error(r.line, "key " + v.name + " \"" + value + "\" is not unique");
        }
    }
}

const cCsvReader::Record *cKrlSerialNumberHandler::recordAtLine(int line) const
{
    const auto r = std::find_if(m_records.begin(), m_records.end(), [&](const cCsvReader::Record &x) { return x.line == line; });
    return r == m_records.end() ? nullptr : &*r;
}

bool cKrlSerialNumberHandler::takeNextRow(unsigned *row, std::vector<std::pair<uint32_t, std::string>> *values,
                                          std::string *why)
{
    cSerialDefFile file;
    std::string text;
    const cSerialDefFile::OpenResult opened = file.open(m_path, true, m_cancel);
    if (opened != cSerialDefFile::Opened) {
        *why = m_path + (opened == cSerialDefFile::Cancelled ? ": the wait was cancelled" : ": " + file.errorText());
        return false;
    }
    if (!file.readAll(&text, MaxFileSize)) {
        *why = m_path + ": " + file.errorText();
        return false;
    }
    if (!check(text)) {
        *why = getErrors();
        return false;
    }
    KCSerialJournal journal(KCSerialJournal::pathFor(m_path));
    std::vector<TAG_SERIAL_JOURNAL_EVENT> events;
    if (!journal.read(&events)) {
        *why = journal.error();
        return false;
    }
    // A take of the first free row is one whose station died before marking it: the row is
    // handed out again. Under "reuse" rows given back go first, as do rows held by dead
    // stations of this host.
    cSerialJournalAudit audit(events);
    const std::string nextKey = m_freeRows ? rowKey(m_records[m_firstFree].line) : std::string();
    if (!audit.settleOpen(journal, nextKey, m_policy == KCSerialDispenser::Reuse)) {
        *why = journal.error();
        return false;
    }
    const cCsvReader::Record *r = nullptr;
    const bool reused = !audit.reuseList().empty();
    if (reused) {
        const std::string &key = audit.reuseList().front().key;
        r = recordAtLine(std::atoi(key.c_str() + std::strlen(RowKeyPrefix)));
        if (!r) {
            *why = m_path + ": " + key + ", given back for reuse, is no longer a row of the file";
            return false;
        }
    } else if (m_freeRows == 0) {
        *why = m_path + ": no free row is left";
        return false;
    } else {
        r = &m_records[m_firstFree];
    }
    values->clear();
    std::string keyValue;
    for (const Variable &v : m_variables) {
        std::string bytes, problem;
        bool isShort = false;
        const std::string &value = r->fields[static_cast<size_t>(v.column)];
        valueBytes(v, value, &bytes, &problem, &isShort);
        values->emplace_back(v.address, bytes);
        if (v.name == m_keyName)
            keyValue = value;
    }
    *row = static_cast<unsigned>(r->line);
    // The journal line comes first: a station killed before the mark leaves the row free and
    // a take the next station settles.
    if (!journal.append(TAG_SERIAL_JOURNAL_EVENT::Take, rowKey(r->line), KCSerialJournal::toHex(keyValue))) {
        *why = journal.error();
        return false;
    }
    if (reused)
        return true; // marked when it was first taken
    text.insert(r->offset, KCSerialJournal::thisStation() + "@" + KCSerialJournal::now());
    if (!file.replaceAll(text) || !file.close()) {
        *why = m_path + ": cannot write the used mark: " + file.errorText();
        return false;
    }
    --m_freeRows;
    return true;
}

bool cKrlSerialNumberHandler::recordRow(unsigned row, bool passed, std::string *why)
{
    cSerialDefFile file;
    const cSerialDefFile::OpenResult opened = file.open(m_path, true, m_cancel);
    if (opened != cSerialDefFile::Opened) {
        *why = m_path + (opened == cSerialDefFile::Cancelled ? ": the wait was cancelled" : ": " + file.errorText());
        return false;
    }
    KCSerialJournal journal(KCSerialJournal::pathFor(m_path));
    const bool ok = journal.append(passed ? TAG_SERIAL_JOURNAL_EVENT::Pass : TAG_SERIAL_JOURNAL_EVENT::Fail,
                                   rowKey(static_cast<int>(row)),
                                   passed ? "" : KCSerialDispenser::policyName(m_policy));
    if (!ok)
        *why = journal.error();
    file.close();
    return ok;
}

void cKrlSerialNumberHandler::reserveNumberWindow(KCMainProgDataExChange *host, const std::string &defFile,
                                                  unsigned flags, uint32_t address, uint32_t count)
{
    if (defFile.empty())
        return;
    // A look at the next number without taking it: its text sets the window's length.
    KCSerialDefCtrl peek(host, defFile);
    unsigned length = 0, value = 0;
    std::string bytes;
    if (peek.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, nullptr, &bytes, 0, 1))
        setReservedRange(address, static_cast<uint32_t>(std::min<size_t>(count, bytes.size())));
}
