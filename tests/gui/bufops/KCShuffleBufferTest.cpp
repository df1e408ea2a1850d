#include "bufops/KCAddEdit.h"
#include "bufops/KCShuffleBuffer.h"
#include "doc/KCDataDoc.h"
#include "host/KCDebugLog.h"
#include "host/KCHostStrings.h"
#include "view/KCDataView.h"
#include "KCTestHost.h"

#include <QComboBox>
#include <QMdiArea>
#include <QMdiSubWindow>

#include <gtest/gtest.h>

namespace {

QStringList items(QWidget *w)
{
    QStringList list;
    auto *box = qobject_cast<QComboBox *>(w);
    for (int i = 0; box && i < box->count(); ++i)
        list << box->itemText(i);
    return list;
}

QComboBox *box(const KCShuffleBuffer &dlg, int id)
{
    return qobject_cast<QComboBox *>(dlg.control(id));
}

} // namespace

// The lists start from the narrow widths of the document, refill when a width changes and
// offer every other open buffer document; OK shuffles into the lane chosen there.
TEST(KCShuffleBuffer, ListsWidthsLanesAndDocumentsAndShufflesIntoTheChosenOne)
{
    KCTestHost host;
    std::vector<std::string> log;
    KCDebugLog::SetSink([&](const std::string &text) { log.push_back(text); });
    host.defaultBufferSize = 0x100;
    KCDataDoc narrow;
    for (uint32_t a = 0; a < 0x100; ++a)
        narrow.SetData(uint8_t(a), a);
    host.defaultBufferSize = 0x200;
    KCDataDoc wide;
    wide.SetTitle("wide.bin");
    QMdiArea frame;
    frame.addSubWindow(new KCDataView(&narrow));
    frame.addSubWindow(new KCDataView(&wide));
    frame.addSubWindow(new KCDataView(&wide)); // a second window of the same document

    KCShuffleBuffer dlg(&narrow, &frame);
    ASSERT_TRUE(dlg.model().isValid());
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_SOURCE_WIDTH)), QStringList({"8", "16", "32"}));
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_DEST_WIDTH)), QStringList({"16", "32", "64"}));
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_LANE)), QStringList({"Even Byte", "Odd  Byte"}));
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_DEST_DOC)), QStringList({"wide.bin"}));

    box(dlg, KCShuffleBuffer::IDC_SOURCE_WIDTH)->setCurrentIndex(1);
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_DEST_WIDTH)), QStringList({"32", "64"}));
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_LANE)), QStringList({"Low  Word", "High Word"}));
    box(dlg, KCShuffleBuffer::IDC_DEST_WIDTH)->setCurrentIndex(1);
    EXPECT_EQ(items(dlg.control(KCShuffleBuffer::IDC_LANE)),
              QStringList({"Low  Word1", "High Word1", "Low  Word2", "High Word2"}));
    EXPECT_EQ(box(dlg, KCShuffleBuffer::IDC_LANE)->currentIndex(), 0);

    box(dlg, KCShuffleBuffer::IDC_SOURCE_WIDTH)->setCurrentIndex(0);
    box(dlg, KCShuffleBuffer::IDC_LANE)->setCurrentIndex(1);
    EXPECT_EQ(static_cast<KCAddEdit *>(dlg.control(KCShuffleBuffer::IDC_LAST))->text(), "000000FF");
    dlg.OnOK();
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    EXPECT_EQ(wide.GetData(0x1FF), 0xFF);
    EXPECT_EQ(wide.GetData(0x1FD), 0xFE);
    EXPECT_EQ(wide.GetData(0x1FC), 0xFF);
    EXPECT_EQ(wide.mainBufferParam()->LBEA, 0x1FFu);
    EXPECT_EQ(wide.mainBufferParam()->checksum, wide.GetCheckSum(0, 0x1FF));
    EXPECT_EQ(log, std::vector<std::string>({"getDestDoc index = 0"}));

    // Too small a destination: the code is shown, the destination stays open.
    wide.AlgoParam().buffer(0).resize(0x20, 0xFF);
    KCShuffleBuffer failing(&narrow, &frame);
    failing.OnOK();
    EXPECT_EQ(failing.result(), QDialog::Rejected);
    ASSERT_FALSE(host.prompts.empty());
    EXPECT_NE(host.prompts.back().text.find("code 385"), std::string::npos);
    EXPECT_EQ(log.back(), "KCShuffleBuffer::closeDoc not implemented.");
    KCDebugLog::SetSink(nullptr);
}

// Problems found at the start are shown and the dialog does not run.
TEST(KCShuffleBuffer, RefusesToRunWithoutABufferDocumentOrWithAStrangeWindow)
{
    KCTestHost host;
    KCDocBase notBuffer;
    for (KCDocBase *doc : {static_cast<KCDocBase *>(nullptr), &notBuffer}) {
        KCShuffleBuffer dlg(doc, nullptr);
        EXPECT_EQ(dlg.exec(), QDialog::Rejected);
    }
    ASSERT_EQ(host.prompts.size(), 2u);
    EXPECT_EQ(host.prompts[0].text, host.GetHostString(KCHostStrings::LaneNoDocument));
    EXPECT_EQ(host.prompts[1].text, host.GetHostString(KCHostStrings::LaneNotBufferDocument));

    KCDataDoc doc;
    QMdiArea frame;
    frame.addSubWindow(new QWidget);
    KCShuffleBuffer dlg(&doc, &frame);
    EXPECT_EQ(dlg.model().errors(), std::vector<std::string>({"Window is not a MDI child window."}));
    EXPECT_EQ(dlg.exec(), QDialog::Rejected);

    // No other document: OK names the missing destination and leaves the dialog open.
    QMdiArea alone;
    KCShuffleBuffer lonely(&doc, &alone);
    lonely.OnOK();
    EXPECT_EQ(host.prompts.back().text, host.GetHostString(KCHostStrings::LaneNoDestination));
    EXPECT_NE(lonely.result(), QDialog::Accepted);
}
