#include "search/KCEdit_Base.h"

#include "KCClipboardClass.h"
#include "view/KCEditColumns.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace {

// The client area is shrunk by this at top and bottom.
constexpr int ClientShrink = 2;
constexpr int CaretWidth = 2;
constexpr int MinimumChars = 16;
// Characters beyond one byte's codes cannot be typed into a pattern.
constexpr ushort LastByteCode = 0xFF;
constexpr ushort FirstPrintable = 0x20;

} // namespace

KCEdit_Base::KCEdit_Base(std::unique_ptr<KCEditFieldModel> model, QWidget *parent)
    : QFrame(parent), m_model(std::move(model))
{
    setObjectName(WindowClassName);
    setProperty(WindowClassProperty, WindowClassName);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setContentsMargins(0, ClientShrink, 0, ClientShrink);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    if (parent)
        setFont(parent->font());
    setMinimumWidth(MinimumChars * fontMetrics().horizontalAdvance(QLatin1Char('0')));
    setMinimumHeight(fontMetrics().height() + 2 * ClientShrink + 2 * frameWidth());
    m_model->setRepaint([this] { update(); });
}

KCEdit_Base::~KCEdit_Base() = default;

int KCEdit_Base::charWidth() const
{
    return std::max(1, fontMetrics().horizontalAdvance(QLatin1Char('0')));
}

int KCEdit_Base::cellWidth() const
{
    return m_model->columnsPerByte() * charWidth() + cellPadding();
}

int KCEdit_Base::xOfColumn(int column) const
{
    const int cpb = m_model->columnsPerByte();
    return contentsRect().left() + slotX(static_cast<int>(KCEditColumns::floorDiv(column, cpb))) +
           KCEditColumns::floorMod(column, cpb) * charWidth();
}

int KCEdit_Base::columnAt(int x) const
{
    const int cpb = m_model->columnsPerByte();
    const int rel = x - contentsRect().left();
    if (rel < 0)
        return -1;
    int slot = 0;
    while (slotX(slot + 1) <= rel)
        ++slot;
    const int within = std::min(cpb - 1, (rel - slotX(slot)) / charWidth());
    return slot * cpb + within;
}

int KCEdit_Base::visibleColumns() const
{
    int count = 0;
    while (slotX(count + 1) <= contentsRect().width())
        ++count;
    return count * m_model->columnsPerByte();
}

void KCEdit_Base::paintEvent(QPaintEvent *event)
{
    QFrame::paintEvent(event);
    QPainter p(this);
    const QRect area = contentsRect();
    p.setClipRect(area);
    const KCEditPatternState &state = m_model->state();
    const int cpb = m_model->columnsPerByte();
    const int textTop = area.top();
    const int h = area.height();
    for (int slot = 0; slotX(slot) < area.width(); ++slot) {
        const int column = slot * cpb;
        const int64_t index = m_model->indexOfColumn(column);
        const int x = xOfColumn(column);
        if (index < 0 || index >= state.size())
            continue; // the background brush shows, also in the cell after the last byte
        const QRect textRect(x, textTop, cpb * charWidth(), h);
        if (state.isMarked(index)) {
            p.fillRect(QRect(x, textTop, slotX(slot + 1) - slotX(slot), h), palette().brush(QPalette::Highlight));
            p.fillRect(textRect, Qt::white);
            p.setPen(Qt::black);
        } else {
            p.setPen(palette().color(QPalette::Text));
        }
        p.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter, cellText(state.bytes()[static_cast<size_t>(index)]));
    }
    if (hasFocus())
        p.fillRect(QRect(xOfColumn(m_model->caretColumn()), textTop, CaretWidth, h), palette().color(QPalette::Text));
}

void KCEdit_Base::afterInput()
{
    m_model->ensureCaretVisible(visibleColumns());
    update();
}

void KCEdit_Base::keyPressEvent(QKeyEvent *event)
{
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Cut) ||
        event->matches(QKeySequence::Paste) || event->matches(QKeySequence::Undo)) {
        OnCommand(event->matches(QKeySequence::Copy)  ? ID_EDIT_COPY
                  : event->matches(QKeySequence::Cut) ? ID_EDIT_CUT
                  : event->matches(QKeySequence::Paste) ? ID_EDIT_PASTE
                                                        : ID_EDIT_UNDO);
        return;
    }
    KCEditFieldModel::Key key;
    switch (event->key()) {
    case Qt::Key_Left: key = KCEditFieldModel::KeyLeft; break;
    case Qt::Key_Right: key = KCEditFieldModel::KeyRight; break;
    case Qt::Key_Home: key = KCEditFieldModel::KeyHome; break;
    case Qt::Key_End: key = KCEditFieldModel::KeyEnd; break;
    case Qt::Key_Backspace: key = KCEditFieldModel::KeyBackspace; break;
    case Qt::Key_Delete: key = KCEditFieldModel::KeyDelete; break;
    case Qt::Key_Insert: key = KCEditFieldModel::KeyInsert; break;
    default: {
        const QString text = event->text();
        // Enter, Escape and control keys go on to the dialog (its default button, Close).
        const bool control = text.isEmpty() || text.front().unicode() < FirstPrintable;
        if (control || (event->modifiers() & Qt::ControlModifier)) {
            QFrame::keyPressEvent(event);
            return;
        }
        for (QChar c : text)
            if (c.unicode() <= LastByteCode)
                m_model->OnChar(c.unicode());
        afterInput();
        return;
    }
    }
    m_model->OnKeyDown(key, shift);
    afterInput();
}

void KCEdit_Base::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_model->clickAt(columnAt(event->position().toPoint().x()));
        update();
    }
    QFrame::mousePressEvent(event);
}

void KCEdit_Base::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        m_model->dragTo(columnAt(event->position().toPoint().x()));
}

bool KCEdit_Base::isCommandEnabled(int id) const
{
    switch (id) {
    case ID_EDIT_UNDO: return m_model->canUndo();
    case ID_EDIT_CUT:
    case ID_EDIT_COPY: return m_model->canCutCopy();
    case ID_EDIT_PASTE: return KCClipboardClass().isEmpty() == 0;
    default: return false;
    }
}

bool KCEdit_Base::OnCommand(int id)
{
    KCClipboardClass clipboard;
    bool done = false;
    switch (id) {
    case ID_EDIT_UNDO: done = m_model->undo(); break;
    case ID_EDIT_CUT: done = m_model->cut(clipboard) > 0; break;
    case ID_EDIT_COPY: done = m_model->copy(clipboard) > 0; break;
    case ID_EDIT_PASTE: done = m_model->paste(clipboard) > 0; break;
    default: return false;
    }
    afterInput();
    return done;
}

void KCEdit_Base::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    const std::pair<int, QString> items[] = {
        {ID_EDIT_UNDO, tr("&Undo")}, {ID_EDIT_CUT, tr("Cu&t")}, {ID_EDIT_COPY, tr("&Copy")}, {ID_EDIT_PASTE, tr("&Paste")}};
    for (const auto &item : items) {
        QAction *a = menu.addAction(item.second);
        a->setData(item.first);
        a->setEnabled(isCommandEnabled(item.first));
    }
    if (QAction *chosen = menu.exec(event->globalPos()))
        OnCommand(chosen->data().toInt());
}

void KCEdit_Base::focusInEvent(QFocusEvent *event)
{
    QFrame::focusInEvent(event);
    update();
}

void KCEdit_Base::focusOutEvent(QFocusEvent *event)
{
    QFrame::focusOutEvent(event);
    update();
}
