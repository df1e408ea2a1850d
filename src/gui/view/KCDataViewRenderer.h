#pragma once

#include "view/TAG_VIEW_ROW.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QString>

class KCDataViewModel;
class QPainter;
class QRect;

// Paints the rows a data-view model renders on a fixed character grid. A frame costs one
// background rectangle per run of equally coloured cells and one glyph run per colour role,
// whatever the size of the buffer behind the rows.
class KCDataViewRenderer
{
public:
    // Colour roles and the KCIndexedColor pairs they are drawn with:
    //   Normal     pair 0 (window text on window): addresses, texts and unchanged bytes
    //   Header     pair 0 blended a quarter towards pair 1 (grey): the fixed rows at the top
    //   Marked     pair 2 (white on blue): bytes inside the mark
    //   CaretLine  pair 3 (black on lavender): the row the caret stands on
    //   Modified   pair 4 (black on brown): bytes typed since the buffer last matched its file
    //   Gap, CaretLineGap  grey text on a pale (or the caret row's) background: fill between data
    //   Hit        black on red 0xC8, green 0x64, blue 0x64: bytes of the last find-all's hits
    enum Role { Normal, Header, Marked, CaretLine, Modified, Gap, CaretLineGap, Hit, RoleCount };

    // Where the caret is drawn, in screen characters; `bar` draws a thin bar (insert mode)
    // instead of a block.
    struct Caret
    {
        bool visible = false;
        int column = 0;
        int line = 0;
        bool bar = false;
    };

    KCDataViewRenderer();

    void setFont(const QFont &font);
    const QFont &font() const { return m_font; }
    int charWidth() const { return m_charWidth; }
    int linePitch() const { return m_linePitch; }

    // Takes the pairs of the roles from the colour table.
    void loadColours();
    QColor textColour(Role role) const { return m_text[role]; }
    QColor backgroundColour(Role role) const { return m_background[role]; }

    // Paints the screen lines that meet `area` (window pixels). `caretLine` is the screen line
    // of the caret's row, -1 when it is out of sight.
    void paint(QPainter &p, const KCDataViewModel &model, const QRect &area, int caretLine, const Caret &caret);

private:
    struct GlyphBatch
    {
        QList<quint32> glyphs;
        QList<QPointF> positions;
        QString chars; // for fonts without raw glyph access
    };

    Role roleOf(uint8_t state, Role rowRole) const;
    void addGlyph(Role role, unsigned char byte, qreal x, qreal baseline);
    void flushGlyphs(QPainter &p);
    void drawCaret(QPainter &p, const Caret &caret, unsigned char byte, Role role);

    QFont m_font;
    QRawFont m_rawFont;
    bool m_useGlyphRuns = false;
    int m_charWidth = 1;
    int m_linePitch = 1;
    int m_ascent = 0;
    static constexpr int ByteValues = 256;
    quint32 m_glyphOf[ByteValues] = {};
    QChar m_charOf[ByteValues];
    QColor m_text[RoleCount];
    QColor m_background[RoleCount];
    GlyphBatch m_batches[RoleCount];
    TAG_VIEW_ROW m_row;
};
