#pragma once

#include <QDialog>
#include <QString>

class KCDataDoc;
class QCheckBox;
class QLineEdit;
class QListWidget;
class cKrlSerialNumberHandler;

// Control ids of the CSV serial-number dialog ("controlId" property).
enum cKrlCSVSerialNumberDlgControl : int {
    IDC_CSV_MESSAGES = 3201,
    IDC_CSV_FILENAME = 3202,
    IDC_CSV_BROWSE = 3203,
    IDC_CSV_STRICT = 3204,
    IDC_CSV_CHECK = 3205,
};

// Chooses a CSV serial variables file and runs its rule check. The list shows the state on
// opening and every check's lines, the newest selected; the check itself is the handler's.
class cKrlCSVSerialNumberDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int MaxPathLength = 260;

    // `active` is the document's handler, when it has one; `projectFile` the serial project
    // file the document uses, empty for none.
    cKrlCSVSerialNumberDlg(QWidget *parent, KCDataDoc *doc, const cKrlSerialNumberHandler *active,
                           const QString &projectFile);

    QWidget *control(int id) const;
    QString fileName() const;
    void setFileName(const QString &path);
    // The rule check of the chosen file; its lines go to the list.
    bool ruleCheck();
    void browse();

private:
    void addLine(const QString &line);

    KCDataDoc *m_doc;
    QListWidget *m_messages;
    QLineEdit *m_fileName;
    QCheckBox *m_strict;
};
