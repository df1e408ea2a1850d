#include "search/KCSearchDlgBox.h"

#include "KCDataView.h"
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "host/KCMainProgDataExChange.h"
#include "search/KCEdit_Byte.h"
#include "search/KCEdit_Char.h"
#include "search/KCEdit_Word.h"
#include "view/KCDataViewModel.h"
#include "view/KCEditPatternState.h"
#include "view/KCIndexedColor.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

namespace {

const char *const ControlIdProperty = "controlId";
const char *const HitAddressProperty = "hitAddress";
constexpr unsigned WordAlignment = 2;
constexpr int WordAddressShift = 1;
constexpr int HexBase = 16;
constexpr int AddressDigits = 8;
constexpr int ByteDigits = 2;

QWidget *placeholder(int id, QWidget *parent)
{
    auto *w = new QWidget(parent);
    w->setProperty(ControlIdProperty, id);
    return w;
}

} // namespace

KCSearchDlgBox::KCSearchDlgBox(KCDataView *view, QWidget *parent)
    : QDialog(parent), m_view(view), m_doc(view ? view->document() : nullptr)
{
    setWindowTitle(tr("Search"));
    setProperty(ControlIdProperty, int(IDD_SEARCH));
    m_fields = new QGridLayout;
    m_fields->addWidget(new QLabel(tr("&Hex bytes:"), this), 0, 0);
    m_fields->addWidget(placeholder(IDC_PLACE_BYTE, this), 0, 1);
    m_fields->addWidget(new QLabel(tr("&Characters:"), this), 1, 0);
    m_fields->addWidget(placeholder(IDC_PLACE_CHAR, this), 1, 1);
    m_fields->addWidget(new QLabel(tr("&Words:"), this), 2, 0);
    m_fields->addWidget(placeholder(IDC_PLACE_WORD, this), 2, 1);
    m_fields->setColumnStretch(1, 1);

    auto *options = new QHBoxLayout;
    const auto check = [this, options](const QString &name, const QString &text) {
        auto *c = new QCheckBox(text, this);
        c->setObjectName(name);
        options->addWidget(c);
        return c;
    };
    check("littleEndian", tr("&Little-endian words"));
    check("aligned", tr("Words at &even addresses only"));
    check("fromCaret", tr("&Start at caret"));
    options->addStretch();

    auto *buttons = new QDialogButtonBox(this);
    const auto add = [this, buttons](const QString &name, const QString &text) {
        QPushButton *b = buttons->addButton(text, QDialogButtonBox::ActionRole);
        b->setObjectName(name);
        b->setAutoDefault(false);
        return b;
    };
    QPushButton *next = add("findNext", tr("Find &Next"));
    next->setDefault(true);
    connect(next, &QPushButton::clicked, this, &KCSearchDlgBox::OnFindNext);
    connect(add("findAll", tr("Find &All")), &QPushButton::clicked, this, &KCSearchDlgBox::OnFindAll);
    QPushButton *stop = add("stop", tr("S&top"));
    stop->setEnabled(false);
    connect(stop, &QPushButton::clicked, this, &KCSearchDlgBox::OnStop);
    connect(add("copyList", tr("Copy &List")), &QPushButton::clicked, this, &KCSearchDlgBox::OnCopyList);
    QPushButton *close = buttons->addButton(QDialogButtonBox::Close);
    close->setObjectName("close");
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    m_status = new QLabel(this);
    m_status->setObjectName("status");
    m_list = new QListWidget(this);
    m_list->setObjectName("hits");
    m_list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    connect(m_list, &QListWidget::itemActivated, this, &KCSearchDlgBox::OnHitActivated);
    connect(m_list, &QListWidget::itemClicked, this, &KCSearchDlgBox::OnHitActivated);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(m_fields);
    layout->addLayout(options);
    layout->addWidget(buttons);
    layout->addWidget(m_status);
    layout->addWidget(m_list, 1);

    m_timer.setInterval(ProgressIntervalMs);
    m_timer.setProperty(ControlIdProperty, int(IDT_PROGRESS));
    connect(&m_timer, &QTimer::timeout, this, &KCSearchDlgBox::OnTimer);
    // The worker's signal arrives as a posted message, on this thread.
    connect(this, &KCSearchDlgBox::searchDone, this, &KCSearchDlgBox::OnSearchDone, Qt::QueuedConnection);
    OnInitDialog();
}

KCSearchDlgBox::~KCSearchDlgBox()
{
    if (m_worker) {
        m_model.stop();
        m_worker->wait();
        delete m_worker;
    }
}

