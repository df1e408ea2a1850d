#include "doc/KCDataDoc.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialSettings.h"
#include "KCSerialTestHost.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

} // namespace

TEST(KCSerialSettings, ApplyShowsTheNextNumberAndNeverConsumesIt)
{
    KCSerialTestHost host;
    KCDataDoc doc;
    KCSerialSettings s(&doc.serialState());
    EXPECT_EQ(s.choice(), KCSerialSettings::ChoiceNone);

    s.setChoice(KCSerialSettings::ChoiceInternal); // the default file is created on first use
    s.setFirst(2, 0x1234, 1);
    ASSERT_TRUE(s.OnSerialSaveDefault());
    EXPECT_NE(host.fileText().find("NEXT=0x1234"), std::string::npos);

    s.setAddress(0x10);
    s.setByteCount(5);
    s.setFlag(KCSerialDefCtrl::FlagDec); // two bytes in decimal take five digits
    EXPECT_EQ(s.previewText(), "\"04660\"  (30 34 36 36 30)");
    s.setFlag(KCSerialDefCtrl::FlagLittleEndian);
    s.setFlag(KCSerialDefCtrl::FlagHex);
    std::string preview;
    ASSERT_TRUE(s.preview(preview));

    const std::string before = host.fileText();
    EXPECT_TRUE(s.OnApply());
    EXPECT_EQ(host.fileText(), before); // nothing consumed
    EXPECT_EQ(doc.serialMode(), KCSerialSettings::ChoiceInternal);
    EXPECT_EQ(KCSerialSettings::GetSerialChoiceType(doc.serialState()), KCSerialSettings::ChoiceInternal);
    for (unsigned i = 0; i < 4; ++i)
        EXPECT_EQ(doc.GetData(0x10 + i), static_cast<unsigned char>(preview[i])) << i;
    EXPECT_TRUE(doc.IsModified());

    // Switching the representation while on re-formats the same value.
    s.setFlag(KCSerialDefCtrl::FlagBigEndian);
    s.setFlag(KCSerialDefCtrl::FlagDec);
    EXPECT_TRUE(s.OnApply());
    EXPECT_EQ(doc.GetData(0x11), '4');
    EXPECT_EQ(host.fileText(), before);

    s.setChoice(KCSerialSettings::ChoiceNone);
    EXPECT_TRUE(s.OnApply());
    EXPECT_EQ(doc.serialDefCtrl(), nullptr);
    EXPECT_EQ(doc.serialMode(), 0);
}

TEST(KCSerialSettings, AFileWithoutUsableNumbersTurnsSerialsOff)
{
    KCSerialTestHost host;
    const std::string bad = host.dir + "/bad.ser";
    std::ofstream(bad) << "Broken\n{\nTYPE=ODD\n}\n";
    KCDataDoc doc;
    KCSerialSettings s(&doc.serialState());
    s.setChoice(KCSerialSettings::ChoiceCustom);
    s.setFileName(bad);
    s.OnApply();
    EXPECT_EQ(s.choice(), KCSerialSettings::ChoiceNone);
    EXPECT_EQ(doc.serialMode(), 0);
    EXPECT_EQ(doc.serialDefCtrl(), nullptr);
}
