#include "KCCliSerialOptions.h"

#include "KCCliHost.h"
#include "doc/KCDataDoc.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <algorithm>
#include <cstdio>

bool KCCliSerialOptions::enableNumber(KCDataDoc &doc, KCCliHost &host, const Number &number)
{
    doc.setSerialDefPath(number.defFile);
    doc.setSerialFlags(number.flags);
    doc.setSerialAddress(number.address);
    doc.setSerialByteCount(number.count);
    host.setVerbose(true); // the definition file's diagnostics are what the user asked for
    const bool ok = doc.EnableSerialNumberUsability(1) != 0;
    if (!ok && host.shownCount() == 0)
        std::fprintf(stderr, "krldv: %s: cannot read the serial number definition\n", number.defFile.c_str());
    return ok;
}

std::unique_ptr<cKrlSerialNumberHandler> KCCliSerialOptions::openCsv(const std::string &path, uint64_t imageSize,
                                                                     KCSerialDispenser::Policy policy,
                                                                     const Number &number, KCMainProgDataExChange *host)
{
    auto csv = std::make_unique<cKrlSerialNumberHandler>(path, cKrlSerialNumberHandler::ModeLenient);
    csv->setDeviceSize(imageSize);
    csv->setPolicy(policy);
    csv->reserveNumberWindow(host, number.defFile, number.flags, number.address, number.count);
    // A file that fails its rule check hands out nothing.
    if (!csv->readCSVSerialNumberFile()) {
        std::fputs(csv->getErrors().c_str(), stderr);
        return nullptr;
    }
    return csv;
}

void KCCliSerialOptions::printRow(unsigned row, const std::vector<std::pair<uint32_t, std::string>> &values)
{
    std::printf("row %u\n", row);
    for (const auto &v : values) {
        std::printf("0x%08X", v.first);
        for (unsigned char c : v.second)
            std::printf(" %02X", c);
        std::printf("\n");
    }
}
