#include "bufops/KCJoinLanes.h"

#include "bufops/KCLaneDialogForm.h"
#include "bufops/cLaneNames.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>

namespace {

using Form = KCLaneDialogForm;

} // namespace

KCJoinLanes::KCJoinLanes(std::vector<KCDataDoc *> docs, std::function<KCDataDoc *()> newDocument, QWidget *parent)
    : QDialog(parent), m_model(std::move(docs), std::move(newDocument))
{
    setWindowTitle(tr("Join Lanes"));
    Form form(this);
    m_form = form.layout();
    m_narrowWidth = form.addList(IDC_NARROW_WIDTH, tr("&Lane width (bits):"));
    m_wideWidth = form.addList(IDC_WIDE_WIDTH, tr("&Joined width (bits):"));
    QStringList titles;
    for (const std::string &title : m_model.titles())
        titles << QString::fromStdString(title);
    for (int lane = 0; lane < MaxLanes; ++lane) {
        m_laneDocs.push_back(form.addList(IDC_LANE_DOC + lane, QString()));
        m_laneDocs.back()->addItems(titles);
    }
    connect(form.finish(), &QDialogButtonBox::accepted, this, &KCJoinLanes::OnOK);

    Form::setWidths(m_narrowWidth, KCJoinLanesModel::NarrowWidths());
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
    Form::setWidths(m_wideWidth, KCJoinLanesModel::WideWidths(Form::selectedWidth(m_narrowWidth)));
    showLanes();
}

void KCJoinLanes::showLanes()
{
    const uint32_t narrow = Form::selectedWidth(m_narrowWidth), wide = Form::selectedWidth(m_wideWidth);
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
    const uint32_t narrow = Form::selectedWidth(m_narrowWidth), wide = Form::selectedWidth(m_wideWidth);
    std::vector<int> picks;
    for (uint32_t lane = 0; narrow && lane < wide / narrow && lane < MaxLanes; ++lane)
        picks.push_back(m_laneDocs[lane]->currentIndex());
    if (m_model.apply(narrow, wide, picks) != KCJoinLanesModel::Refused)
        accept();
}
