#include "KCDeviceCountView.h"

#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <QCheckBox>
#include <QDateTime>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>

namespace {

const char *const ControlIdProperty = "controlId";

double nowSeconds()
{
    return double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

} // namespace

KCDeviceCountView::KCDeviceCountView(QWidget *parent, KCMainProgDataExChange *host)
    : QWidget(parent), m_model(host)
{
    m_reset = new QPushButton("RESET", this);
    m_reset->setProperty(ControlIdProperty, IDC_RESET_COUNTER);
    m_reset->setGeometry(QRect(QPoint(ResetLeft, ResetTop), QPoint(ResetRight - 1, ResetBottom - 1)));
    m_enable = new QCheckBox("Enable Reset", this);
    m_enable->setProperty(ControlIdProperty, IDC_ENABLE_RESET);
    m_enable->setGeometry(
        QRect(QPoint(ResetLeft, ResetTop + EnableOffset), QPoint(ResetRight - 1, ResetBottom + EnableOffset - 1)));
    connect(m_enable, &QCheckBox::clicked, this, &KCDeviceCountView::OnEnableResetClick);
    connect(m_reset, &QPushButton::clicked, this, &KCDeviceCountView::OnResetCounterClick);
    setMinimumSize(360, KCDeviceCountModel::Placement[0] + RowStep * (TE_COUNT / 2));
    OnInitialUpdate();
}

void KCDeviceCountView::OnInitialUpdate()
{
    m_enable->setChecked(false);
    m_reset->setEnabled(false);
    m_model.InitDraw(RowStep);
}

QWidget *KCDeviceCountView::control(int id) const
{
    for (QWidget *w : findChildren<QWidget *>())
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCDeviceCountView::DrawCountInfo()
{
    m_model.DrawCountInfo(nowSeconds());
    update();
}

void KCDeviceCountView::OnEnableResetClick()
{
    // The box has toggled itself; RESET follows it.
    m_reset->setEnabled(m_enable->isChecked());
}

void KCDeviceCountView::OnResetCounterClick()
{
    if (!m_resetDialog) {
        KCMainProgDataExChange *host = g_pMainProgDataExChange;
        m_resetDialog = new QMessageBox(QMessageBox::Question, "Reset Counter",
                                        host ? QString::fromStdString(host->GetHostString(KCHostStrings::CountResetPrompt))
                                             : QString(),
                                        QMessageBox::Yes | QMessageBox::No, this);
        m_resetDialog->setProperty(ControlIdProperty, IDD_RESET_COUNTER);
        m_resetDialog->setModal(false);
        connect(m_resetDialog, &QMessageBox::finished, this, [this](int result) {
            if (result == QMessageBox::Yes) {
                m_model.resetCounts(QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss").toStdString());
                DrawCountInfo();
            }
        });
    }
    m_resetDialog->show();
    // The guard is cleared again after every reset request.
    m_enable->setChecked(!m_enable->isChecked());
    m_reset->setEnabled(m_enable->isChecked());
}

void KCDeviceCountView::showEvent(QShowEvent *event)
{
    // The host may have come after the view; showing reads its labels and counts.
    DrawCountInfo();
    QWidget::showEvent(event);
}

void KCDeviceCountView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    painter.setFont(font);
    for (int id = 0; id < TE_COUNT; ++id) {
        const KCDrawText *te = m_model.GetTE(id);
        if (!te || !te->placed || te->text.empty())
            continue;
        painter.setPen(te->color == 0xFF000000u ? palette().color(QPalette::WindowText) : QColor::fromRgb(te->color));
        painter.drawText(te->x, te->y, QString::fromStdString(te->text));
    }
}
