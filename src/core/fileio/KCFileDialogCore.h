#pragma once

#include "fileio/KCFileTypes.h"
#include "fileio/TAG_KRL_FILETYPE_INFO.h"

#include <string>
#include <vector>

// Everything of the program's file dialog that is not a widget: the file-type vocabulary,
// the filter and load/save-type rows, the combo's list and selection and what the dialog's
// notifications do to them. The Qt dialog shows this state and forwards its notifications;
// the command line uses the same tables.
class KCFileDialogCore
{
public:
    // Which command opened the dialog; read by the constructor.
    static CALLFROMMENUE m_CallFromMenue;
    // The format last chosen; preselects the combo and is read after the dialog closes.
    static LOADSAVE_FILETYPE m_LoadSaveType;

    // Without mode: the tables and the load rows only.
    KCFileDialogCore();
    // The dialog's own constructor: rows and captions by m_CallFromMenue.
    explicit KCFileDialogCore(bool openDialog);
    virtual ~KCFileDialogCore() = default;

    // The shared tables (extension table in FILTERTYPE order, description table in
    // LOADSAVE_FILETYPE order), built on first use; appends the two fixed rows.
    void InitFileTypeArray(const std::vector<std::string> **extensions, const std::vector<std::string> **descriptions);
    void CfgFileLoadFilter(const std::vector<std::string> *extensions, const std::vector<std::string> *descriptions);
    void CfgFileSaveFilter(const std::vector<std::string> *extensions, const std::vector<std::string> *descriptions);
    void CfgOnLoad();
    void CfgOnSave();

    int GetFilterIndex(FILTERTYPE filterType) const;
    FILTERTYPE GetFilterType(int row) const;
    FILTERTYPE GetFilterType(const std::string &extension) const { return FindFilterType(extension); }
    LOADSAVE_FILETYPE GetLoadSaveType(int comboIndex) const;
    int GetLoadSaveTypeIndex(LOADSAVE_FILETYPE type) const;
    LOADSAVE_FILETYPE GetLoadSaveType(FILTERTYPE filterType);
    void SelectLoadSaveType(FILTERTYPE filterType);
    void SelectLoadSaveType(LOADSAVE_FILETYPE type);

    // Notifications of the dialog.
    void OnTypeChange(int filterIndex);
    void OnFileNameChange(const std::string &fileName);
    void OnDestroy();
    // The combo selection at dialog start: m_LoadSaveType when offered, else the first row.
    void initComboSelection();

    const std::vector<TAG_KRL_FILETYPE_INFO> &rows() const { return m_rows; }
    const std::vector<LOADSAVE_FILETYPE> &comboTypes() const { return m_comboTypes; }
    std::vector<std::string> comboTexts() const;
    int comboSelection() const { return m_comboSelection; }
    void setComboSelection(int index) { m_comboSelection = index; }
    const std::string &labelCaption() const { return m_labelCaption; }
    const std::string &defaultExtension() const { return m_defaultExtension; }
    bool isSaveMode() const { return m_CallFromMenue == CALLFROM_SAVE; }

    // The filter list: description and pattern texts each ended by a NUL, a final NUL.
    static const std::string &filterText() { return s_filterText; }
    // The same as (description, patterns) pairs, row 1 onwards, for a toolkit's dialog.
    std::vector<std::pair<std::string, std::string>> filterPairs() const;

    static const std::vector<std::string> &extensionTable();
    static const std::vector<std::string> &descriptionTable();
    static std::string extensionOf(const std::string &fileName);

private:
    FILTERTYPE FindFilterType(const std::string &extension) const;
    void SetFileDefExt(FILTERTYPE filterType);
    void appendRow(FILTERTYPE filterType, LOADSAVE_FILETYPE loadSaveType);
    void rebuildFilterText();

    std::string m_lastFileName;
    std::string m_labelCaption;
    int m_firstNameChange = 0;
    const std::vector<std::string> *m_extensions = nullptr;
    const std::vector<std::string> *m_descriptions = nullptr;
    std::vector<LOADSAVE_FILETYPE> m_comboTypes;
    std::vector<TAG_KRL_FILETYPE_INFO> m_rows;
    int m_comboSelection = -1;
    std::string m_defaultExtension;

    static std::string s_filterText;
};
