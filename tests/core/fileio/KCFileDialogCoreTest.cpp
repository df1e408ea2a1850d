#include "fileio/KCFileDialogCore.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

namespace {

struct DialogIn
{
    explicit DialogIn(CALLFROMMENUE origin, LOADSAVE_FILETYPE preset = LS_BINARY)
    {
        KCFileDialogCore::m_CallFromMenue = origin;
        KCFileDialogCore::m_LoadSaveType = preset;
    }
    ~DialogIn() { KCFileDialogCore::m_CallFromMenue = CALLFROM_NONE; }
};

} // namespace

TEST(KCFileDialogCore, LoadRowsFilterTextAndIndices)
{
    KCTestHost host;
    DialogIn in(CALLFROM_OPEN);
    KCFileDialogCore d(true);
    ASSERT_EQ(d.rows().size(), 13u); // two fixed rows and eleven formats
    EXPECT_EQ(d.rows()[0].description, "Dummy");
    EXPECT_EQ(d.GetFilterIndex(FILTER_ALL), 1);
    EXPECT_EQ(d.GetFilterIndex(FILTER_COUNT), -1);
    EXPECT_EQ(d.GetFilterIndex(FILTER_DEF), -1); // never offered
    EXPECT_EQ(d.GetFilterIndex(FILTER_STP), 8);
    EXPECT_EQ(d.GetFilterType(8), FILTER_STP);
    EXPECT_EQ(d.GetFilterType(13), FILTER_INVALID);
    EXPECT_EQ(d.labelCaption(), host.GetHostString(2484));
    EXPECT_EQ(d.comboTexts().size(), 11u);
    EXPECT_EQ(d.GetLoadSaveType(99), LS_BINARY);

    const std::string &f = KCFileDialogCore::filterText();
    EXPECT_EQ(f.substr(0, 24), std::string("All Files (*.*)\0*.*\0", 20) + "Bina");
    const std::string motorola = "Motorola S-Record (*.mhx *.ms1 *.ms2 *.ms3 *.s1 *.s2 *.s3 *.srec *.mot)";
    const size_t at = f.find(motorola);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(f.substr(at + motorola.size(), 45), std::string("\0*.mhx;*.ms1;*.ms2;*.ms3;*.s1;*.s2;*.s3;*.srec", 45));
    EXPECT_EQ(f.substr(f.size() - 2), std::string("\0\0", 2));
    EXPECT_EQ(d.filterPairs().size(), 12u);
}

TEST(KCFileDialogCore, TypedExtensionsMoveTheCombo)
{
    KCTestHost host;
    DialogIn in(CALLFROM_OPEN, LS_JEDEC);
    KCFileDialogCore d(true);
    d.initComboSelection();
    EXPECT_EQ(d.comboSelection(), d.GetLoadSaveTypeIndex(LS_JEDEC));

    d.OnFileNameChange("first.hex"); // only recorded
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_JEDEC);
    d.OnFileNameChange("image.SREC");
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_MOTOROLA);
    d.OnFileNameChange("image.s19"); // no row claims s19
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_BINARY);
    d.OnFileNameChange("a.Mot");
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_MOTOROLA);
    KCFileDialogCore::m_LoadSaveType = LS_TIHEX;
    d.OnFileNameChange("a.Mot"); // same name again: nothing
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_TIHEX);
    d.OnFileNameChange("noext");
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_TIHEX);

    d.OnTypeChange(d.GetFilterIndex(FILTER_JED));
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_JEDEC);
    d.OnTypeChange(1); // all files: binary
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_BINARY);

    d.setComboSelection(d.GetLoadSaveTypeIndex(LS_SVF));
    d.OnDestroy();
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_SVF);
}

TEST(KCFileDialogCore, SaveModeOffersWritableTypesOnly)
{
    KCTestHost host;
    DialogIn in(CALLFROM_SAVE, LS_STAPL);
    KCFileDialogCore d(true);
    EXPECT_EQ(d.rows().size(), 7u);
    EXPECT_EQ(d.defaultExtension(), "bin");
    EXPECT_EQ(d.labelCaption(), host.GetHostString(2485));
    d.initComboSelection();
    EXPECT_EQ(d.comboSelection(), 0); // STAPL is not offered: first entry

    d.OnFileNameChange("x");
    d.OnFileNameChange("out.ti"); // TI cannot be saved
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_BINARY);
    d.OnFileNameChange("out.mot");
    EXPECT_EQ(KCFileDialogCore::m_LoadSaveType, LS_MOTOROLA);
    EXPECT_EQ(d.defaultExtension(), "mhx");
    EXPECT_EQ(d.GetLoadSaveType(FILTER_COUNT), LS_BINARY);
    EXPECT_EQ(d.GetLoadSaveType(FILTER_NONE), LS_BINARY);
    EXPECT_EQ(d.defaultExtension(), "bin");

    DialogIn none(CALLFROM_NONE);
    EXPECT_TRUE(KCFileDialogCore(true).rows().size() == 2u); // no filter list at all
}
