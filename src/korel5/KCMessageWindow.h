#pragma once

#include <QListWidget>

#include <cstdint>
#include <string>

// The message window: one line per ShowMessage. The control marks at the start of a line
// (0xA7 and capitals) are not printed; they choose the line's colour and icon.
class KCMessageWindow : public QListWidget
{
    Q_OBJECT
public:
    // Oldest lines are dropped beyond this many.
    static constexpr int MaxLines = 10000;
    // A colour argument with any of these bits set means "the window's default".
    static constexpr uint32_t DefaultColourBits = 0xFF000000u;

    explicit KCMessageWindow(QWidget *parent = nullptr);

    void showMessage(const std::string &text, uint32_t textColor = DefaultColourBits,
                     uint32_t backColor = DefaultColourBits);
    int errorCount() const { return m_errors; }
    int warningCount() const { return m_warnings; }
    void clearMessages();

private:
    int m_errors = 0;
    int m_warnings = 0;
};
