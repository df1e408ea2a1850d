#include "view/KCDataViewModel.h"

#include "doc/KCDataDoc.h"
#include "view/KCSearchHits.h"
#include "doc/KCLayoutNames.h"
#include "doc/KCSelectDeviceCtrlBase.h"
#include "doc/KCLayoutNames.h"
#include "view/KCDataViewListener.h"
#include "view/KCMouseController.h"
#include "view/KCNavigationController.h"
#include "view/KCValueEditController.h"

#include <algorithm>

namespace {

// Bringing the caret back into view: closer than NearLines scrolls line by line, closer
// than JumpLines page by page, anything further jumps there at once.
constexpr int64_t NearLines = 11;
constexpr int64_t JumpLines = 101;
constexpr int NearColumns = 6;

} // namespace

KCDataViewModel::KCDataViewModel(KCDataDoc *doc, KCMainProgDataExChange *host)
    : m_host(host), m_layouts(host), m_navigation(std::make_unique<KCNavigationController>(*this)),
      m_valueEdit(std::make_unique<KCValueEditController>(*this)), m_mouse(std::make_unique<KCMouseController>(*this))
{
    m_layouts.defineStandardLayouts(host ? host->GetDefaultBufferSize() : 0);
    setDocument(doc);
}

KCDataViewModel::~KCDataViewModel()
{
    if (m_doc && m_attached)
        m_doc->RemoveView(this);
}

void KCDataViewModel::setDocument(KCDataDoc *doc, bool attach)
{
    if (m_doc && m_attached)
        m_doc->RemoveView(this);
    m_doc = doc;
    m_attached = doc && attach;
    if (m_attached)
        m_doc->AddView(this);
    OnUpdate(nullptr, DOCHINT_ALL);
    // A view opened on a document bound to a device shows the device's layout.
    if (m_doc && m_doc->HasDeviceX())
        applyDeviceViews();
}

uint64_t KCDataViewModel::bufferLimit() const
{
    return m_doc ? m_doc->GetBufferSize() : 0;
}

bool KCDataViewModel::isByteModified(int64_t address) const
{
    return m_doc && address >= 0 && m_doc->changedMap().contains(uint64_t(address));
}

uint64_t KCDataViewModel::modifiedByteCount() const
{
    return m_doc ? m_doc->changedMap().countIn(0, UINT64_MAX) : 0;
}

void KCDataViewModel::notify(unsigned changes)
{
    if (m_listener && changes)
        m_listener->dataViewChanged(changes);
}

void KCDataViewModel::OnUpdate(KCDocView *, long hint)
{
    // Where the window stands is the host's business; the rows stay as they are.
    if (hint == DOCHINT_PLACEMENT)
        return;
    if (hint == DOCHINT_MODIFIED_FLAG) {
        // Saved: the buffer matches its file again.
        notify(KCDataViewListener::ChangedModified | KCDataViewListener::ChangedRows);
        return;
    }
    // Found bytes stay coloured only while the bytes are those that were searched.
    m_hits.reset();
    if (hint == DOCHINT_DATA) {
        notify(KCDataViewListener::ChangedRows);
        return;
    }
    // Anything else may have replaced the buffer: follow its size.
    if (m_doc)
        m_layouts.resizeStandardLayouts(m_doc->GetBufferSize());
    if (hint == DOCHINT_DEVICE && m_doc) {
        applyDeviceViews();
        return;
    }
    layoutsChanged();
}

void KCDataViewModel::applyDeviceViews()
{
    // The device's own layouts replace those of a device before; the first one is shown.
    const KCSelectDeviceCtrlBase *control = m_doc->SelectDeviceCtrl();
    std::string show = LAYOUT_BYTEVIEW;
    if (control && !control->dataViews().empty()) {
        for (const KCDataViewControl &v : control->dataViews()) {
            if (v.layoutName() == LAYOUT_BYTEVIEW_OFFSET)
                m_layouts.DefineByteBufferLayoutV2(v.layoutName(), v.scrollFlags(), v.first(), v.last(), v.addressOffset());
            else if (v.layoutName() == LAYOUT_BYTEVIEW_PIC18F)
                m_layouts.DefineBytePic18FLayout(v.layoutName(), v.scrollFlags());
        }
        show = control->dataViews().front().layoutName();
    }
    layoutsChanged();
    if (GetBufferLayoutIndex(show) >= 0)
        SetBufferLayoutView(show);
}

