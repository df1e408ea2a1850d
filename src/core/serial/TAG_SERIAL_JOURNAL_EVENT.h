#pragma once

#include <string>

// One line of a serial journal: "TIME STATION EVENT KEY [DETAIL]".
struct TAG_SERIAL_JOURNAL_EVENT
{
    enum Kind { Take, Pass, Fail, Abandon };

    std::string time;    // UTC, ISO 8601
    std::string station; // host:pid
    Kind kind = Take;
    std::string key;     // which number: "BLOCK:0xVALUE" for a series, "BLOCK:#INDEX" for a list
    // Take: the number's bytes in hexadecimal. Fail: "discard" or "reuse". Abandon: "series"
    // (the file never moved past the number) or "reuse" (its station died holding it).
    std::string detail;
    int line = 0; // where it stands in the journal, from 1
};
