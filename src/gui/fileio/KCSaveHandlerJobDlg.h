#pragma once

#include <QDialog>

#include <functional>
#include <string>

class KCDataDoc;
class QCheckBox;
class QComboBox;
class QLabel;

// The handler-job save dialog: pick the action the job fixes, save, and read off the CRC-16
// the operator will compare before the run. The dialog stays open after saving so the
// checksum can be noted.
class KCSaveHandlerJobDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int IDD = 3060;
    static constexpr int IDC_ACTION_LIST = 2631;
    static constexpr int IDC_CHECKSUM = 1610;
    static constexpr int IDC_OPTION_BOX = 1044;
    static constexpr int IDC_SAVE = 1;  // the template's OK
    static constexpr int IDC_CLOSE = 2; // the template's Cancel

    KCSaveHandlerJobDlg(QWidget *parent, KCDataDoc *doc);

    QWidget *control(int id) const;
    // Asks for the file to write; empty when the user cancels. Tests replace it.
    std::function<std::string()> askPath;

public slots:
    void OnOK();

private:
    KCDataDoc *m_doc;
    QComboBox *m_actions;
    QLabel *m_checksum;
    QCheckBox *m_option;

    void OnInitDialog();
};
