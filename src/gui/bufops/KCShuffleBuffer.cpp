#include "bufops/KCShuffleBuffer.h"

#include "bufops/KCAddEdit.h"
#include "bufops/KCLaneDialogForm.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "view/KCDataView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace {

constexpr uint64_t MaxAddress = 0xFFFFFFFFull;

// The frame's document windows in its order; a window without a data view is none.
std::vector<KCShuffleBufferModel::ChildWindow> childWindows(QMdiArea *frame)
{
    std::vector<KCShuffleBufferModel::ChildWindow> children;
    if (!frame)
        return children;
    for (QMdiSubWindow *sub : frame->subWindowList()) {
        auto *view = qobject_cast<KCDataView *>(sub->widget());
        children.push_back({view ? view->document() : nullptr, view != nullptr});
    }
    return children;
}

using Form = KCLaneDialogForm;

} // namespace

KCShuffleBuffer::KCShuffleBuffer(KCDocBase *doc, QMdiArea *frame, QWidget *parent, const KCShuffleBufferInitData &init)
    : QDialog(parent), m_model(doc, childWindows(frame), init)
{
    setWindowTitle(tr("Shuffle Buffer"));
    Form form(this);
    m_sourceWidth = form.addList(IDC_SOURCE_WIDTH, tr("&Source width (bits):"));
    m_destWidth = form.addList(IDC_DEST_WIDTH, tr("&Destination width (bits):"));
    m_lane = form.addList(IDC_LANE, tr("&Lane:"));
    m_first = form.addAddress(IDC_FIRST, tr("&First address (hex):"), MaxAddress);
    m_last = form.addAddress(IDC_LAST, tr("Las&t address (hex):"), MaxAddress);
    m_destDoc = form.addList(IDC_DEST_DOC, tr("Destination &buffer:"));
    connect(form.finish(), &QDialogButtonBox::accepted, this, &KCShuffleBuffer::OnOK);
    OnInitDialog();
    connect(m_sourceWidth, &QComboBox::currentIndexChanged, this, &KCShuffleBuffer::refillDestWidths);
    connect(m_destWidth, &QComboBox::currentIndexChanged, this, &KCShuffleBuffer::refillLanes);
}

QWidget *KCShuffleBuffer::control(int id) const
{
    return Form::find({m_sourceWidth, m_destWidth, m_lane, m_destDoc, m_first, m_last}, id);
}

void KCShuffleBuffer::OnInitDialog()
{
    if (!m_model.isValid())
        return;
    Form::setWidths(m_sourceWidth, m_model.sourceWidths());
    refillDestWidths();
    for (const std::string &title : m_model.destTitles())
        m_destDoc->addItem(QString::fromStdString(title));
    const KCShuffleBufferInitData &init = m_model.initData();
    m_first->setValue(init.m_firstAddress);
    m_last->setValue(init.m_lastAddress);
    if (int(init.m_destDocIndex) < m_destDoc->count())
        m_destDoc->setCurrentIndex(int(init.m_destDocIndex));
}

void KCShuffleBuffer::refillDestWidths()
{
    const QSignalBlocker block(m_destWidth);
    Form::setWidths(m_destWidth, KCShuffleBufferModel::DestWidths(Form::selectedWidth(m_sourceWidth)));
    refillLanes();
}

void KCShuffleBuffer::refillLanes()
{
    m_lane->clear();
    for (const std::string &name : cLaneNames::Get(Form::selectedWidth(m_sourceWidth), Form::selectedWidth(m_destWidth)))
        m_lane->addItem(QString::fromStdString(name));
    m_lane->setCurrentIndex(m_lane->count() ? 0 : -1);
}

int KCShuffleBuffer::exec()
{
    if (!m_model.isValid()) {
        m_model.showErrors();
        return Rejected;
    }
    return QDialog::exec();
}

void KCShuffleBuffer::OnOK()
{
    uint64_t first = 0, last = 0;
    if (!m_model.isValid() || !m_first->value(first) || !m_last->value(last)) {
        done(Rejected);
        return;
    }
    const KCShuffleBufferModel::Result result =
        m_model.apply(m_destDoc->currentIndex(), first, last, Form::selectedWidth(m_sourceWidth),
                      Form::selectedWidth(m_destWidth), uint32_t(std::max(0, m_lane->currentIndex())));
    if (result == KCShuffleBufferModel::Done)
        accept();
    else if (result == KCShuffleBufferModel::Failed || result == KCShuffleBufferModel::Closed)
        reject();
}
