#pragma once

#include <QString>

#include <cstdint>
#include <vector>

class KCAddEdit;
class QComboBox;
class QDialog;
class QDialogButtonBox;
class QFormLayout;
class QWidget;

// The form the lane dialogs share: labelled width lists and hexadecimal address edits, each
// tagged with its control id, above OK and Cancel.
class KCLaneDialogForm
{
public:
    explicit KCLaneDialogForm(QDialog *dialog);

    QComboBox *addList(int id, const QString &label);
    KCAddEdit *addAddress(int id, const QString &label, uint64_t maxAddress);
    // Puts the form and OK/Cancel into the dialog; Cancel rejects, OK is the caller's.
    QDialogButtonBox *finish();
    QFormLayout *layout() const { return m_form; }

    // The control among `controls` tagged with `id`, or none.
    static QWidget *find(const std::vector<QWidget *> &controls, int id);
    // The width held by the list's current entry; 0 when nothing is selected.
    static uint32_t selectedWidth(const QComboBox *box);
    // Replaces the list's entries with the widths, the first one selected.
    static void setWidths(QComboBox *box, const std::vector<uint32_t> &widths);

private:
    QDialog *m_dialog;
    QFormLayout *m_form;
};