bool KCSearchDlgBox::OnInitDialog()
{
    const std::pair<int, int> places[] = {
        {IDC_PLACE_BYTE, IDC_EDIT_BYTE}, {IDC_PLACE_CHAR, IDC_EDIT_CHAR}, {IDC_PLACE_WORD, IDC_EDIT_WORD}};
    for (const auto &place : places) {
        QWidget *old = nullptr;
        for (int i = 0; i < m_fields->count(); ++i) {
            QWidget *w = m_fields->itemAt(i)->widget();
            if (w && w->property(ControlIdProperty).toInt() == place.first)
                old = w;
        }
        if (!old)
            continue;
        KCEdit_Base *edit = place.second == IDC_EDIT_BYTE   ? static_cast<KCEdit_Base *>(new KCEdit_Byte(this))
                            : place.second == IDC_EDIT_CHAR ? static_cast<KCEdit_Base *>(new KCEdit_Char(this))
                                                            : static_cast<KCEdit_Base *>(new KCEdit_Word(this));
        edit->setProperty(ControlIdProperty, place.second);
        int row = 0, column = 0, rows = 0, columns = 0;
        m_fields->getItemPosition(m_fields->indexOf(old), &row, &column, &rows, &columns);
        delete m_fields->replaceWidget(old, edit);
        delete old;
        if (auto *label = qobject_cast<QLabel *>(m_fields->itemAtPosition(row, 0)->widget()))
            label->setBuddy(edit);
        edit->setVisible(true);
        edit->setEnabled(true);
    }
    if (auto *word = static_cast<KCEdit_Word *>(edit(IDC_EDIT_WORD)))
        connect(option("littleEndian"), &QCheckBox::toggled, word, &KCEdit_Word::setByteSwap);
    if (KCEdit_Base *first = edit(IDC_EDIT_BYTE))
        first->setFocus();

    if (!m_doc) {
        m_model.setRange(cBufferSearch::rangeFromDescription(nullptr, 0));
        return false;
    }
    const uint64_t size = m_doc->GetBufferSize();
    const TAG_SEARCH_RANGE whole{0, static_cast<int64_t>(size) - 1};
    m_model.setRange(cBufferSearch::rangeFromDescription(&whole, size));
    return true;
}

KCEdit_Base *KCSearchDlgBox::edit(int id) const
{
    for (KCEdit_Base *e : findChildren<KCEdit_Base *>())
        if (e->property(KCEdit_Base::WindowClassProperty).toString() == KCEdit_Base::WindowClassName &&
            e->property(ControlIdProperty).toInt() == id)
            return e;
    return nullptr;
}

QPushButton *KCSearchDlgBox::button(const QString &name) const
{
    return findChild<QPushButton *>(name);
}

QCheckBox *KCSearchDlgBox::option(const QString &name) const
{
    return findChild<QCheckBox *>(name);
}

bool KCSearchDlgBox::wordLayout() const
{
    return m_view && m_view->GetBufferLayoutName() == LAYOUT_WORDVIEW;
}

void KCSearchDlgBox::OnFindNext()
{
    start(false);
}

void KCSearchDlgBox::OnFindAll()
{
    start(true);
}

void KCSearchDlgBox::start(bool findAll)
{
    const std::vector<uint8_t> &pattern = KCEditPatternState::shared().bytes();
    if (m_worker || !m_doc || pattern.empty())
        return;
    m_model.setPattern(pattern);
    m_model.setAlignment(option("aligned")->isChecked() ? WordAlignment : 1);
    if (option("fromCaret")->isChecked() && m_view) {
        const TAG_VIEW_POSITION c = m_view->model().caret();
        if (c.isValid() && (findAll || m_model.lastHit() < 0))
            m_model.startAt(c.address);
    }
    m_model.prepare(findAll, findAll && option("fromCaret")->isChecked());
    const cByteBuffer &buffer = m_doc->AlgoParam().buffer(0);
    const uint8_t *mem = buffer.data();
    const uint64_t size = buffer.size();
    // One worker per run; it reads the buffer while this modal dialog keeps the view from editing.
    m_worker = QThread::create([this, mem, size] {
        m_model.run(mem, size);
        emit searchDone();
    });
    setRunning(true);
    m_worker->start();
}

void KCSearchDlgBox::setRunning(bool running)
{
    button("stop")->setEnabled(running);
    button("findNext")->setEnabled(!running);
    button("findAll")->setEnabled(!running);
    if (running) {
        m_timer.start();
    } else {
        m_timer.stop();
    }
}

