#pragma once

#include "fileio/KCFileDialogCore.h"
#include "host/KCMainProgDataExChange.h"

#include <QFileDialog>

class KCLoadSaveCombo;
class QLabel;

// The program's file dialog: the toolkit's own (non-native) file dialog with a format label
// and the load/save-type combo below the file-type row. The rules live in KCFileDialogCore;
// this class shows its state and forwards the dialog's notifications to it. Callers set
// m_CallFromMenue (and m_LoadSaveType) before constructing it and read m_LoadSaveType after
// it ends.
class KCFileDialog : public QFileDialog, public KCFileDialogCore
{
    Q_OBJECT
public:
    // Ids of the controls, kept as the dynamic property "controlId".
    static constexpr int IDC_OK = 1;
    static constexpr int IDC_FILETYPE_LABEL = 1089;
    static constexpr int IDC_FILETYPE_COMBO = 1136;
    static constexpr int IDC_LOADSAVE_COMBO = 2849;
    static constexpr int IDC_FORMAT_LABEL = 2850;
    static constexpr const char *ControlIdProperty = "controlId";
    // Option bit of the flags: ask before overwriting an existing file.
    static constexpr unsigned OFN_OVERWRITEPROMPT = 0x2;

    // Tables and load rows only; no mode-dependent set-up.
    explicit KCFileDialog(QWidget *parent = nullptr);
    // An open (openFileDialog nonzero) or save dialog; rows and caption follow m_CallFromMenue.
    KCFileDialog(int openFileDialog, const QString &defaultExtension, const QString &fileName,
                 unsigned flags = FILEDIALOG_OPTIONS, QWidget *parent = nullptr);
    ~KCFileDialog() override;

    int DoModal() { return exec(); }

    // Adds and fills the extra controls; runs once, when the dialog is first shown.
    bool OnInitDialog();
    // The user picked another filter: the combo follows it.
    void OnTypeChange();
    // The file name changed: a known extension moves the combo, an unknown one selects binary.
    void OnFileNameChange();
    // The dialog ended (either way): m_LoadSaveType takes the combo's selection.
    void OnDestroy();

    // The filter list row of a filter type, preselected in the dialog.
    void selectFilterType(FILTERTYPE filterType);
    // The filter type of the selected filter, FILTER_INVALID when none.
    FILTERTYPE selectedFilterType() const;

    KCLoadSaveCombo *loadSaveCombo() const { return m_combo; }
    QLabel *formatLabel() const { return m_label; }
    QWidget *controlById(int id) const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void setUpDialog(bool open, unsigned flags);
    void connectNotifications();
    void fileNameChanged(const std::string &name);
    void filterChanged(const QString &filter);
    int filterRowOf(const QString &filter) const;
    void syncFromCore();

    KCLoadSaveCombo *m_combo = nullptr;
    QLabel *m_label = nullptr;
    bool m_initialised = false;
    bool m_ended = false;
};
