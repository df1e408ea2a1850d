#pragma once

#include <QDialog>
#include <QFont>

class KCAppSettings;
class QLabel;
class QLineEdit;
class QSpinBox;

// Edits the settings of new buffers (size, fill byte), the undo memory and the data views' font.
class KCSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    KCSettingsDialog(const KCAppSettings &settings, QWidget *parent = nullptr);

    // Writes the edited values; false (nothing written) when the size is not a valid number.
    bool applyTo(KCAppSettings &settings) const;
    bool fontChanged() const { return m_fontChanged; }

private:
    void chooseFont();
    void showFont();

    QLineEdit *m_size;
    QSpinBox *m_fill;
    QSpinBox *m_undoBudget;
    QSpinBox *m_hitListLimit;
    QLabel *m_fontLabel;
    QFont m_font;
    bool m_fontChanged = false;
};
