#include "bufops/KCJoinLanes.h"

#include "bufops/cLaneNames.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";

uint32_t selectedWidth(const QComboBox *box)
{
    return box->currentIndex() < 0 ? 0 : box->currentData().toUInt();
}

} // namespace

KCJoinLanes::KCJoinLanes(std::vector<KCDataDoc *> docs, std::function<KCDataDoc *()> newDocument, QWidget *parent)
    : QDialog(parent), m_model(std::move(docs), std::move(newDocument)), m_form(new QFormLayout)
{
    setWindowTitle(tr("Join Lanes"));
    const auto combo = [this](int id, const QString &label) {
        auto *box = new QComboBox(this);
        box->setProperty(ControlIdProperty, id);
        m_form->addRow(label, box);
        return box;
    };
    m_narrowWidth = combo(IDC_NARROW_WIDTH, tr("&Lane width (bits):"));
    m_wideWidth = combo(IDC_WIDE_WIDTH, tr("&Joined width (bits):"));
    QStringList titles;
    for (const std::string &title : m_model.titles())
        titles << QString::fromStdString(title);
    for (int lane = 0; lane < MaxLanes; ++lane) {
        m_laneDocs.push_back(combo(IDC_LANE_DOC + lane, QString()));
        m_laneDocs.back()->addItems(titles);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &KCJoinLanes::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(m_form);
    layout->addWidget(buttons);

    for (uint32_t w : KCJoinLanesModel::NarrowWidths())
        m_narrowWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_narrowWidth->setCurrentIndex(0);
    refillWideWidths();
    connect(m_narrowWidth, &QComboBox::currentIndexChanged, this, &KCJoinLanes::refillWideWidths);
    connect(m_wideWidth, &QComboBox::currentIndexChanged, this, &KCJoinLanes::showLanes);
}

QWidget *KCJoinLanes::control(int id) const
{
    if (id == IDC_NARROW_WIDTH)
        return m_narrowWidth;
    if (id == IDC_WIDE_WIDTH)
        return m_wideWidth;
    const int lane = id - IDC_LANE_DOC;
    return lane >= 0 && lane < MaxLanes ? m_laneDocs[size_t(lane)] : nullptr;
}

void KCJoinLanes::refillWideWidths()
{
    const QSignalBlocker block(m_wideWidth);
    m_wideWidth->clear();
    for (uint32_t w : KCJoinLanesModel::WideWidths(selectedWidth(m_narrowWidth)))
        m_wideWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_wideWidth->setCurrentIndex(m_wideWidth->count() ? 0 : -1);
    showLanes();
}

void KCJoinLanes::showLanes()
{
    const uint32_t narrow = selectedWidth(m_narrowWidth), wide = selectedWidth(m_wideWidth);
    const std::vector<int> picks = m_model.defaultPicks(narrow, wide);
    for (int lane = 0; lane < MaxLanes; ++lane) {
        const bool used = size_t(lane) < picks.size();
        m_form->setRowVisible(m_laneDocs[size_t(lane)], used);
        if (!used)
            continue;
        m_laneDocs[size_t(lane)]->setCurrentIndex(picks[size_t(lane)]);
        if (auto *label = qobject_cast<QLabel *>(m_form->labelForField(m_laneDocs[size_t(lane)])))
            label->setText(tr("Lane %1, %2:").arg(lane).arg(
                QString::fromStdString(cLaneNames::NameOf(narrow, wide, uint32_t(lane)))));
    }
}

void KCJoinLanes::OnOK()
{
    const uint32_t narrow = selectedWidth(m_narrowWidth), wide = selectedWidth(m_wideWidth);
    std::vector<int> picks;
    for (uint32_t lane = 0; narrow && lane < wide / narrow && lane < MaxLanes; ++lane)
        picks.push_back(m_laneDocs[lane]->currentIndex());
    if (m_model.apply(narrow, wide, picks) != KCJoinLanesModel::Refused)
        accept();
}
