// The handler-job save dialog and the project checksum dialog, driven by their control ids
// with real clicks and keys.
#include "doc/KCDataDoc.h"
#include "KCProjectChecksumDlg.h"
#include "KCSaveHandlerJobDlg.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

// The file's CRC-16 bit by bit, apart from the table-driven class the dialogs use.
uint16_t bitwiseFileCrc(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.empty())
        return 0;
    uint16_t reg = 0xFFFF;
    for (unsigned char b : bytes)
        for (int bit = 7; bit >= 0; --bit) {
            const bool top = reg & 0x8000;
            reg = uint16_t((reg << 1) | ((b >> bit) & 1));
            if (top)
                reg ^= 0x1021;
        }
    return reg;
}

void click(QWidget *w)
{
    ASSERT_NE(w, nullptr);
    ASSERT_TRUE(w->isEnabled());
    QTest::mouseClick(w, Qt::LeftButton);
}

} // namespace

TEST(KCHandlerJobDialogs, SavingShowsTheFilesCrcWhichTheCheckAccepts)
{
    KCTestHost host;
    TempDir dir;
    KCDataDoc doc;
    doc.SetData(0x42, 7);
    KCSaveHandlerJobDlg dlg(nullptr, &doc);
    dlg.show();
    auto *actions = qobject_cast<QComboBox *>(dlg.control(KCSaveHandlerJobDlg::IDC_ACTION_LIST));
    auto *box = qobject_cast<QCheckBox *>(dlg.control(KCSaveHandlerJobDlg::IDC_OPTION_BOX));
    auto *crcText = qobject_cast<QLabel *>(dlg.control(KCSaveHandlerJobDlg::IDC_CHECKSUM));
    ASSERT_TRUE(actions && box && crcText);
    ASSERT_EQ(actions->count(), 5);
    EXPECT_EQ(actions->itemText(0), "Program");
    EXPECT_EQ(actions->itemText(4), "Erase");
    EXPECT_EQ(actions->currentText(), "Program");
    EXPECT_TRUE(box->isChecked());

    // Cancelling the file dialog writes nothing.
    dlg.askPath = [] { return std::string(); };
    click(dlg.control(KCSaveHandlerJobDlg::IDC_SAVE));
    EXPECT_TRUE(crcText->text().isEmpty());

    const std::string path = dir.file("line.handlerjob");
    dlg.askPath = [&] { return path; };
    actions->setFocus();
    QTest::keyClick(actions, Qt::Key_Down); // Verify
    click(box);                             // cleared
    click(dlg.control(KCSaveHandlerJobDlg::IDC_SAVE));
    EXPECT_EQ(doc.AlgoParam().action(), "Verify");
    char expected[8];
    std::snprintf(expected, sizeof expected, "0x%04X", bitwiseFileCrc(path));
    EXPECT_EQ(crcText->text().toStdString(), expected);
    {
        std::ifstream in(path);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_NE(text.find("\"optionBox\": 0"), std::string::npos);
    }

    // What the save dialog showed is what the check reads back.
    KCProjectChecksumDlg check(nullptr, path);
    check.show();
    auto *entry = qobject_cast<QLineEdit *>(check.control(KCProjectChecksumDlg::IDC_CHECKSUM_ENTRY));
    auto *name = qobject_cast<QLabel *>(check.control(KCProjectChecksumDlg::IDC_FILE_NAME));
    ASSERT_TRUE(entry && name);
    EXPECT_EQ(name->text().toStdString(), path);
    QTest::keyClicks(entry, "0000");
    click(check.control(KCProjectChecksumDlg::IDC_OK));
    EXPECT_EQ(entry->text(), "Checksum Wrong.");
    EXPECT_TRUE(check.isVisible());
    entry->clear();
    // Digits above the low 16 bits are ignored.
    QTest::keyClicks(entry, "  1" + crcText->text().mid(2) + "xyz");
    click(check.control(KCProjectChecksumDlg::IDC_OK));
    EXPECT_EQ(check.result(), QDialog::Accepted);
}

TEST(KCHandlerJobDialogs, AFailedWriteSaysSoAndKeepsTheOldFile)
{
    KCTestHost host;
    TempDir dir;
    KCDataDoc doc;
    KCSaveHandlerJobDlg dlg(nullptr, &doc);
    dlg.show();
    dlg.askPath = [&] { return dir.file("missing-folder/line.handlerjob"); };
    click(dlg.control(KCSaveHandlerJobDlg::IDC_SAVE));
    ASSERT_EQ(host.prompts.size(), 1u);
    EXPECT_EQ(host.prompts[0].text, "Write handlerjob file failed.");
    EXPECT_TRUE(qobject_cast<QLabel *>(dlg.control(KCSaveHandlerJobDlg::IDC_CHECKSUM))->text().isEmpty());
    EXPECT_EQ(doc.AlgoParam().action(), "");

    // An empty file's checksum is 0: entering anything that reads as 0 passes.
    writeFile(dir.file("empty.kpf2"), "");
    KCProjectChecksumDlg check(nullptr, dir.file("empty.kpf2"));
    check.show();
    QTest::keyClicks(check.control(KCProjectChecksumDlg::IDC_CHECKSUM_ENTRY), "zz");
    click(check.control(KCProjectChecksumDlg::IDC_OK));
    EXPECT_EQ(check.result(), QDialog::Accepted);
}
