// Where the document's serial numbers are written: buffer 0, through the document's own
// writes, so the checksum, the data map and undo follow. And the CSV serial project.
#include "doc/KCDataDoc.h"
#include "serial/cKrlSerialNumberHandler.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

bool KCDataDoc::hasSerialTarget()
{
    return TF_GetBufferParam(nullptr, nullptr, nullptr, -1) != nullptr;
}

uint8_t KCDataDoc::serialByte(uint64_t address) const
{
    return GetData(static_cast<uint32_t>(address));
}

void KCDataDoc::writeSerialByte(uint64_t address, uint8_t value)
{
    SetData(value, static_cast<uint32_t>(address));
}

void KCDataDoc::endSerialWrite(bool changed)
{
    endAction();
    if (changed)
        UpdateAllViews(nullptr, DOCHINT_DATA);
}

void KCDataDoc::serialSettingsChanged()
{
    SetModifiedFlag(1);
    UpdateAllViews(nullptr, DOCHINT_ALL);
}

bool KCDataDoc::prepareCSVSerialDataProject(cCSVSerialDataContent &content)
{
    // A new project would pull the rows from under a running production.
    if (m_csvHandler->isInUse())
        return false;
    m_csvHandler = std::make_unique<cKrlSerialNumberHandler>(content.path(), cKrlSerialNumberHandler::ModeLenient);
    m_csvSerial = content;
    return true;
}

bool KCDataDoc::setCSVSerialProjectFile(const std::string &path, std::string &error)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (in)
        text << in.rdbuf();
    if (!in || in.bad()) {
        error = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    cCSVSerialDataContent content(path, text.str());
    if (!prepareCSVSerialDataProject(content)) {
        error = path + ": a serial number run is using the current CSV file";
        return false;
    }
    SetModifiedFlag(1);
    return true;
}

cKrlSerialNumberHandler *KCDataDoc::prepareCsvRun(std::string *errors)
{
    errors->clear();
    if (m_csvSerial.path().empty())
        return nullptr;
    cKrlSerialNumberHandler &csv = *m_csvHandler;
    csv.setDeviceSize(m_algoParam->buffer(0).size());
    csv.setPolicy(KCSerialDispenser::policyOf(serialFlags()));
    csv.reserveNumberWindow(m_host, serialDefPath(), serialFlags(), serialAddress(), serialByteCount());
    if (!csv.readCSVSerialNumberFile()) {
        *errors = csv.getErrors();
        return nullptr;
    }
    return &csv;
}