void KCDataViewModel::layoutsChanged()
{
    revalidate();
    updateBorder();
    clampScroll();
    notify(KCDataViewListener::ChangedRows | KCDataViewListener::ChangedRange | KCDataViewListener::ChangedScroll |
           KCDataViewListener::ChangedCaret);
}

void KCDataViewModel::revalidate()
{
    const uint64_t limit = bufferLimit();
    for (int i = 0; i < m_layouts.count(); ++i) {
        KCDataViewLayout &l = *m_layouts.layout(i);
        if (l.cursor().caret().isValid() || i == m_layouts.currentIndex())
            l.cursor().setCaret(l.validated(l.cursor().caret(), limit));
        if (l.cursor().markAnchor().isValid() || l.cursor().markEnd().isValid()) {
            const TAG_VIEW_POSITION anchor = l.validated(l.cursor().markAnchor(), limit);
            const TAG_VIEW_POSITION end = l.validated(l.cursor().markEnd(), limit);
            l.cursor().setMark(anchor, end, anchor.isValid() && end.isValid() ? l.cursor().markState() : MARKSTATE_NONE);
        }
    }
}

std::string KCDataViewModel::GetBufferLayoutName() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l ? l->name() : std::string();
}

bool KCDataViewModel::isFuseMapLayout() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l && l->kind() == KCDataViewLayout::Kind::Bits;
}

int KCDataViewModel::SetBufferLayoutView(const std::string &name)
{
    return SetBufferLayoutView(m_layouts.GetBufferLayoutIndex(name));
}

int KCDataViewModel::SetBufferLayoutView(int index)
{
    const KCDataViewLayout *old = GetBufferLayoutView();
    if (!m_layouts.SetBufferLayoutView(index))
        return 0;
    KCDataViewLayout *now = GetBufferLayoutView();
    if (now != old) {
        // The layout brings back its own caret and mark; a first visit starts on its first cell.
        now->cursor().setTracking(false);
        now->cursor().setCaret(now->validated(now->cursor().caret(), bufferLimit()));
        updateBorder();
        clampScroll();
        m_steps = ScrollSteps();
        ensureCaretVisible();
        notify(KCDataViewListener::ChangedRows | KCDataViewListener::ChangedRange | KCDataViewListener::ChangedScroll |
               KCDataViewListener::ChangedCaret);
    }
    return 1;
}

void KCDataViewModel::ClearLA()
{
    m_layouts.ClearLA();
    layoutsChanged();
}

void KCDataViewModel::DefineByteBufferLayoutV2(const std::string &name, int scrollFlags, int64_t first, int64_t last,
                                               int32_t addressOffset)
{
    m_layouts.DefineByteBufferLayoutV2(name, scrollFlags, first, last, addressOffset);
    layoutsChanged();
}

void KCDataViewModel::DefineBytePic18FLayout(const std::string &name, int scrollFlags)
{
    m_layouts.DefineBytePic18FLayout(name, scrollFlags);
    layoutsChanged();
}

void KCDataViewModel::InitTextMetrics(int charWidth, int linePitch)
{
    m_charWidth = charWidth;
    m_linePitch = linePitch;
    m_layouts.setTextMetrics(charWidth, linePitch);
}

void KCDataViewModel::OnSize(int width, int height)
{
    if (m_charWidth <= 0 || m_linePitch <= 0)
        return;
    setViewportSize(std::max(width, 0) / m_charWidth, std::max(height, 0) / m_linePitch);
}

