#include "KCFileDialog.h"
#include "host/KCHostStrings.h"
#include "KCLoadSaveCombo.h"
#include "KCTestHost.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Key presses as a user's typing delivers them.
void sendKey(QWidget *w, int key, const QString &text = {})
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(w, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(w, &release);
}

void typeInto(QLineEdit *edit, const QString &text)
{
    edit->setFocus();
    edit->selectAll();
    sendKey(edit, Qt::Key_Backspace);
    for (const QChar c : text)
        sendKey(edit, c.toUpper().unicode(), QString(c));
}

class FileDialogTest : public ::testing::Test
{
protected:
    std::unique_ptr<KCFileDialog> open(CALLFROMMENUE origin, LOADSAVE_FILETYPE preset)
    {
        KCFileDialog::m_CallFromMenue = origin;
        KCFileDialog::m_LoadSaveType = preset;
        auto dialog = std::make_unique<KCFileDialog>(origin != CALLFROM_SAVE, QString(), QString());
        dialog->setDirectory(QDir::tempPath());
        dialog->show();
        QApplication::processEvents();
        return dialog;
    }
    static QLineEdit *nameEdit(KCFileDialog &d) { return d.findChild<QLineEdit *>("fileNameEdit"); }
    static QComboBox *combo(KCFileDialog &d) { return qobject_cast<QComboBox *>(d.controlById(KCFileDialog::IDC_LOADSAVE_COMBO)); }
    QString host(unsigned id) const { return QString::fromStdString(m_host.GetHostString(id)); }

    KCTestHost m_host;
};

} // namespace

TEST_F(FileDialogTest, ComboFollowsTypedExtensions)
{
    auto d = open(CALLFROM_OPEN, LS_JEDEC);
    QComboBox *c = combo(*d);
    ASSERT_NE(c, nullptr);
    ASSERT_NE(nameEdit(*d), nullptr);
    EXPECT_NE(qobject_cast<KCLoadSaveCombo *>(c), nullptr);
    EXPECT_EQ(c->count(), 11);
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeJedec)); // preselected
    auto *label = qobject_cast<QLabel *>(d->controlById(KCFileDialog::IDC_FORMAT_LABEL));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), host(KCHostStrings::FileDialogLoadAs));

    typeInto(nameEdit(*d), "image.SREC");
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeMotorola));
    EXPECT_EQ(KCFileDialog::m_LoadSaveType, LS_MOTOROLA);

    typeInto(nameEdit(*d), "image.s19"); // no row holds s19: binary
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeBinary));
    EXPECT_EQ(KCFileDialog::m_LoadSaveType, LS_BINARY);

    typeInto(nameEdit(*d), "README"); // no extension: the combo stays
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeBinary));
    typeInto(nameEdit(*d), "fuses.Jed");
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeJedec));
}

TEST_F(FileDialogTest, ChoiceSurvivesCancelAndPreselectsTheNextDialog)
{
    {
        auto d = open(CALLFROM_OPEN, LS_BINARY);
        typeInto(nameEdit(*d), "a.hex");
        combo(*d)->setCurrentIndex(combo(*d)->findText(host(KCHostStrings::FileTypeSvf))); // user overrides
        d->reject();
        EXPECT_EQ(KCFileDialog::m_LoadSaveType, LS_SVF);
    }
    auto d = open(CALLFROM_OPEN, KCFileDialog::m_LoadSaveType);
    EXPECT_EQ(combo(*d)->currentText(), host(KCHostStrings::FileTypeSvf));
}

TEST_F(FileDialogTest, SaveModeOffersOnlyWritableTypes)
{
    auto d = open(CALLFROM_SAVE, LS_STAPL); // not offered for saving: first entry
    QComboBox *c = combo(*d);
    EXPECT_EQ(c->count(), 5);
    EXPECT_EQ(c->currentIndex(), 0);
    EXPECT_EQ(d->defaultSuffix(), "bin");
    EXPECT_EQ(qobject_cast<QLabel *>(d->controlById(KCFileDialog::IDC_FORMAT_LABEL))->text(),
              host(KCHostStrings::FileDialogSaveAs));

    // Choosing filters with the keyboard on the file-type combo.
    auto *types = qobject_cast<QComboBox *>(d->controlById(KCFileDialog::IDC_FILETYPE_COMBO));
    ASSERT_NE(types, nullptr);
    sendKey(types, Qt::Key_Down); // binary
    sendKey(types, Qt::Key_Down); // Intel
    EXPECT_EQ(d->selectedFilterType(), FILTER_HEX);
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeIntel));
    EXPECT_EQ(d->defaultSuffix(), "hex");
    sendKey(types, Qt::Key_Down); // Motorola: the toolkit's three characters
    EXPECT_EQ(d->defaultSuffix(), "mhx");
    sendKey(types, Qt::Key_Home); // all files: binary
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeBinary));

    typeInto(nameEdit(*d), "x.srec");
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeMotorola));
    typeInto(nameEdit(*d), "x.ti"); // TI cannot be saved
    EXPECT_EQ(c->currentText(), host(KCHostStrings::FileTypeBinary));
    qobject_cast<QPushButton *>(d->controlById(KCFileDialog::IDC_OK))->click();
    EXPECT_EQ(d->result(), QDialog::Accepted);
    EXPECT_TRUE(d->selectedFiles().value(0).endsWith("/x.ti"));
    EXPECT_EQ(KCFileDialog::m_LoadSaveType, LS_BINARY);
}

TEST_F(FileDialogTest, ReloadRetitlesTheDialogAndPreselectsFilters)
{
    auto d = open(CALLFROM_RELOAD, LS_INTELHEX);
    EXPECT_EQ(d->windowTitle(), host(KCHostStrings::ReloadTitle));
    auto *ok = qobject_cast<QPushButton *>(d->controlById(KCFileDialog::IDC_OK));
    ASSERT_NE(ok, nullptr);
    EXPECT_EQ(ok->text(), host(KCHostStrings::ReloadButton));

    d->selectFilterType(FILTER_JED);
    EXPECT_EQ(d->selectedFilterType(), FILTER_JED);
    d->selectFilterType(FILTER_DEF); // never offered: the selection stays
    EXPECT_EQ(d->selectedFilterType(), FILTER_JED);
    EXPECT_EQ(d->nameFilters().value(0), "All Files (*)");
}
