#pragma once

class KCDataViewModel;

// The mouse on the data view: a press puts the caret on the cell under it and starts
// tracking, moving while tracking drags the mark, the wheel scrolls.
class KCMouseController
{
public:
    explicit KCMouseController(KCDataViewModel &view) : m_view(view) {}

    void press(int x, int y);
    void move(int x, int y);
    void release();
    // `notches` > 0 is away from the user.
    void wheel(int notches, unsigned modifiers);

private:
    KCDataViewModel &m_view;
};