void KCDataViewModel::setViewportSize(int columns, int lines)
{
    m_viewColumns = std::max(columns, 0);
    m_viewLines = std::max(lines, 0);
    updateBorder();
    clampScroll();
    notify(KCDataViewListener::ChangedRange | KCDataViewListener::ChangedScroll | KCDataViewListener::ChangedRows);
}

int KCDataViewModel::topLineCount() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l ? static_cast<int>(l->lineCount(LAYOUT_TOP)) : 0;
}

int64_t KCDataViewModel::bodyLineCount() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l ? l->lineCount(LAYOUT_BODY) : 0;
}

int KCDataViewModel::widestRow() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l ? l->widestRow() : 0;
}

int KCDataViewModel::visibleLines() const
{
    return std::max(m_viewLines - topLineCount(), 0);
}

int64_t KCDataViewModel::maxFirstLine() const
{
    return std::max(m_border.lineBegin, m_border.lineEnd - visibleLines() + 1);
}

int KCDataViewModel::maxFirstColumn() const
{
    return std::max(m_border.columnBegin, m_border.columnEnd - m_viewColumns + 1);
}

void KCDataViewModel::updateBorder()
{
    m_border.lineBegin = 0;
    m_border.lineEnd = bodyLineCount() - 1;
    if (m_scrollMode == SCROLLMODE_DYNAMIC && m_scrollA >= 0 && m_scrollB >= m_scrollA) {
        m_border.lineBegin = std::min<int64_t>(m_scrollA, std::max<int64_t>(m_border.lineEnd, 0));
        m_border.lineEnd = std::min<int64_t>(m_scrollB, m_border.lineEnd);
    }
    m_border.columnBegin = 0;
    m_border.columnEnd = widestRow() - 1;
    m_border.top = topLineCount();
    m_border.bottom = m_border.top + visibleLines() - 1;
}

void KCDataViewModel::SetScrollMode(int mode, int a, int b)
{
    m_scrollMode = mode;
    if (mode == SCROLLMODE_DYNAMIC) {
        m_scrollA = a;
        m_scrollB = b;
    }
    updateBorder();
    clampScroll();
    notify(KCDataViewListener::ChangedRange | KCDataViewListener::ChangedScroll);
}

void KCDataViewModel::clampScroll()
{
    m_firstLine = std::clamp(m_firstLine, m_border.lineBegin, maxFirstLine());
    m_firstColumn = std::clamp(m_firstColumn, m_border.columnBegin, maxFirstColumn());
}

void KCDataViewModel::setFirstLine(int64_t line)
{
    m_firstLine = std::clamp(line, m_border.lineBegin, maxFirstLine());
}

void KCDataViewModel::setFirstColumn(int column)
{
    m_firstColumn = std::clamp(column, m_border.columnBegin, maxFirstColumn());
}

void KCDataViewModel::scrollToLine(int64_t line)
{
    setFirstLine(line);
    notify(KCDataViewListener::ChangedScroll | KCDataViewListener::ChangedRows | KCDataViewListener::ChangedCaret);
}

void KCDataViewModel::scrollLines(int64_t delta)
{
    scrollToLine(m_firstLine + delta);
}

void KCDataViewModel::scrollPages(int64_t pages)
{
    scrollToLine(m_firstLine + pages * std::max(visibleLines(), 1));
}

void KCDataViewModel::scrollToColumn(int column)
{
    setFirstColumn(column);
    notify(KCDataViewListener::ChangedScroll | KCDataViewListener::ChangedRows | KCDataViewListener::ChangedCaret);
}

void KCDataViewModel::scrollColumns(int delta)
{
    scrollToColumn(m_firstColumn + delta);
}

void KCDataViewModel::scrollColumnPages(int pages)
{
    scrollToColumn(m_firstColumn + pages * std::max(m_viewColumns, 1));
}

