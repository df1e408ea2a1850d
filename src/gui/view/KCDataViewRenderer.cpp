#include "KCDataViewRenderer.h"

#include "view/KCDataViewModel.h"
#include "view/KCIndexedColor.h"
#include "view/KCSearchModel.h"

#include <QFontMetrics>
#include <QGlyphRun>
#include <QPainter>
#include <QRect>

#include <algorithm>

namespace {

// How far the fixed top rows lean from the window colour towards the grey pair.
constexpr double HeaderGreyShare = 0.25;
// Width of the insert-mode caret bar in pixels.
constexpr int CaretBarWidth = 2;
// Blank columns between two cells of one colour that are filled with it, so a marked range
// reads as one band across the blanks between bytes, words and bit groups.
constexpr int BridgedGap = 1;
constexpr unsigned char Placeholder = '.';
constexpr unsigned FirstPrintable = 0x20;
constexpr unsigned LastAscii = 0x7E;
constexpr unsigned FirstLatin1Printable = 0xA0;
constexpr QRgb OpaqueAlpha = 0xFF000000u;

// Control codes and the C1 range have no glyph worth showing.
QChar displayChar(unsigned byte)
{
    if ((byte >= FirstPrintable && byte <= LastAscii) || byte >= FirstLatin1Printable)
        return QChar(static_cast<char16_t>(byte));
    return QChar(static_cast<char16_t>(Placeholder));
}

QColor toQColor(uint32_t rgb)
{
    return QColor::fromRgb(OpaqueAlpha | rgb);
}

} // namespace

KCDataViewRenderer::KCDataViewRenderer()
{
    loadColours();
}

void KCDataViewRenderer::setFont(const QFont &font)
{
    m_font = font;
    const QFontMetrics fm(font);
    // A fixed font: the width of a digit is the width of every character.
    m_charWidth = std::max(fm.horizontalAdvance(QLatin1Char('0')), 1);
    m_linePitch = std::max(fm.lineSpacing(), 1);
    m_ascent = fm.ascent();

    QString all(ByteValues, QChar());
    for (int b = 0; b < ByteValues; ++b) {
        m_charOf[b] = displayChar(static_cast<unsigned>(b));
        all[b] = m_charOf[b];
    }
    m_rawFont = QRawFont::fromFont(font);
    m_useGlyphRuns = false;
    if (m_rawFont.isValid()) {
        const QList<quint32> indexes = m_rawFont.glyphIndexesForString(all);
        if (indexes.size() == ByteValues) {
            const quint32 fallback = indexes[Placeholder];
            for (int b = 0; b < ByteValues; ++b)
                m_glyphOf[b] = indexes[b] ? indexes[b] : fallback;
            m_useGlyphRuns = true;
        }
    }
}

void KCDataViewRenderer::loadColours()
{
    KCIndexedColor table;
    uint32_t text = 0, back = 0;
    const auto take = [&](Role role, int index) {
        table.GetColorOf(index, text, back);
        m_text[role] = toQColor(text);
        m_background[role] = toQColor(back);
    };
    take(Normal, KCIndexedColor::Window);
    take(Marked, KCIndexedColor::WhiteOnBlue);
    take(CaretLine, KCIndexedColor::BlackOnLavender);
    take(Modified, KCIndexedColor::BlackOnBrown);
    take(Gap, table.GetIndexOf(KCIndexedColor::GapText, KCIndexedColor::GapBackground));
    take(Hit, table.GetIndexOf(KCSearchModel::HitText, KCSearchModel::HitBackground));
    // Fill on the caret's row keeps the row's background but stays dimmed.
    uint32_t lineText = 0, lineBack = 0;
    table.GetColorOf(KCIndexedColor::BlackOnLavender, lineText, lineBack);
    take(CaretLineGap, table.GetIndexOf(KCIndexedColor::GapText, lineBack));
    table.GetColorOf(KCIndexedColor::Window, text, back);
    table.MixWith(KCIndexedColor::WindowGrey, text, back, HeaderGreyShare);
    m_text[Header] = toQColor(text);
    m_background[Header] = toQColor(back);
}

KCDataViewRenderer::Role KCDataViewRenderer::roleOf(uint8_t state, Role rowRole) const
{
    switch (state) {
    case VCS_MARKED: return Marked;
    case VCS_MODIFIED: return Modified;
    case VCS_HIT: return Hit;
    case VCS_GAP: return rowRole == CaretLine ? CaretLineGap : Gap;
    default: return rowRole;
    }
}

