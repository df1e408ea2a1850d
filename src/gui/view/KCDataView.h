#pragma once

#include "view/KCDataViewListener.h"
#include "view/KCDataViewModel.h"
#include "KCDataViewRenderer.h"
#include "doc/KCDocView.h"

#include <QAbstractScrollArea>
#include <QPoint>
#include <QTimer>

#include <cstdint>
#include <string>

class KCDataDoc;
class QFont;

// The hex-editor view of a buffer document. Every rule (layouts, caret, mark, typing,
// scrolling) lives in the headless KCDataViewModel; this widget forwards keys, mouse
// positions and wheel steps to it and paints the rows it renders. Scroll bars count lines,
// so a 4 GiB buffer scrolls exactly, and painting touches only the visible rows.
class KCDataView : public QAbstractScrollArea, public KCDocView, private KCDataViewListener
{
    Q_OBJECT
public:
    explicit KCDataView(KCDataDoc *doc, QWidget *parent = nullptr);
    ~KCDataView() override;

    KCDataDoc *document() const { return m_doc; }
    KCDataViewModel &model() { return m_model; }
    const KCDataViewModel &model() const { return m_model; }

    // Caret on the first editable cell, static scroll bars.
    void OnInitialUpdate();
    // Selects a layout by name; false (and no change) when there is none of that name.
    bool SetBufferLayoutView(const std::string &layoutName);
    std::string GetBufferLayoutName() const override;
    bool isDataView() const override { return true; }
    void OnUpdate(KCDocView *sender, long hint) override;

    // Re-reads the font (after m_pFont changed) and hands the metrics to the model.
    void InitTextMetrics();
    void SetScrollMode(int mode, int a, int b);
    void OnSetFocus();
    void OnKillFocus();
    bool isInsertMode() const { return m_model.isInsertMode(); }
    // The caret's address as the current layout counts and shows it; empty without a caret.
    QString caretAddressText() const;
    // Paints the rows that meet `area` of the viewport; the paint event's and the benchmark's entry.
    void paintRows(QPainter &p, const QRect &area);
    const KCDataViewRenderer &renderer() const { return m_renderer; }

    static QFont *m_pFont;

signals:
    void caretMoved(quint64 byteAddress, const QString &addressText);
    void insertModeChanged(bool insert);
    void modifiedChanged(bool modified);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool focusNextPrevChild(bool next) override;

private:
    void dataViewChanged(unsigned changes) override;
    void syncScrollBars();
    void loadSystemColours();
    void blink();
    void dragStep();
    void followDrag();
    QRect bodyRect() const;
    QRect caretRect() const;
    int caretScreenLine() const;
    void emitCaret();
    bool isChecksumView() const;

    KCDataDoc *m_doc;
    KCDataViewModel m_model;
    KCDataViewRenderer m_renderer;
    QTimer m_blinkTimer;
    QTimer m_dragTimer;
    QPoint m_dragPos;
    bool m_caretOn = true;
    bool m_syncingBars = false;
    int m_wheelDelta = 0;
    // Lines per scroll-bar step; 1 unless the line count outgrows the bar's int range.
    int64_t m_lineScale = 1;
    int64_t m_lastCaretAddress = -1;
    std::string m_lastCaretLayout;
};
