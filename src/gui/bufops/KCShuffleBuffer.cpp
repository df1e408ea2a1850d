#include "bufops/KCShuffleBuffer.h"

#include "bufops/KCAddEdit.h"
#include "bufops/cLaneNames.h"
#include "doc/KCDataDoc.h"
#include "view/KCDataView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";
constexpr int HexBase = 16;
constexpr int AddressDigits = 8;
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

uint32_t selectedWidth(const QComboBox *box)
{
    return box->currentIndex() < 0 ? 0 : box->currentData().toUInt();
}

} // namespace

KCShuffleBuffer::KCShuffleBuffer(KCDocBase *doc, QMdiArea *frame, QWidget *parent, const KCShuffleBufferInitData &init)
    : QDialog(parent), m_model(doc, childWindows(frame), init)
{
    setWindowTitle(tr("Shuffle Buffer"));
    auto *form = new QFormLayout;
    const auto combo = [this, form](int id, const QString &label) {
        auto *box = new QComboBox(this);
        box->setProperty(ControlIdProperty, id);
        form->addRow(label, box);
        return box;
    };
    const auto edit = [this, form](int id, const QString &label) {
        auto *e = new KCAddEdit(this);
        e->setProperty(ControlIdProperty, id);
        e->setBounds(0, MaxAddress);
        e->setBase(HexBase, AddressDigits);
        form->addRow(label, e);
        return e;
    };
    m_sourceWidth = combo(IDC_SOURCE_WIDTH, tr("&Source width (bits):"));
    m_destWidth = combo(IDC_DEST_WIDTH, tr("&Destination width (bits):"));
    m_lane = combo(IDC_LANE, tr("&Lane:"));
    m_first = edit(IDC_FIRST, tr("&First address (hex):"));
    m_last = edit(IDC_LAST, tr("Las&t address (hex):"));
    m_destDoc = combo(IDC_DEST_DOC, tr("Destination &buffer:"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &KCShuffleBuffer::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    OnInitDialog();
    connect(m_sourceWidth, &QComboBox::currentIndexChanged, this, &KCShuffleBuffer::refillDestWidths);
    connect(m_destWidth, &QComboBox::currentIndexChanged, this, &KCShuffleBuffer::refillLanes);
}

QWidget *KCShuffleBuffer::control(int id) const
{
    for (QWidget *w : std::initializer_list<QWidget *>{m_sourceWidth, m_destWidth, m_lane, m_destDoc, m_first, m_last})
        if (w->property(ControlIdProperty).toInt() == id)
            return w;
    return nullptr;
}

void KCShuffleBuffer::OnInitDialog()
{
    if (!m_model.isValid())
        return;
    for (uint32_t w : m_model.sourceWidths())
        m_sourceWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_sourceWidth->setCurrentIndex(0);
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
    m_destWidth->clear();
    for (uint32_t w : KCShuffleBufferModel::DestWidths(selectedWidth(m_sourceWidth)))
        m_destWidth->addItem(QString::asprintf("%d", int(w)), w);
    m_destWidth->setCurrentIndex(m_destWidth->count() ? 0 : -1);
    refillLanes();
}

void KCShuffleBuffer::refillLanes()
{
    m_lane->clear();
    for (const std::string &name : cLaneNames::Get(selectedWidth(m_sourceWidth), selectedWidth(m_destWidth)))
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
        m_model.apply(m_destDoc->currentIndex(), first, last, selectedWidth(m_sourceWidth),
                      selectedWidth(m_destWidth), uint32_t(std::max(0, m_lane->currentIndex())));
    if (result == KCShuffleBufferModel::Done)
        accept();
    else if (result == KCShuffleBufferModel::Failed || result == KCShuffleBufferModel::Closed)
        reject();
}
