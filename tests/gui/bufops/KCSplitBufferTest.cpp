#include "bufops/KCSplitBuffer.h"
#include "doc/KCDataDoc.h"
#include "view/KCDataView.h"
#include "KCTestHost.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>

#include <gtest/gtest.h>

#include <memory>

// OK makes one document per lane of the active document, names each after its lane and
// reports the lanes' sums and the round trip; a refused split leaves the documents made.
TEST(KCSplitBuffer, MakesOneDocumentPerLaneAndChecksTheRoundTrip)
{
    KCTestHost host;
    host.defaultBufferSize = 0x40;
    KCDataDoc source;
    source.setPathName("/tmp/image.hex");
    for (uint32_t a = 0; a < 0x40; ++a)
        source.SetData(uint8_t(a * 7), a);
    QMdiArea frame;
    frame.setActiveSubWindow(frame.addSubWindow(new KCDataView(&source)));
    std::vector<std::unique_ptr<KCDataDoc>> made;
    const auto newDocument = [&] {
        made.push_back(std::make_unique<KCDataDoc>());
        return made.back().get();
    };

    KCSplitBuffer dlg(&frame, newDocument);
    auto *wideBox = qobject_cast<QComboBox *>(dlg.control(KCSplitBuffer::IDC_SOURCE_WIDTH));
    auto *narrowBox = qobject_cast<QComboBox *>(dlg.control(KCSplitBuffer::IDC_DEST_WIDTH));
    ASSERT_TRUE(wideBox && narrowBox && dlg.control(KCSplitBuffer::IDC_FIRST) && dlg.control(KCSplitBuffer::IDC_LAST));
    wideBox->setCurrentIndex(1);
    ASSERT_EQ(narrowBox->count(), 2);
    EXPECT_EQ(narrowBox->itemText(0), "16");
    narrowBox->setCurrentIndex(1);
    dlg.OnOK();
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    ASSERT_EQ(made.size(), 4u);
    EXPECT_EQ(made[3]->GetTitle(), "image.hex [High Word - Odd  Byte]");
    EXPECT_EQ(made[3]->GetData(1), source.GetData(7));
    EXPECT_EQ(made[3]->GetBufferSize(), 0x10u);
    ASSERT_EQ(host.messages.size(), 5u);
    EXPECT_EQ(host.messages.back(), "round trip: identical");

    // A range of no whole units: refused at the first lane, whose document stays.
    made.clear();
    qobject_cast<QLineEdit *>(dlg.control(KCSplitBuffer::IDC_LAST))->setText("2");
    dlg.OnOK();
    EXPECT_EQ(made.size(), 1u);
    EXPECT_NE(host.prompts.back().text.find("code 388"), std::string::npos);
}