void KCDataViewRenderer::addGlyph(Role role, unsigned char byte, qreal x, qreal baseline)
{
    GlyphBatch &b = m_batches[role];
    if (m_useGlyphRuns)
        b.glyphs.append(m_glyphOf[byte]);
    else
        b.chars.append(m_charOf[byte]);
    b.positions.append(QPointF(x, baseline));
}

void KCDataViewRenderer::flushGlyphs(QPainter &p)
{
    for (int r = 0; r < RoleCount; ++r) {
        GlyphBatch &b = m_batches[r];
        if (b.positions.isEmpty())
            continue;
        p.setPen(m_text[r]);
        if (m_useGlyphRuns) {
            QGlyphRun run;
            run.setRawFont(m_rawFont);
            run.setGlyphIndexes(b.glyphs);
            run.setPositions(b.positions);
            p.drawGlyphRun(QPointF(0, 0), run);
        } else {
            p.setFont(m_font);
            for (qsizetype i = 0; i < b.positions.size(); ++i)
                p.drawText(b.positions[i], QString(b.chars[i]));
        }
        b.glyphs.clear();
        b.positions.clear();
        b.chars.clear();
    }
}

void KCDataViewRenderer::drawCaret(QPainter &p, const Caret &caret, unsigned char byte, Role role)
{
    const int x = caret.column * m_charWidth;
    const int y = caret.line * m_linePitch;
    if (caret.bar) {
        p.fillRect(x, y, CaretBarWidth, m_linePitch, m_text[role]);
        return;
    }
    // A block caret shows its character in the cell's colours swapped.
    p.fillRect(x, y, m_charWidth, m_linePitch, m_text[role]);
    const QColor keep = m_text[role];
    m_text[role] = m_background[role];
    addGlyph(role, byte, x, y + m_ascent);
    flushGlyphs(p);
    m_text[role] = keep;
}

void KCDataViewRenderer::paint(QPainter &p, const KCDataViewModel &model, const QRect &area, int caretLine,
                               const Caret &caret)
{
    p.fillRect(area, m_background[Normal]);
    const int width = area.right() + 1;
    const int firstScreenLine = std::max(area.top(), 0) / m_linePitch;
    const int lastScreenLine = std::max(area.bottom(), 0) / m_linePitch;
    const int topLines = model.topLineCount();
    const int firstColumn = model.firstVisibleColumn();
    unsigned char caretByte = ' ';
    Role caretRole = Normal;

    for (int line = firstScreenLine; line <= lastScreenLine; ++line) {
        model.renderScreenLine(line, m_row);
        if (!m_row.present)
            continue;
        const Role rowRole = line < topLines ? Header : line == caretLine ? CaretLine : Normal;
        const int y = line * m_linePitch;
        const qreal baseline = y + m_ascent;
        if (rowRole != Normal)
            p.fillRect(0, y, width, m_linePitch, m_background[rowRole]);

        const int columns = static_cast<int>(m_row.text.size());
        const int lastColumn = std::min(columns - 1, firstColumn + (width - 1) / m_charWidth);
        Role runRole = rowRole;
        int runStart = 0, runEnd = -1;
        const auto flushRun = [&]() {
            if (runEnd >= runStart && runRole != rowRole)
                p.fillRect((runStart - firstColumn) * m_charWidth, y, (runEnd - runStart + 1) * m_charWidth,
                           m_linePitch, m_background[runRole]);
        };
        for (int col = firstColumn; col <= lastColumn; ++col) {
            const uint8_t state = m_row.state[static_cast<size_t>(col)];
            const unsigned char ch = static_cast<unsigned char>(m_row.text[static_cast<size_t>(col)]);
            const Role role = roleOf(state, rowRole);
            if (caret.visible && line == caret.line && col - firstColumn == caret.column) {
                caretByte = ch;
                caretRole = role;
            }
            if (state == VCS_EMPTY)
                continue;
            if (role != runRole || col - runEnd - 1 > BridgedGap) {
                flushRun();
                runRole = role;
                runStart = col;
            }
            runEnd = col;
            if (ch != ' ')
                addGlyph(role, ch, (col - firstColumn) * m_charWidth, baseline);
        }
        flushRun();
    }
    flushGlyphs(p);
    if (caret.visible)
        drawCaret(p, caret, caretByte, caretRole);
}
