#pragma once

#include "serial/KCSerialDispenser.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class KCCliHost;
class KCDataDoc;
class KCMainProgDataExChange;
class cKrlSerialNumberHandler;

// The serial options of krldv program and serial stamp: the definition file's number set up
// in the document, and the --csv FILE rule-checked against the image and that number before
// any row is taken.
class KCCliSerialOptions
{
public:
    struct Number
    {
        std::string defFile; // empty: no definition file beside the CSV file
        unsigned address = 0;
        unsigned count = 0;
        unsigned flags = 0;
    };
    // Sets the document up for `number`, with the host verbose from then on; false with the
    // definition file's messages (or why it could not be read) on standard error.
    static bool enableNumber(KCDataDoc &doc, KCCliHost &host, const Number &number);
    // The handler, or null with the rule check's errors on standard error.
    static std::unique_ptr<cKrlSerialNumberHandler> openCsv(const std::string &path, uint64_t imageSize,
                                                            KCSerialDispenser::Policy policy, const Number &number,
                                                            KCMainProgDataExChange *host);
    // "row N", then each variable's buffer address and bytes, a line each.
    static void printRow(unsigned row, const std::vector<std::pair<uint32_t, std::string>> &values);
};
