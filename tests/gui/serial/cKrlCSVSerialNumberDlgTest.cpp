// The CSV dialog's lines: the state on opening in order, a rule check's lines with the
// newest selected, and the check box making warnings fail.
#include "cKrlCSVSerialNumberDlg.h"
#include "doc/KCDataDoc.h"
#include "serial/cKrlSerialNumberHandler.h"
#include "KCTestHost.h"

#include <QCheckBox>
#include <QFile>
#include <QListWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
QStringList lines(const cKrlCSVSerialNumberDlg &dlg)
{
    auto *list = static_cast<QListWidget *>(dlg.control(IDC_CSV_MESSAGES));
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}
} // namespace

TEST(cKrlCSVSerialNumberDlg, StatusAndRuleCheckLines)
{
    KCTestHost host;
    EXPECT_EQ(lines(cKrlCSVSerialNumberDlg(nullptr, nullptr, nullptr, "p.csv")),
              QStringList{"Error: No document defined."});

    KCDataDoc doc;
    cKrlSerialNumberHandler active("x.csv", cKrlSerialNumberHandler::ModeLenient);
    active.setInUse(true);
    QTemporaryDir dir;
    const QString path = dir.filePath("vars.csv");
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("#var,S,0x0,8,asc\r\nUSED,S\r\n,SHORT\r\n");
    f.close();
    cKrlCSVSerialNumberDlg dlg(nullptr, &doc, &active, path);
    EXPECT_EQ(lines(dlg), (QStringList{"Warning: Serial number handling is active.",
                                      "Warning: Every change is destroying the current serial number run.",
                                      "Current project file: " + path}));

    EXPECT_TRUE(dlg.ruleCheck()); // a short value is only a warning
    QStringList l = lines(dlg).mid(3);
    ASSERT_EQ(l.size(), 4);
    EXPECT_EQ(l[0], "Starting rule check of file:");
    EXPECT_EQ(l[1], path);
    EXPECT_TRUE(l[2].startsWith("line 3: warning: S \"SHORT\" is shorter")) << l[2].toStdString(); // no path again
    EXPECT_EQ(l[3], "Rule check successful.");

    static_cast<QCheckBox *>(dlg.control(IDC_CSV_STRICT))->setChecked(true);
    EXPECT_FALSE(dlg.ruleCheck());
    EXPECT_EQ(lines(dlg).back(), "Rule check failed.");
    auto *list = static_cast<QListWidget *>(dlg.control(IDC_CSV_MESSAGES));
    EXPECT_EQ(list->currentRow(), list->count() - 1);
}
