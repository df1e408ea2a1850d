#pragma once

#include "view/KCEditFieldModel.h"

#include <QFrame>

#include <memory>

// A linked pattern field: paints the shared pattern bytes its own way and forwards keys,
// clicks and the context menu's commands to its field model. All fields of a dialog edit one
// pattern and repaint together. Registered under the window class name "csCRegBEdit", by
// which the search dialog finds them among its children.
class KCEdit_Base : public QFrame
{
    Q_OBJECT
public:
    static constexpr const char *WindowClassName = "csCRegBEdit";
    static constexpr const char *WindowClassProperty = "windowClass";
    static constexpr const char *ControlIdProperty = "controlId";
    // The host's context menu of the fields, and the commands on it.
    enum : int { IDR_PATTERN_MENU = 2173, ID_EDIT_COPY = 57634, ID_EDIT_CUT = 57635, ID_EDIT_PASTE = 57637, ID_EDIT_UNDO = 57643 };

    ~KCEdit_Base() override;

    KCEditFieldModel &model() { return *m_model; }
    const KCEditFieldModel &model() const { return *m_model; }
    // Whether a context-menu command is offered now, and running it.
    bool isCommandEnabled(int id) const;
    bool OnCommand(int id);
    // The caret column at a point of the field; the x of a column.
    int columnAt(int x) const;
    int xOfColumn(int column) const;
    int visibleColumns() const;

protected:
    KCEdit_Base(std::unique_ptr<KCEditFieldModel> model, QWidget *parent);
    // Extra pixels after each byte's characters.
    virtual int cellPadding() const { return 0; }
    // The x of a byte slot from the text's left edge: cells of equal width unless overridden.
    virtual int slotX(int slot) const { return slot * cellWidth(); }
    // What the byte at `index` shows.
    virtual QString cellText(uint8_t byte) const = 0;
    int charWidth() const;
    int cellWidth() const;

    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void afterInput();

    std::unique_ptr<KCEditFieldModel> m_model;
};
