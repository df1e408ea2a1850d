#include "KCDataView.h"

#include "doc/KCDataDoc.h"
#include "view/KCDataViewLayout.h"
#include "view/KCIndexedColor.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <climits>

namespace {

// One notch of a common mouse wheel, in eighths of a degree.
constexpr int WheelNotch = 120;
// How often a drag past the window's edge scrolls on.
constexpr int DragScrollIntervalMs = 50;
constexpr uint32_t RgbMask = 0xFFFFFF;
constexpr int WordAddressShift = 1;
constexpr int HexBase = 16;
constexpr int DecimalBase = 10;
constexpr int PlainAddressDigits = 8;

uint32_t rgbOf(const QColor &c)
{
    return static_cast<uint32_t>(c.rgb()) & RgbMask;
}

// Lines or columns to scroll when the pointer is `past` pixels beyond an edge: one at
// once, one more per further character cell.
int stepsBeyond(int past, int cell)
{
    return 1 + past / std::max(cell, 1);
}

} // namespace

QFont *KCDataView::m_pFont = nullptr;

KCDataView::KCDataView(KCDataDoc *doc, QWidget *parent)
    : QAbstractScrollArea(parent), m_doc(doc), m_model(nullptr, doc ? doc->host() : g_pMainProgDataExChange)
{
    m_model.setListener(this);
    // The widget is the document's view; the model hears of changes through it.
    m_model.setDocument(doc, false);
    if (m_doc) {
        m_doc->AddView(this);
        auto &items = m_doc->viewItems();
        if (!items.empty() && !items[0].view)
            items[0].view = this;
    }
    setFocusPolicy(Qt::StrongFocus);
    // Painting covers every pixel, so the background is never erased first.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::IBeamCursor);

    const int flash = QApplication::cursorFlashTime();
    m_blinkTimer.setInterval(flash > 0 ? flash / 2 : 0);
    connect(&m_blinkTimer, &QTimer::timeout, this, &KCDataView::blink);
    m_dragTimer.setInterval(DragScrollIntervalMs);
    connect(&m_dragTimer, &QTimer::timeout, this, &KCDataView::dragStep);

    loadSystemColours();
    InitTextMetrics();
}

KCDataView::~KCDataView()
{
    m_model.setListener(nullptr);
    if (!m_doc)
        return;
    m_doc->RemoveView(this);
    auto &items = m_doc->viewItems();
    if (!items.empty() && items[0].view == this) {
        items[0].view = nullptr;
        for (KCDocView *v : m_doc->views())
            if (v->isDataView()) {
                items[0].view = v;
                break;
            }
    }
}

void KCDataView::OnInitialUpdate()
{
    m_model.OnInitialUpdate();
    syncScrollBars();
    viewport()->update();
}

bool KCDataView::SetBufferLayoutView(const std::string &layoutName)
{
    const bool wasFuseMap = m_model.isFuseMapLayout();
    if (!m_model.SetBufferLayoutView(layoutName))
        return false;
    // The fuse-map layout counts another checksum; the status bar must show the one that fits.
    const bool isFuseMap = m_model.isFuseMapLayout();
    if (wasFuseMap != isFuseMap && isChecksumView())
        m_doc->ComputeCheckSum(-1);
    emitCaret();
    return true;
}

std::string KCDataView::GetBufferLayoutName() const
{
    return m_model.GetBufferLayoutName();
}

void KCDataView::OnUpdate(KCDocView *sender, long hint)
{
    // The model already knows what it changed itself.
    if (sender == &m_model)
        return;
    m_model.OnUpdate(sender, hint);
}

