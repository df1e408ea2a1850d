#pragma once

#include "serial/KCSerialSettings.h"

#include <QDialog>

#include <vector>

class KCDataDoc;
class QAbstractButton;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;
class QWidget;

// Control ids of the serial-number dialog (kept as the "controlId" property of each control).
enum KCSerialDefDlgControl : int {
    IDC_SERIAL_CHOOSE_NO = 3101,
    IDC_SERIAL_CHOOSE_INTERNAL = 3102,
    IDC_SERIAL_CHOOSE_CUSTOM = 3103,
    IDC_SERIAL_FILENAME = 3104,
    IDC_SERIAL_FILEDIALOG = 3105,
    IDC_SERIAL_ADDRESS = 3106,
    IDC_SERIAL_BYTECOUNT = 3107,
    IDC_SERIAL_DEFAULT_LENGTH = 3108,
    IDC_SERIAL_DEFAULT_NEXT = 3109,
    IDC_SERIAL_DEFAULT_STEP = 3110,
    IDC_SERIAL_SAVE_DEFAULT = 3111,
    IDC_SERIAL_DEC = 3112,
    IDC_SERIAL_HEX = 3113,
    IDC_SERIAL_ASC = 3114,
    IDC_SERIAL_BIN = 3115,
    IDC_SERIAL_BIGENDIAN = 3116,
    IDC_SERIAL_LITTLEENDIAN = 3117,
    IDC_SERIAL_PREVIEW = 3118,
    IDC_SERIAL_APPLY = 3119,
    IDC_SERIAL_CONFLICT = 3120, // ours: why the settings cannot write the next number
    IDC_SERIAL_DISCARD = 3121,  // ours: a failed device's number is used up
    IDC_SERIAL_REUSE = 3122,    // ours: a failed device's number is handed out again
};

// The serial-number dialog: which definition file, where the number goes and how it looks.
// Every rule is in KCSerialSettings; the dialog shows its state and forwards changes.
class KCSerialDefDlg : public QDialog
{
    Q_OBJECT
public:
    KCSerialDefDlg(QWidget *parent, KCDataDoc *doc);

    KCSerialSettings &settings() { return m_settings; }
    QWidget *control(int id) const;

public slots:
    void OnSerialChooseNo();
    void OnSerialChooseInternal();
    void OnSerialChooseCustom();
    void OnSerialFiledialog();
    void OnEDIT_ChangedAdr();
    void OnEDITChangeSerialByteCount();
    void OnChangeSerialDefaultLength();
    void OnChangeSerialDefaultNext();
    void OnChangeSerialDefaultStep();
    void OnSerialSaveDefault();
    void OnSerialBigEndian();
    void OnSerialLittleEndian();
    void OnSerialDEC();
    void OnSerialHEX();
    void OnSerialASC();
    void OnSerialBIN();
    void OnSerialDiscard();
    void OnSerialReuse();
    void OnApply();
    void OnOK();
    void OnCancel();

private:
    void OnInitDialog();
    void SetLayoutToCurrentSerialType(int choice);
    void EnableFrameXObjects(const std::vector<QWidget *> &objects, int enable);
    void SetNewTMPFilename(const std::string &path);
    void UpdatePreviewFrame();
    void setFlag(unsigned bit);
    void showFlags();
    void showFirstBlock();
    template <class T> T *addControl(T *widget, int id);

    KCDataDoc *m_doc;
    KCSerialSettings m_settings;
    std::vector<QWidget *> m_fileControls;
    std::vector<QWidget *> m_numberControls;
    QRadioButton *m_chooseNo, *m_chooseInternal, *m_chooseCustom;
    QLineEdit *m_fileName, *m_address, *m_length, *m_next, *m_step;
    QSpinBox *m_byteCount;
    QRadioButton *m_dec, *m_hex, *m_asc, *m_bin, *m_big, *m_little;
    QRadioButton *m_discard, *m_reuse;
    QLabel *m_preview;
    QLabel *m_conflict;
    bool m_updating = false;
};
