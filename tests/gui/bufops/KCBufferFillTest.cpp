#include "bufops/KCAddEdit.h"
#include "bufops/KCBufferFill.h"
#include "doc/KCDataDoc.h"
#include "host/KCHostStrings.h"
#include "KCTestHost.h"

#include <QTest>

#include <gtest/gtest.h>

// The fill dialog starts from the image's data and the fill byte, refuses out-of-bounds
// digits as they are typed, keeps itself open on start after end, and fills on OK.
TEST(KCBufferFill, PresetsRefusesAndFills)
{
    KCTestHost host;
    host.defaultBufferSize = 0x100;
    KCDataDoc doc;
    KCBufferFill dlg(&doc);
    KCAddEdit *start = dlg.edit(KCBufferFill::IDC_FILL_START);
    KCAddEdit *end = dlg.edit(KCBufferFill::IDC_FILL_END);
    KCAddEdit *value = dlg.edit(KCBufferFill::IDC_FILL_VALUE);
    ASSERT_TRUE(start && end && value);
    EXPECT_EQ(start->text(), "00000000");
    EXPECT_EQ(end->text(), "000000FF");
    EXPECT_EQ(value->text(), "FF");

    value->clear();
    QTest::keyClicks(value, "1FF"); // a third digit would leave 0..FF
    EXPECT_EQ(value->text(), "1F");
    end->clear();
    QTest::keyClicks(end, "100"); // past the buffer
    EXPECT_EQ(end->text(), "10");

    start->setText("20");
    dlg.OnOK();
    ASSERT_EQ(host.prompts.size(), 1u);
    EXPECT_EQ(host.prompts[0].text, host.GetHostString(KCHostStrings::FillStartAfterEnd));
    EXPECT_NE(dlg.result(), QDialog::Accepted);

    start->setText("8");
    dlg.OnOK();
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    EXPECT_EQ(doc.GetData(7), 0xFF);
    EXPECT_EQ(doc.GetData(8), 0x1F);
    EXPECT_EQ(doc.GetData(0x10), 0x1F);
    EXPECT_EQ(doc.GetData(0x11), 0xFF);
    EXPECT_EQ(doc.mainBufferParam()->checksum, doc.ComputeCheckSum(-1));
}