void KCDataView::InitTextMetrics()
{
    m_renderer.setFont(m_pFont ? *m_pFont : QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_model.InitTextMetrics(m_renderer.charWidth(), m_renderer.linePitch());
    m_model.OnSize(viewport()->width(), viewport()->height());
    viewport()->update();
}

void KCDataView::SetScrollMode(int mode, int a, int b)
{
    m_model.SetScrollMode(mode, a, b);
}

void KCDataView::OnSetFocus()
{
    m_model.OnSetFocus();
    m_caretOn = true;
    if (m_blinkTimer.interval() > 0)
        m_blinkTimer.start();
}

void KCDataView::OnKillFocus()
{
    m_blinkTimer.stop();
    m_model.OnKillFocus();
}

bool KCDataView::isChecksumView() const
{
    return m_doc && !m_doc->viewItems().empty() && m_doc->viewItems()[0].view == this;
}

QString KCDataView::caretAddressText() const
{
    const KCDataViewLayout *l = m_model.GetBufferLayoutView();
    const TAG_VIEW_POSITION c = m_model.caret();
    if (!l || !c.isValid() || c.address < 0)
        return QString();
    const QChar zero(QLatin1Char('0'));
    if (l->kind() == KCDataViewLayout::Kind::Words)
        return QString::number(c.address >> WordAddressShift, HexBase)
            .toUpper()
            .rightJustified(PlainAddressDigits, zero);
    // Count as the row's address column does: its base, digits, scale and display offset.
    for (const TAG_X_LAYOUT &cell : l->blocks(LAYOUT_BODY)[static_cast<size_t>(c.block)].cells) {
        if (cell.kind != XL_ADDRESS_HEX && cell.kind != XL_ADDRESS_DEC)
            continue;
        const int64_t scaled =
            cell.scale == 1.0f ? c.address : static_cast<int64_t>(static_cast<double>(c.address) * cell.scale);
        const uint32_t value = static_cast<uint32_t>(scaled + cell.displayOffset);
        const int base = cell.kind == XL_ADDRESS_HEX ? HexBase : DecimalBase;
        return QString::number(value, base).toUpper().rightJustified(cell.digits, zero);
    }
    return QString::number(c.address, HexBase).toUpper().rightJustified(PlainAddressDigits, zero);
}

int KCDataView::caretScreenLine() const
{
    const KCDataViewLayout *l = m_model.GetBufferLayoutView();
    const TAG_VIEW_POSITION c = m_model.caret();
    if (!l || !c.isValid() || l->cursor().isMarked())
        return -1;
    const int64_t offset = c.line - m_model.firstVisibleLine();
    // The partly visible line under the last whole one counts too.
    if (offset < 0 || offset > m_model.visibleLines())
        return -1;
    return m_model.topLineCount() + static_cast<int>(offset);
}

QRect KCDataView::caretRect() const
{
    int column = 0, line = 0;
    if (!m_model.caretScreenPosition(column, line))
        return QRect();
    return QRect(column * m_renderer.charWidth(), line * m_renderer.linePitch(), m_renderer.charWidth(),
                 m_renderer.linePitch());
}

QRect KCDataView::bodyRect() const
{
    const int pitch = m_renderer.linePitch();
    return QRect(0, m_model.topLineCount() * pitch, viewport()->width(), m_model.visibleLines() * pitch);
}

void KCDataView::paintRows(QPainter &p, const QRect &area)
{
    KCDataViewRenderer::Caret caret;
    caret.visible = m_caretOn && m_model.isCaretShown() && m_model.caretScreenPosition(caret.column, caret.line);
    caret.bar = m_model.isInsertMode();
    m_renderer.paint(p, m_model, area, caretScreenLine(), caret);
}

void KCDataView::paintEvent(QPaintEvent *event)
{
    // The backing store double-buffers: the frame reaches the screen in one copy.
    QPainter p(viewport());
    paintRows(p, event->rect());
}

void KCDataView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    m_model.OnSize(viewport()->width(), viewport()->height());
}

void KCDataView::syncScrollBars()
{
    const bool wasSyncing = m_syncingBars;
    m_syncingBars = true;
    const int64_t begin = m_model.GetScrollLineBegin();
    const int64_t span = std::max<int64_t>(m_model.maxFirstLine() - begin, 0);
    m_lineScale = span > INT_MAX ? span / INT_MAX + 1 : 1;
    QScrollBar *v = verticalScrollBar();
    v->setRange(0, static_cast<int>(span / m_lineScale));
    v->setSingleStep(1);
    v->setPageStep(static_cast<int>(std::max<int64_t>(m_model.visibleLines() / m_lineScale, 1)));
    v->setValue(static_cast<int>((m_model.firstVisibleLine() - begin) / m_lineScale));

    const int columnBegin = m_model.GetxScrollBeginPos();
    QScrollBar *h = horizontalScrollBar();
    h->setRange(0, std::max(m_model.maxFirstColumn() - columnBegin, 0));
    h->setSingleStep(1);
    h->setPageStep(std::max(m_model.visibleColumns(), 1));
    h->setValue(m_model.firstVisibleColumn() - columnBegin);
    m_syncingBars = wasSyncing;
}