void KCDataViewModel::ensureCaretVisible()
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    if (!l || !l->cursor().caret().isValid())
        return;
    const int64_t line = l->cursor().caret().line;
    const int64_t page = visibleLines();
    while (page > 0) {
        const int64_t before = m_firstLine;
        const int64_t last = m_firstLine + page - 1;
        if (line > last || line < m_firstLine) {
            const bool down = line > last;
            const int64_t distance = down ? line - last : m_firstLine - line;
            if (distance >= JumpLines) {
                // Far away: the window keeps its height and ends (or starts) at the caret line.
                setFirstLine(down ? line - page + 1 : line);
                m_steps.jumped = true;
                break;
            }
            const int64_t step = distance < NearLines ? 1 : page;
            setFirstLine(m_firstLine + (down ? step : -step));
            ++(step == 1 ? m_steps.lines : m_steps.pages);
        } else {
            break;
        }
        if (m_firstLine == before)
            break;
    }

    const int column = l->cursor().caret().column;
    const int width = m_viewColumns;
    while (width > 0) {
        const int before = m_firstColumn;
        if (column < m_firstColumn || column >= m_firstColumn + width) {
            const bool right = column >= m_firstColumn + width;
            const int distance = right ? column - (m_firstColumn + width) + 1 : m_firstColumn - column;
            const int step = distance < NearColumns ? 1 : width;
            setFirstColumn(m_firstColumn + (right ? step : -step));
            ++(step == 1 ? m_steps.columns : m_steps.columnPages);
        } else {
            break;
        }
        if (m_firstColumn == before)
            break;
    }
}

void KCDataViewModel::renderScreenLine(int screenLine, TAG_VIEW_ROW &row) const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    if (!l || screenLine < 0) {
        row = TAG_VIEW_ROW();
        return;
    }
    const int top = topLineCount();
    const LAYOUT_LIST list = screenLine < top ? LAYOUT_TOP : LAYOUT_BODY;
    const int64_t line = screenLine < top ? screenLine : m_firstLine + (screenLine - top);
    int64_t low = 1, high = 0;
    l->cursor().markRange(low, high);
    const cByteBuffer *buf = m_doc ? &m_doc->AlgoParam().buffer(0) : nullptr;
    l->renderRow(list, line, buf ? buf->data() : nullptr, buf ? buf->size() : 0, low, high, row,
                 m_doc && !m_doc->changedMap().isEmpty() ? &m_doc->changedMap() : nullptr,
                 m_doc ? &m_doc->dataMap() : nullptr, m_hits.get());
}

void KCDataViewModel::setSearchHits(std::shared_ptr<const KCSearchHits> hits)
{
    m_hits = std::move(hits);
    notify(KCDataViewListener::ChangedRows);
}

bool KCDataViewModel::isCaretShown() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return m_focus && l && l->cursor().caret().isValid() && l->cursor().markState() == MARKSTATE_NONE;
}

bool KCDataViewModel::caretScreenPosition(int &column, int &line) const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    if (!l || !l->cursor().caret().isValid())
        return false;
    const TAG_VIEW_POSITION &c = l->cursor().caret();
    if (c.line < m_firstLine || c.line >= m_firstLine + visibleLines() || c.column < m_firstColumn ||
        c.column >= m_firstColumn + m_viewColumns)
        return false;
    column = c.column - m_firstColumn;
    line = topLineCount() + static_cast<int>(c.line - m_firstLine);
    return true;
}

void KCDataViewModel::OnInitialUpdate()
{
    if (KCDataViewLayout *l = GetBufferLayoutView())
        l->cursor().setCaret(l->firstPosition(bufferLimit()));
    SetScrollMode(SCROLLMODE_STATIC, -1, -1);
    notify(KCDataViewListener::ChangedRows | KCDataViewListener::ChangedCaret);
}

void KCDataViewModel::OnSetFocus()
{
    m_focus = true;
    notify(KCDataViewListener::ChangedCaret);
}

void KCDataViewModel::OnKillFocus()
{
    m_focus = false;
    dropMark();
    notify(KCDataViewListener::ChangedCaret | KCDataViewListener::ChangedRows);
}

