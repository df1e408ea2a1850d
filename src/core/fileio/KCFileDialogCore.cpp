#include "fileio/KCFileDialogCore.h"

#include "fileio/KCFileTypeTable.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>
#include <cctype>

namespace {

const char *const AllFilesText = "All Files (*.*)";
const char *const DefaultSaveExtension = "bin";

std::string hostString(unsigned id)
{
    return g_pMainProgDataExChange ? g_pMainProgDataExChange->GetHostString(id)
                                   : "<string " + std::to_string(id) + ">";
}

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

std::vector<std::string> splitBars(const std::string &text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    while (true) {
        const size_t bar = text.find('|', start);
        parts.push_back(text.substr(start, bar == std::string::npos ? std::string::npos : bar - start));
        if (bar == std::string::npos)
            return parts;
        start = bar + 1;
    }
}

// Rows offered for loading and for saving, in combo order.
const std::pair<FILTERTYPE, LOADSAVE_FILETYPE> LoadRows[] = {
    {FILTER_BIN, LS_BINARY},   {FILTER_HEX, LS_INTELHEX},       {FILTER_MOTOROLA, LS_MOTOROLA},
    {FILTER_TI, LS_TIHEX},     {FILTER_JED, LS_JEDEC},          {FILTER_SVF, LS_SVF},
    {FILTER_STP, LS_STAPL},    {FILTER_OTP, LS_HOLTEK_OTP},     {FILTER_KPF2, LS_KPF2},
    {FILTER_SER, LS_SERIAL},   {FILTER_HANDLERJOB, LS_HANDLERJOB},
};
const std::pair<FILTERTYPE, LOADSAVE_FILETYPE> SaveRows[] = {
    {FILTER_BIN, LS_BINARY}, {FILTER_HEX, LS_INTELHEX}, {FILTER_MOTOROLA, LS_MOTOROLA},
    {FILTER_JED, LS_JEDEC},  {FILTER_KPF2, LS_KPF2},
};

} // namespace

CALLFROMMENUE KCFileDialogCore::m_CallFromMenue = CALLFROM_NONE;
LOADSAVE_FILETYPE KCFileDialogCore::m_LoadSaveType = LS_BINARY;
std::string KCFileDialogCore::s_filterText;

const std::vector<std::string> &KCFileDialogCore::extensionTable()
{
    static const std::vector<std::string> table = {
        "", "*", "bin", "hex", "mhx|ms1|ms2|ms3|s1|s2|s3|srec|mot", "ti", "jed", "svf", "otp", "kpf2", "def", "ser",
        "handlerjob", "stp",
    };
    return table;
}

const std::vector<std::string> &KCFileDialogCore::descriptionTable()
{
    static const std::vector<std::string> table = [] {
        std::vector<std::string> t;
        for (const KCFileTypeRow &row : KCFileTypeTable::rows())
            t.push_back(KCFileTypeTable::description(row));
        return t;
    }();
    return table;
}

KCFileDialogCore::KCFileDialogCore()
{
    const std::vector<std::string> *ext = nullptr, *desc = nullptr;
    InitFileTypeArray(&ext, &desc);
    CfgFileLoadFilter(ext, desc);
}

KCFileDialogCore::KCFileDialogCore(bool)
{
    const std::vector<std::string> *ext = nullptr, *desc = nullptr;
    InitFileTypeArray(&ext, &desc);
    m_firstNameChange = 1;
    if (m_CallFromMenue < CALLFROM_OPEN)
        return;
    if (m_CallFromMenue == CALLFROM_SAVE) {
        CfgFileSaveFilter(ext, desc);
        CfgOnSave();
    } else {
        CfgFileLoadFilter(ext, desc);
        CfgOnLoad();
    }
}

void KCFileDialogCore::InitFileTypeArray(const std::vector<std::string> **extensions,
                                         const std::vector<std::string> **descriptions)
{
    m_extensions = &extensionTable();
    m_descriptions = &descriptionTable();
    if (extensions)
        *extensions = m_extensions;
    if (descriptions)
        *descriptions = m_descriptions;
    m_rows.clear();
    m_rows.push_back({FILTER_INVALID, "Dummy", LS_INVALID, "Dummy"});
    m_rows.push_back({FILTER_ALL, (*m_extensions)[FILTER_ALL], LS_INVALID, AllFilesText});
}

void KCFileDialogCore::appendRow(FILTERTYPE filterType, LOADSAVE_FILETYPE loadSaveType)
{
    m_rows.push_back({filterType, (*m_extensions)[filterType], loadSaveType, (*m_descriptions)[loadSaveType]});
    m_comboTypes.push_back(loadSaveType);
}

void KCFileDialogCore::CfgFileLoadFilter(const std::vector<std::string> *extensions,
                                         const std::vector<std::string> *descriptions)
{
    if (!extensions || !descriptions)
        return;
    for (const auto &r : LoadRows)
        appendRow(r.first, r.second);
    rebuildFilterText();
}

void KCFileDialogCore::CfgFileSaveFilter(const std::vector<std::string> *extensions,
                                         const std::vector<std::string> *descriptions)
{
    if (!extensions || !descriptions)
        return;
    for (const auto &r : SaveRows)
        appendRow(r.first, r.second);
    rebuildFilterText();
}

void KCFileDialogCore::CfgOnLoad()
{
    m_labelCaption = hostString(KCHostStrings::FileDialogLoadAs);
}

void KCFileDialogCore::CfgOnSave()
{
    m_labelCaption = hostString(KCHostStrings::FileDialogSaveAs);
    SetFileDefExt(FILTER_BIN);
}