void KCDataView::scrollContentsBy(int dx, int dy)
{
    // The model scrolls and the next paint draws the new rows; no pixels are moved here.
    if (m_syncingBars)
        return;
    if (dy != 0) {
        const int64_t line = m_model.GetScrollLineBegin() + verticalScrollBar()->value() * m_lineScale;
        if (line != m_model.firstVisibleLine())
            m_model.scrollToLine(line);
    }
    if (dx != 0) {
        const int column = m_model.GetxScrollBeginPos() + horizontalScrollBar()->value();
        if (column != m_model.firstVisibleColumn())
            m_model.scrollToColumn(column);
    }
}

void KCDataView::dataViewChanged(unsigned changes)
{
    if (changes & (ChangedRange | ChangedScroll))
        syncScrollBars();
    if (changes & ChangedModified)
        emit modifiedChanged(m_doc && m_doc->IsModified());
    if (changes & ChangedCaret) {
        m_caretOn = true;
        if (m_blinkTimer.isActive())
            m_blinkTimer.start();
        emitCaret();
    }
    if (changes & (ChangedRows | ChangedScroll | ChangedRange | ChangedCaret))
        viewport()->update();
}

void KCDataView::emitCaret()
{
    const TAG_VIEW_POSITION c = m_model.caret();
    if (!c.isValid())
        return;
    const std::string layout = m_model.GetBufferLayoutName();
    if (c.address == m_lastCaretAddress && layout == m_lastCaretLayout)
        return;
    m_lastCaretAddress = c.address;
    m_lastCaretLayout = layout;
    emit caretMoved(static_cast<quint64>(c.address), caretAddressText());
}

void KCDataView::blink()
{
    m_caretOn = !m_caretOn;
    const QRect r = caretRect();
    if (!r.isEmpty())
        viewport()->update(r);
}

