#include "doc/KCDataDoc.h"
#include "serial/KCSerialDefCtrl.h"
#include "serial/KCSerialDispenser.h"
#include "KCSerialDefDlg.h"
#include "KCSerialTestHost.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include <gtest/gtest.h>

#include <fstream>

namespace {

void click(KCSerialDefDlg &dlg, int id)
{
    auto *b = qobject_cast<QAbstractButton *>(dlg.control(id));
    ASSERT_NE(b, nullptr) << id;
    ASSERT_TRUE(b->isEnabled()) << id;
    b->click();
}

QString preview(KCSerialDefDlg &dlg)
{
    return qobject_cast<QLabel *>(dlg.control(IDC_SERIAL_PREVIEW))->text();
}

} // namespace

TEST(KCSerialDefDlg, PreviewFollowsTheRepresentationAndApplyDoesNotConsume)
{
    KCSerialTestHost host;
    KCDataDoc doc;
    KCSerialDefDlg dlg(nullptr, &doc);
    EXPECT_FALSE(dlg.control(IDC_SERIAL_ADDRESS)->isEnabled()); // no serial numbers yet

    click(dlg, IDC_SERIAL_CHOOSE_INTERNAL); // creates the default file: next is 0
    EXPECT_EQ(preview(dlg), "\"00000000\"  (30 30 30 30 30 30 30 30)");
    auto *next = qobject_cast<QLineEdit *>(dlg.control(IDC_SERIAL_DEFAULT_NEXT));
    next->setText("0xAB");
    emit next->textEdited(next->text());
    click(dlg, IDC_SERIAL_SAVE_DEFAULT);
    EXPECT_EQ(preview(dlg), "\"000000ab\"  (30 30 30 30 30 30 61 62)");

    auto *conflict = qobject_cast<QLabel *>(dlg.control(IDC_SERIAL_CONFLICT));
    EXPECT_TRUE(conflict->isHidden());
    click(dlg, IDC_SERIAL_DEC); // four bytes take ten digits: eight fit, and that is shown
    EXPECT_EQ(preview(dlg), "\"00000001\"  (30 30 30 30 30 30 30 31)");
    EXPECT_FALSE(conflict->isHidden());
    EXPECT_TRUE(conflict->text().contains("set the byte count to 10 or more")) << conflict->text().toStdString();
    qobject_cast<QSpinBox *>(dlg.control(IDC_SERIAL_BYTECOUNT))->setValue(10);
    EXPECT_EQ(preview(dlg), "\"0000000171\"  (30 30 30 30 30 30 30 31 37 31)");
    EXPECT_TRUE(conflict->isHidden());
    click(dlg, IDC_SERIAL_LITTLEENDIAN);
    EXPECT_EQ(preview(dlg), "\"1710000000\"  (31 37 31 30 30 30 30 30 30 30)");
    click(dlg, IDC_SERIAL_BIN);
    click(dlg, IDC_SERIAL_HEX);
    EXPECT_EQ(preview(dlg), "AB 00 00 00");

    auto *address = qobject_cast<QLineEdit *>(dlg.control(IDC_SERIAL_ADDRESS));
    address->setText("0x20");
    emit address->textEdited(address->text());
    const std::string before = host.fileText();
    click(dlg, IDC_SERIAL_APPLY);
    EXPECT_EQ(doc.GetData(0x20), 0xAB);
    EXPECT_EQ(doc.GetData(0x21), 0x00);
    EXPECT_EQ(host.fileText(), before);
    EXPECT_TRUE(doc.IsModified());

    // The policy for failed devices is applied with the representation, where the project
    // keeps it, changes no number, and shows again in the next dialog.
    EXPECT_TRUE(qobject_cast<QAbstractButton *>(dlg.control(IDC_SERIAL_DISCARD))->isChecked());
    click(dlg, IDC_SERIAL_REUSE);
    click(dlg, IDC_SERIAL_APPLY);
    EXPECT_EQ(KCSerialDispenser::policyOf(doc.serialFlags()), KCSerialDispenser::Reuse);
    EXPECT_EQ(preview(dlg), "AB 00 00 00");
    KCSerialDefDlg again(nullptr, &doc);
    EXPECT_TRUE(qobject_cast<QAbstractButton *>(again.control(IDC_SERIAL_REUSE))->isChecked());
    EXPECT_FALSE(qobject_cast<QAbstractButton *>(again.control(IDC_SERIAL_DISCARD))->isChecked());
}
