#pragma once

#include <QDialog>

#include <string>

class QLabel;
class QLineEdit;

// The operator's check of a project before a run: the CRC-16 noted when the job was saved
// is typed in and compared with the file's. A mismatch replaces the entry with
// "Checksum Wrong." and the dialog stays open.
class KCProjectChecksumDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int IDC_FILE_NAME = 1764;
    static constexpr int IDC_CHECKSUM_ENTRY = 1763;
    static constexpr int IDC_OK = 1;
    static constexpr int IDC_CANCEL = 2;
    static constexpr const char *WrongText = "Checksum Wrong.";

    KCProjectChecksumDlg(QWidget *parent, const std::string &projectPath);

    QWidget *control(int id) const;

public slots:
    void OnOK();

private:
    std::string m_path;
    QLabel *m_fileName;
    QLineEdit *m_entry;
};
