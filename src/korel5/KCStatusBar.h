#pragma once

#include <QStatusBar>

class QLabel;

// The status bar: a message area and the panes of the checksum, the caret address in the
// current layout's units, the insert/overwrite mode and the modified state.
class KCStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit KCStatusBar(QWidget *parent = nullptr);

    // A pane by the host's pane id; other ids go to the message area.
    void setPaneText(unsigned paneId, const QString &text);
    void setCaretAddress(const QString &text);
    void setInsertMode(bool insert);
    void setModified(bool modified);
    // The byte sum of the marked range, shown while something is marked; empty hides it.
    void setMarkSum(const QString &text);
    // Empties the document's panes (no document open).
    void clearDocumentPanes();

    QString checksumText() const;
    QString caretText() const;
    QString modeText() const;
    QString modifiedText() const;
    QString markSumText() const;

private:
    QLabel *addPane(const char *name, const QString &widest);

    QLabel *m_markSum;
    QLabel *m_checksum;
    QLabel *m_caret;
    QLabel *m_mode;
    QLabel *m_modified;
};