void KCDataView::keyPressEvent(QKeyEvent *event)
{
    const Qt::KeyboardModifiers mods = event->modifiers();
    unsigned modifiers = KCDataViewModel::NoModifier;
    if (mods & Qt::ShiftModifier)
        modifiers |= KCDataViewModel::ShiftModifier;
    if (mods & Qt::ControlModifier)
        modifiers |= KCDataViewModel::ControlModifier;

    bool isCaretKey = true;
    KCDataViewModel::Key key = KCDataViewModel::KeyLeft;
    switch (event->key()) {
    case Qt::Key_Left: key = KCDataViewModel::KeyLeft; break;
    case Qt::Key_Right: key = KCDataViewModel::KeyRight; break;
    case Qt::Key_Up: key = KCDataViewModel::KeyUp; break;
    case Qt::Key_Down: key = KCDataViewModel::KeyDown; break;
    case Qt::Key_PageUp: key = KCDataViewModel::KeyPageUp; break;
    case Qt::Key_PageDown: key = KCDataViewModel::KeyPageDown; break;
    case Qt::Key_Home: key = KCDataViewModel::KeyHome; break;
    case Qt::Key_End: key = KCDataViewModel::KeyEnd; break;
    case Qt::Key_Backspace: key = KCDataViewModel::KeyBackspace; break;
    case Qt::Key_Tab: key = KCDataViewModel::KeyTab; break;
    case Qt::Key_Backtab:
        key = KCDataViewModel::KeyTab;
        modifiers |= KCDataViewModel::ShiftModifier;
        break;
    case Qt::Key_Insert:
        // Shift+Insert and Ctrl+Insert are clipboard shortcuts, not the mode toggle.
        isCaretKey = !(mods & (Qt::ShiftModifier | Qt::ControlModifier));
        key = KCDataViewModel::KeyInsert;
        break;
    default: isCaretKey = false; break;
    }
    if (isCaretKey) {
        const bool wasInsert = m_model.isInsertMode();
        if (m_model.OnKeyDown(key, modifiers)) {
            if (m_model.isInsertMode() != wasInsert)
                emit insertModeChanged(m_model.isInsertMode());
            event->accept();
            return;
        }
    }

    const QString text = event->text();
    if (!text.isEmpty() && !(mods & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        for (const QChar ch : text)
            m_model.OnChar(ch.unicode());
        event->accept();
        return;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

bool KCDataView::focusNextPrevChild(bool)
{
    // Tab and Shift+Tab move the caret between groups instead of leaving the view.
    return false;
}

void KCDataView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const QPoint pos = event->position().toPoint();
    m_model.OnLButtonDown(pos.x(), pos.y());
    event->accept();
}

void KCDataView::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    m_dragPos = event->position().toPoint();
    followDrag();
    if (bodyRect().contains(m_dragPos) || !m_model.GetBufferLayoutView() ||
        !m_model.GetBufferLayoutView()->cursor().isTracking())
        m_dragTimer.stop();
    else if (!m_dragTimer.isActive())
        m_dragTimer.start();
}

void KCDataView::followDrag()
{
    // Past an edge the mark follows the nearest row and column still in the window.
    const QRect body = bodyRect();
    if (body.isEmpty())
        return;
    const int x = std::clamp(m_dragPos.x(), body.left(), body.right());
    const int y = std::clamp(m_dragPos.y(), body.top(), body.bottom());
    m_model.OnMouseMove(x, y);
}

void KCDataView::dragStep()
{
    const KCDataViewLayout *l = m_model.GetBufferLayoutView();
    const QRect body = bodyRect();
    if (!l || !l->cursor().isTracking() || body.isEmpty()) {
        m_dragTimer.stop();
        return;
    }
    const int pitch = m_renderer.linePitch();
    const int width = m_renderer.charWidth();
    int lines = 0, columns = 0;
    if (m_dragPos.y() < body.top())
        lines = -stepsBeyond(body.top() - m_dragPos.y(), pitch);
    else if (m_dragPos.y() > body.bottom())
        lines = stepsBeyond(m_dragPos.y() - body.bottom(), pitch);
    if (m_dragPos.x() < body.left())
        columns = -stepsBeyond(body.left() - m_dragPos.x(), width);
    else if (m_dragPos.x() > body.right())
        columns = stepsBeyond(m_dragPos.x() - body.right(), width);
    if (lines)
        m_model.scrollLines(lines);
    if (columns)
        m_model.scrollColumns(columns);
    followDrag();
}

void KCDataView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mouseReleaseEvent(event);
        return;
    }
    m_dragTimer.stop();
    m_model.OnLButtonUp();
    event->accept();
}

void KCDataView::wheelEvent(QWheelEvent *event)
{
    // Touchpads send fractions of a notch; they add up until a whole one is reached.
    m_wheelDelta += event->angleDelta().y();
    const int notches = m_wheelDelta / WheelNotch;
    m_wheelDelta -= notches * WheelNotch;
    if (notches != 0)
        m_model.OnMouseWheel(notches, (event->modifiers() & Qt::ControlModifier) ? KCDataViewModel::ControlModifier
                                                                                  : KCDataViewModel::NoModifier);
    event->accept();
}

void KCDataView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    OnSetFocus();
}

void KCDataView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    // A menu opening over the view (Edit > Copy) must not drop the mark it acts on.
    if (event->reason() == Qt::PopupFocusReason)
        return;
    OnKillFocus();
}

void KCDataView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        loadSystemColours();
        viewport()->update();
    }
}

void KCDataView::loadSystemColours()
{
    const QPalette &pal = palette();
    KCIndexedColor::setSystemColors(rgbOf(pal.color(QPalette::Text)), rgbOf(pal.color(QPalette::Base)),
                                    rgbOf(pal.color(QPalette::Disabled, QPalette::Text)));
    m_renderer.loadColours();
}
