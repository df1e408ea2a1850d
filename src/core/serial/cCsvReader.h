#pragma once

#include <string>
#include <vector>

// Records of CSV text as RFC 4180 has them: fields separated by commas, records by CR LF
// (a lone LF is taken too), a field in double quotes may hold commas, line breaks and quotes
// doubled. Problems are collected with their line, reading goes on past them.
class cCsvReader
{
public:
    struct Record
    {
        std::vector<std::string> fields;
        int line = 0;      // where the record starts, from 1
        size_t offset = 0; // and its first byte in the text
    };

    static std::vector<Record> read(const std::string &text, std::vector<std::string> *problems);
};
