#include "serial/KCSerialSettings.h"

#include "serial/KCSerialState.h"
#include "serial/KCSerialTarget.h"
#include "host/KCMainProgDataExChange.h"
#include "serial/KCSerialDefCtrl.h"

#include <cstdio>

namespace {

struct FlagPair
{
    unsigned a, b;
};

const FlagPair Partners[] = {
    {KCSerialDefCtrl::FlagDec, KCSerialDefCtrl::FlagHex},
    {KCSerialDefCtrl::FlagAsc, KCSerialDefCtrl::FlagBin},
    {KCSerialDefCtrl::FlagBigEndian, KCSerialDefCtrl::FlagLittleEndian},
};

bool endsWith(const std::string &s, const std::string &tail)
{
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

} // namespace

KCSerialSettings::KCSerialSettings(KCSerialState *state) : m_state(state)
{
    m_choice = GetSerialChoiceType(*state);
    m_fileName = state->defPath();
    m_flags = state->flags();
    m_address = state->address();
    m_byteCount = state->byteCount();
    readFirstBlock();
}

KCSerialSettings::Choice KCSerialSettings::GetSerialChoiceType(const KCSerialState &state)
{
    if (state.mode() == 0)
        return ChoiceNone;
    return endsWith(state.defPath(), KCSerialDefCtrl::DefaultFileName) ? ChoiceInternal : ChoiceCustom;
}

void KCSerialSettings::setChoice(Choice choice)
{
    m_choice = choice;
    if (choice == ChoiceInternal) {
        const std::string path = m_state->host()->GetSerialDefaultFilePath();
        m_fileChosen = m_fileChosen || path != m_fileName;
        m_fileName = path;
    }
    readFirstBlock();
}

void KCSerialSettings::setFileName(const std::string &path)
{
    m_fileName = path;
    m_fileChosen = true;
    readFirstBlock();
}

void KCSerialSettings::setFlag(unsigned bit)
{
    for (const FlagPair &p : Partners) {
        if (bit == p.a)
            m_flags = (m_flags | p.a) & ~p.b;
        else if (bit == p.b)
            m_flags = (m_flags | p.b) & ~p.a;
    }
}

bool KCSerialSettings::reuseFailed() const
{
    return (m_flags & KCSerialDefCtrl::FlagReuseFailed) != 0;
}

void KCSerialSettings::setReuseFailed(bool reuse)
{
    m_flags = reuse ? m_flags | KCSerialDefCtrl::FlagReuseFailed : m_flags & ~KCSerialDefCtrl::FlagReuseFailed;
}

void KCSerialSettings::setFirst(unsigned length, unsigned next, unsigned step)
{
    m_firstLength = length;
    m_firstNext = next;
    m_firstStep = step;
}

bool KCSerialSettings::readFirstBlock()
{
    m_firstLength = m_firstNext = m_firstStep = 0;
    if (m_choice == ChoiceNone || m_fileName.empty())
        return false;
    KCSerialDefCtrl ctrl(m_state->host(), m_fileName);
    if (!ctrl.FILE_UpdateDefFileInfo() || ctrl.blockCount() == 0)
        return false;
    const TAG_SERIAL_NUMBER first = ctrl.GetSerialBlock(0);
    setFirst(first.length, first.next, first.step);
    return true;
}

bool KCSerialSettings::OnSerialSaveDefault()
{
    if (m_choice == ChoiceNone || m_fileName.empty() || m_firstLength < KCSerialDefCtrl::MinCalcLength
        || m_firstLength > KCSerialDefCtrl::MaxCalcLength)
        return false;
    KCSerialDefCtrl ctrl(m_state->host(), m_fileName);
    if (!ctrl.FILE_UpdateDefFileInfo() || ctrl.blockCount() == 0)
        return false;
    TAG_SERIAL_NUMBER first = ctrl.GetSerialBlock(0);
    first.length = static_cast<uint16_t>(m_firstLength);
    first.next = m_firstNext;
    first.step = m_firstStep;
    return ctrl.SetSerialBlock(0, first) && ctrl.FILE_WriteSerialFile();
}

bool KCSerialSettings::preview(std::string &bytes) const
{
    bytes.clear();
    if (m_choice == ChoiceNone || m_fileName.empty())
        return false;
    KCSerialDefCtrl ctrl(m_state->host(), m_fileName);
    unsigned flags = m_flags, length = 0, value = 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0');
    if (!ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, &data[0], &bytes, 0, 1))
        return false;
    if (bytes.size() > m_byteCount)
        bytes.resize(m_byteCount);
    return true;
}

std::string KCSerialSettings::conflict() const
{
    if (m_choice == ChoiceNone || m_fileName.empty())
        return std::string();
    KCSerialDefCtrl ctrl(m_state->host(), m_fileName);
    unsigned flags = m_flags, length = 0, value = 0;
    std::string data(KCSerialDefCtrl::DataBufferSize, '\0'), bytes;
    if (!ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, &data[0], &bytes, 0, 1))
        return std::string();
    KCSerialTarget &target = m_state->target();
    return KCSerialState::placementProblem(bytes.size(), m_byteCount, m_address,
                                           target.hasSerialTarget() ? target.serialTargetSize() : 0);
}

std::string KCSerialSettings::previewText() const
{
    std::string bytes;
    if (!preview(bytes))
        return {};
    std::string hex;
    for (unsigned char c : bytes) {
        char buf[4];
        std::snprintf(buf, sizeof buf, hex.empty() ? "%02X" : " %02X", c);
        hex += buf;
    }
    if (m_flags & KCSerialDefCtrl::FlagAsc)
        return "\"" + bytes + "\"  (" + hex + ")";
    return hex;
}

bool KCSerialSettings::OnApply()
{
    KCSerialState &doc = *m_state;
    bool changed = false;
    if (doc.flags() != m_flags) {
        doc.setFlags(m_flags);
        changed = true;
    }
    if (doc.byteCount() != m_byteCount) {
        doc.setByteCount(m_byteCount);
        changed = true;
    }
    if (doc.address() != m_address) {
        doc.setAddress(m_address);
        changed = true;
    }
    bool fileIsNew = false;
    if (m_fileChosen && !m_fileName.empty() && m_fileName != doc.defPath()) {
        doc.setDefPath(m_fileName);
        changed = fileIsNew = true;
    }

    const bool docOn = doc.mode() != 0 && doc.serialDefCtrl();
    if (m_choice == ChoiceNone) {
        if (docOn) {
            doc.EnableSerialNumberUsability(0);
            changed = true;
        }
        doc.setMode(0);
    } else if (!docOn) {
        // A preview only: applying never consumes a number.
        if (doc.EnableSerialNumberUsability(1) && doc.GetNextSerialNumberFromFile(0, 1)) {
            doc.setMode(m_choice);
            changed = true;
        } else {
            doc.EnableSerialNumberUsability(0);
            doc.setMode(0);
            m_choice = ChoiceNone;
        }
    } else {
        bool ok = true;
        if (fileIsNew || m_reload) {
            doc.serialDefCtrl()->FILE_SetSerialFilename(doc.defPath());
            ok = doc.GetNextSerialNumberFromFile(0, 1) != 0;
        } else {
            ok = doc.GetSerialNumber() != 0;
        }
        if (!ok && (fileIsNew || m_reload)) {
            doc.EnableSerialNumberUsability(0);
            doc.setMode(0);
            m_choice = ChoiceNone;
            changed = true;
        } else {
            doc.setMode(m_choice);
        }
    }
    m_reload = false;
    m_fileChosen = false;
    if (changed) {
        doc.target().serialSettingsChanged();
    }
    return changed;
}
