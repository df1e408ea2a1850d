#include "doc/cHandlerJobSave.h"

#include "doc/KCDataDoc.h"
#include "doc/cKpf2Manager.h"
#include "fileio/cKrlCrc16.h"

const std::vector<std::string> &cHandlerJobSave::actions()
{
    static const std::vector<std::string> list = {"Program", "Verify", "Blank", "Read", "Erase"};
    return list;
}

bool cHandlerJobSave::save(KCDataDoc &doc, const std::string &path, const std::string &action, int option,
                           uint16_t &crc, std::string &error)
{
    const std::string before = doc.AlgoParam().action();
    doc.AlgoParam().setAction(action);
    cKpf2Manager manager(doc, path);
    if (!manager.write(option, cKpf2Manager::WRITE_HANDLERJOB)) {
        error = manager.error();
        doc.AlgoParam().setAction(before);
        return false;
    }
    crc = cKrlCrc16().computeFile(path);
    return true;
}
