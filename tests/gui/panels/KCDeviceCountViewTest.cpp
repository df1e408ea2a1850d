#include "KCDeviceCountView.h"
#include "KCTestHost.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

TEST(KCDeviceCountView, ResetIsGuardedAndTheGuardFallsAgainAfterARequest)
{
    KCTestHost host;
    host.SetCounts(7, 2);
    KCDeviceCountView view(nullptr, &host);
    EXPECT_EQ(view.model().GetTE(TE_PASS)->text, "-------"); // until shown or drawn
    view.show();
    EXPECT_EQ(view.model().GetTE(TE_TOTAL)->text, "9");
    auto *reset = qobject_cast<QPushButton *>(view.control(KCDeviceCountView::IDC_RESET_COUNTER));
    auto *enable = qobject_cast<QCheckBox *>(view.control(KCDeviceCountView::IDC_ENABLE_RESET));
    ASSERT_TRUE(reset && enable);
    EXPECT_EQ(reset->geometry(), QRect(10, 10, 150, 30));
    EXPECT_EQ(enable->geometry(), QRect(10, 60, 150, 30));

    // Disabled: a click does nothing.
    EXPECT_FALSE(reset->isEnabled());
    QTest::mouseClick(reset, Qt::LeftButton);
    EXPECT_EQ(view.resetDialog(), nullptr);

    QTest::mouseClick(enable, Qt::LeftButton);
    EXPECT_TRUE(enable->isChecked());
    EXPECT_TRUE(reset->isEnabled());
    QTest::mouseClick(reset, Qt::LeftButton);
    QMessageBox *dialog = view.resetDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(enable->isChecked());
    EXPECT_FALSE(reset->isEnabled());

    QTest::mouseClick(dialog->button(QMessageBox::Yes), Qt::LeftButton);
    EXPECT_EQ(host.GetPassCount(), 0);
    EXPECT_EQ(host.GetFailCount(), 0);
    EXPECT_NE(host.messages.back().find("7 passed, 2 failed"), std::string::npos);
    EXPECT_EQ(view.model().GetTE(TE_PASS)->text, "0");

    // The same dialog serves the next request.
    QTest::mouseClick(enable, Qt::LeftButton);
    QTest::mouseClick(reset, Qt::LeftButton);
    EXPECT_EQ(view.resetDialog(), dialog);
}
