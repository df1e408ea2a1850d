#pragma once

#include "panels/KCDeviceCountModel.h"

#include <QWidget>

class KCMainProgDataExChange;
class QCheckBox;
class QMessageBox;
class QPushButton;

// The production counter view: passed, failed and total devices, the yield, the target and
// the rate, and a RESET button guarded by a check box. What is shown comes from
// KCDeviceCountModel; this widget draws it and forwards the clicks.
class KCDeviceCountView : public QWidget
{
    Q_OBJECT
public:
    static constexpr int IDC_RESET_COUNTER = 1001;
    static constexpr int IDC_ENABLE_RESET = 1002;
    static constexpr int IDD_RESET_COUNTER = 2992;
    // Placement of the two controls, as left, top, right, bottom.
    static constexpr int ResetLeft = 10, ResetTop = 10, ResetRight = 160, ResetBottom = 40;
    static constexpr int EnableOffset = 50; // the check box stands this much lower
    static constexpr int RowStep = 24;

    KCDeviceCountView(QWidget *parent, KCMainProgDataExChange *host);

    KCDeviceCountModel &model() { return m_model; }
    QWidget *control(int id) const;
    // The reset dialog, once it has been asked for; created on first use and then reused.
    QMessageBox *resetDialog() const { return m_resetDialog; }

public slots:
    void DrawCountInfo();
    void OnEnableResetClick();
    void OnResetCounterClick();

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    KCDeviceCountModel m_model;
    QPushButton *m_reset;
    QCheckBox *m_enable;
    QMessageBox *m_resetDialog = nullptr;

    void OnInitialUpdate();
};