void KCFileDialogCore::rebuildFilterText()
{
    std::string text;
    const TAG_KRL_FILETYPE_INFO &all = m_rows[1];
    text += all.description;
    text += '\0';
    text += "*." + all.extension;
    text += '\0';
    for (size_t i = 2; i < m_rows.size(); ++i) {
        std::string display, patterns;
        for (const std::string &part : splitBars(m_rows[i].extension)) {
            if (!display.empty()) {
                display += ' ';
                patterns += ';';
            }
            display += "*." + part;
            patterns += "*." + part;
        }
        text += m_rows[i].description + " (" + display + ")";
        text += '\0';
        text += patterns;
        text += '\0';
    }
    text += '\0';
    s_filterText = text;
}

std::vector<std::pair<std::string, std::string>> KCFileDialogCore::filterPairs() const
{
    std::vector<std::pair<std::string, std::string>> pairs;
    std::vector<std::string> items;
    size_t start = 0;
    for (size_t i = 0; i < s_filterText.size(); ++i)
        if (s_filterText[i] == '\0') {
            items.push_back(s_filterText.substr(start, i - start));
            start = i + 1;
        }
    for (size_t i = 0; i + 1 < items.size(); i += 2)
        if (!items[i].empty())
            pairs.emplace_back(items[i], items[i + 1]);
    return pairs;
}

int KCFileDialogCore::GetFilterIndex(FILTERTYPE filterType) const
{
    if (filterType < FILTER_NONE || filterType >= FILTER_COUNT || m_rows.empty())
        return -1;
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].filterType == filterType)
            return static_cast<int>(i);
    return -1;
}

FILTERTYPE KCFileDialogCore::GetFilterType(int row) const
{
    if (row < 0 || static_cast<size_t>(row) >= m_rows.size())
        return FILTER_INVALID;
    return m_rows[row].filterType;
}

FILTERTYPE KCFileDialogCore::FindFilterType(const std::string &extension) const
{
    const std::string ext = lower(extension);
    for (size_t i = 2; i < m_rows.size(); ++i)
        for (const std::string &part : splitBars(m_rows[i].extension))
            if (lower(part) == ext)
                return m_rows[i].filterType;
    return FILTER_INVALID;
}

LOADSAVE_FILETYPE KCFileDialogCore::GetLoadSaveType(int comboIndex) const
{
    if (comboIndex < 0 || static_cast<size_t>(comboIndex) >= m_comboTypes.size())
        return LS_BINARY;
    return m_comboTypes[comboIndex];
}

int KCFileDialogCore::GetLoadSaveTypeIndex(LOADSAVE_FILETYPE type) const
{
    const auto it = std::find(m_comboTypes.begin(), m_comboTypes.end(), type);
    return it == m_comboTypes.end() ? -1 : static_cast<int>(it - m_comboTypes.begin());
}

LOADSAVE_FILETYPE KCFileDialogCore::GetLoadSaveType(FILTERTYPE filterType)
{
    if (filterType == FILTER_COUNT)
        return LS_BINARY;
    if (filterType == FILTER_INVALID || filterType == FILTER_NONE) {
        SetFileDefExt(filterType);
        return LS_BINARY;
    }
    for (size_t i = 2; i < m_rows.size(); ++i)
        if (m_rows[i].filterType == filterType) {
            SetFileDefExt(filterType);
            return m_rows[i].loadSaveType;
        }
    return LS_BINARY;
}

void KCFileDialogCore::SelectLoadSaveType(FILTERTYPE filterType)
{
    const LOADSAVE_FILETYPE t = GetLoadSaveType(filterType);
    if (t == LS_NOFORMAT || t == LS_INVALID)
        return;
    SelectLoadSaveType(t);
}

void KCFileDialogCore::SelectLoadSaveType(LOADSAVE_FILETYPE type)
{
    const int i = GetLoadSaveTypeIndex(type);
    if (i == -1)
        return;
    m_LoadSaveType = type;
    m_comboSelection = i;
}

void KCFileDialogCore::SetFileDefExt(FILTERTYPE filterType)
{
    if (!isSaveMode())
        return;
    // The toolkit appends at most three characters of a default extension.
    if (filterType >= FILTER_BIN && filterType <= FILTER_KPF2)
        m_defaultExtension = (*m_extensions)[filterType].substr(0, 3);
    else
        m_defaultExtension = DefaultSaveExtension;
}

void KCFileDialogCore::OnTypeChange(int filterIndex)
{
    SelectLoadSaveType(GetFilterType(filterIndex));
}

std::string KCFileDialogCore::extensionOf(const std::string &fileName)
{
    const size_t slash = fileName.find_last_of("/\\");
    const size_t dot = fileName.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return {};
    return fileName.substr(dot + 1);
}

void KCFileDialogCore::OnFileNameChange(const std::string &fileName)
{
    if (m_firstNameChange) {
        m_lastFileName = fileName;
        m_firstNameChange = 0;
        return;
    }
    if (fileName == m_lastFileName)
        return;
    m_lastFileName = fileName;
    const std::string ext = extensionOf(fileName);
    if (ext.empty())
        return;
    const FILTERTYPE ft = FindFilterType(ext);
    if (ft != FILTER_INVALID)
        SelectLoadSaveType(ft);
    else
        SelectLoadSaveType(LS_BINARY); // an unknown extension selects binary
}

void KCFileDialogCore::OnDestroy()
{
    SelectLoadSaveType(GetLoadSaveType(m_comboSelection));
}

void KCFileDialogCore::initComboSelection()
{
    const int i = GetLoadSaveTypeIndex(m_LoadSaveType);
    m_comboSelection = i >= 0 ? i : 0;
}

std::vector<std::string> KCFileDialogCore::comboTexts() const
{
    std::vector<std::string> texts;
    for (LOADSAVE_FILETYPE t : m_comboTypes)
        texts.push_back((*m_descriptions)[t]);
    return texts;
}