TAG_VIEW_POSITION KCDataViewModel::caret() const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l ? l->cursor().caret() : TAG_VIEW_POSITION();
}

bool KCDataViewModel::markRange(int64_t &low, int64_t &high) const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    return l && l->cursor().markRange(low, high);
}

void KCDataViewModel::dropMark()
{
    KCDataViewLayout *l = GetBufferLayoutView();
    if (!l || l->cursor().markState() == MARKSTATE_NONE)
        return;
    l->cursor().setMarkState(MARKSTATE_NONE);
    notify(KCDataViewListener::ChangedRows | KCDataViewListener::ChangedCaret);
}

bool KCDataViewModel::setCaretAddress(int64_t address)
{
    KCDataViewLayout *l = GetBufferLayoutView();
    if (!l)
        return false;
    const TAG_VIEW_POSITION p = l->positionOfAddress(address, bufferLimit());
    if (!p.isValid())
        return false;
    m_steps = ScrollSteps();
    dropMark();
    moveCaret(p);
    return true;
}

bool KCDataViewModel::setMarkRange(int64_t low, int64_t high)
{
    KCDataViewLayout *l = GetBufferLayoutView();
    if (!l)
        return false;
    const TAG_VIEW_POSITION a = l->positionOfAddress(low, bufferLimit());
    const TAG_VIEW_POSITION e = l->positionOfAddress(high, bufferLimit());
    if (!a.isValid() || !e.isValid())
        return false;
    m_steps = ScrollSteps();
    l->cursor().setMark(a, e, MARKSTATE_MARKED);
    moveCaret(e);
    return true;
}

void KCDataViewModel::moveCaret(const TAG_VIEW_POSITION &to)
{
    KCDataViewLayout *l = GetBufferLayoutView();
    l->cursor().setCaret(to);
    const int64_t line = m_firstLine;
    const int column = m_firstColumn;
    ensureCaretVisible();
    unsigned changes = KCDataViewListener::ChangedCaret;
    if (line != m_firstLine || column != m_firstColumn)
        changes |= KCDataViewListener::ChangedScroll | KCDataViewListener::ChangedRows;
    notify(changes);
}







TAG_VIEW_POSITION KCDataViewModel::hitTestGrid(int screenColumn, int screenLine) const
{
    const KCDataViewLayout *l = GetBufferLayoutView();
    const int top = topLineCount();
    if (!l || screenColumn < 0 || screenLine < top)
        return TAG_VIEW_POSITION();
    return l->positionAt(m_firstLine + (screenLine - top), m_firstColumn + screenColumn, bufferLimit());
}

TAG_VIEW_POSITION KCDataViewModel::hitTest(int x, int y) const
{
    if (m_charWidth <= 0 || m_linePitch <= 0 || x < 0 || y < 0)
        return TAG_VIEW_POSITION();
    return hitTestGrid(x / m_charWidth, y / m_linePitch);
}

bool KCDataViewModel::OnKeyDown(Key key, unsigned modifiers)
{
    KCDataViewLayout *l = GetBufferLayoutView();
    if (!l)
        return false;
    // Keys are ignored while the left button drags a mark.
    if (l->cursor().isTracking())
        return true;
    m_steps = ScrollSteps();
    return m_valueEdit->handleKey(key, modifiers) || m_navigation->handleKey(key, modifiers);
}

bool KCDataViewModel::OnChar(unsigned ch)
{
    return m_valueEdit->handleChar(ch);
}

bool KCDataViewModel::goToDisplayAddress(uint64_t displayAddress)
{
    return m_navigation->goToDisplayAddress(displayAddress);
}

void KCDataViewModel::OnLButtonDown(int x, int y)
{
    m_mouse->press(x, y);
}

void KCDataViewModel::OnMouseMove(int x, int y)
{
    m_mouse->move(x, y);
}

void KCDataViewModel::OnLButtonUp()
{
    m_mouse->release();
}

void KCDataViewModel::OnMouseWheel(int notches, unsigned modifiers)
{
    m_mouse->wheel(notches, modifiers);
}
