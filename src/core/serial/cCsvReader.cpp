#include "serial/cCsvReader.h"

std::vector<cCsvReader::Record> cCsvReader::read(const std::string &text, std::vector<std::string> *problems)
{
    std::vector<Record> records;
    Record record;
    std::string field;
    int line = 1;
    record.line = line;
    bool quoted = false, wasQuoted = false, fieldStarted = false;
    size_t next = 0; // where the record after the current one starts
    auto endField = [&] {
        record.fields.push_back(field);
        field.clear();
        wasQuoted = fieldStarted = false;
    };
    auto endRecord = [&] {
        endField();
        // A blank line is no record.
        if (!(record.fields.size() == 1 && record.fields[0].empty()))
            records.push_back(record);
        record = Record();
        record.line = line;
        record.offset = next;
    };
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        next = i + 1;
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
                wasQuoted = true;
            } else {
                if (c == '\n')
                    ++line;
                field += c;
            }
            continue;
        }
        if (c == ',') {
            endField();
        } else if (c == '\r' || c == '\n') {
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                next = ++i + 1;
            ++line;
            endRecord();
        } else if (c == '"' && !fieldStarted) {
            quoted = fieldStarted = true;
        } else {
            if (c == '"' || wasQuoted)
                problems->push_back("line " + std::to_string(line) + ": a quote inside a field that is not quoted "
                                    "as a whole");
            field += c;
            fieldStarted = true;
        }
    }
    if (quoted)
        problems->push_back("line " + std::to_string(record.line) + ": a quoted field is not closed");
    if (fieldStarted || !record.fields.empty())
        endRecord();
    return records;
}