void KCSearchDlgBox::OnStop()
{
    m_model.stop();
}

void KCSearchDlgBox::OnTimer()
{
    m_status->setText(QString::fromStdString(m_model.progress().text(m_doc ? m_doc->host() : nullptr)));
}

void KCSearchDlgBox::OnSearchDone()
{
    if (!m_worker)
        return;
    m_worker->wait();
    delete m_worker;
    m_worker = nullptr;
    setRunning(false);
    const KCSearchModel::Outcome outcome = m_model.finish();
    m_status->setText(QString::fromStdString(m_model.message().text(m_doc->host())));
    if (outcome == KCSearchModel::Found)
        showHit(m_model.foundAddress(), m_model.foundLength());
    if (outcome == KCSearchModel::FoundAll) {
        if (m_hitColor < 0)
            m_hitColor = KCIndexedColor().GetIndexOf(KCSearchModel::HitText, KCSearchModel::HitBackground);
        if (m_view) {
            // The view keeps its own copy: the colours stay after the dialog closes.
            m_view->model().setSearchHits(std::make_shared<KCSearchHits>(m_model.hits()));
            m_view->viewport()->update();
        }
        fillHitList();
    }
}

void KCSearchDlgBox::showHit(int64_t address, uint64_t length)
{
    if (!m_view)
        return;
    m_view->model().setMarkRange(address, address + static_cast<int64_t>(length) - 1);
    m_view->viewport()->update();
}

void KCSearchDlgBox::fillHitList()
{
    m_list->clear();
    const cByteBuffer &buffer = m_doc->AlgoParam().buffer(0);
    const bool words = wordLayout();
    const uint64_t n = m_model.foundLength();
    for (uint64_t at : m_model.hits().list()) {
        // The hit's bytes in brackets between the bytes around it.
        QString line = QStringLiteral("%1 ").arg(words ? at >> WordAddressShift : at, AddressDigits, HexBase, QLatin1Char('0')).toUpper();
        const uint64_t from = at >= uint64_t(ListContextBytes) ? at - ListContextBytes : 0;
        const uint64_t end = std::min<uint64_t>(buffer.size(), at + n + ListContextBytes);
        for (uint64_t i = from; i < end; ++i) {
            const QString byte = QStringLiteral("%1").arg(buffer.GetAt(i), ByteDigits, HexBase, QLatin1Char('0')).toUpper();
            line += (i == at ? QStringLiteral(" [") : QStringLiteral(" ")) + byte;
            if (i == at + n - 1)
                line += QLatin1Char(']');
        }
        auto *item = new QListWidgetItem(line, m_list);
        item->setData(Qt::UserRole, QVariant::fromValue<qulonglong>(at));
    }
    if (m_model.hits().listCut())
        m_list->addItem(tr("... %1 more").arg(m_model.hits().count() - m_model.hits().list().size()));
}

void KCSearchDlgBox::OnHitActivated(QListWidgetItem *item)
{
    const QVariant at = item ? item->data(Qt::UserRole) : QVariant();
    if (at.isValid())
        showHit(static_cast<int64_t>(at.toULongLong()), m_model.foundLength());
}

void KCSearchDlgBox::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && m_list->hasFocus()) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void KCSearchDlgBox::OnCopyList()
{
    QStringList lines;
    for (int i = 0; i < m_list->count(); ++i)
        lines << m_list->item(i)->text();
    QApplication::clipboard()->setText(lines.join('\n') + '\n');
}

bool KCSearchDlgBox::FindAgain(KCDataView *view, bool forward)
{
    KCDataDoc *doc = view ? view->document() : nullptr;
    const std::vector<uint8_t> &pattern = KCEditPatternState::shared().bytes();
    if (!doc || pattern.empty())
        return false;
    const cByteBuffer &buffer = doc->AlgoParam().buffer(0);
    cBufferSearch search(pattern);
    int64_t low = 0, high = 0;
    const TAG_VIEW_POSITION c = view->model().caret();
    const int64_t caret = view->model().markRange(low, high) ? low : (c.isValid() ? c.address : -1);
    const int64_t end = static_cast<int64_t>(buffer.size()) - 1;
    const int64_t at = forward ? search.next(buffer.data(), buffer.size(), caret + 1, end)
                               : search.previous(buffer.data(), buffer.size(), caret - 1, 0);
    if (at < 0)
        return false;
    view->model().setMarkRange(at, at + static_cast<int64_t>(pattern.size()) - 1);
    view->viewport()->update();
    return true;
}
