#pragma once

#include "view/KCKeyController.h"

#include <cstdint>

// Caret keys of the data view: arrows, Backspace and Tab move the caret, Shift with an arrow
// extends the mark, Page Up and Page Down scroll without moving the caret, Home and End go
// by row, and with Control to the buffer's ends (Home, End) or to the previous or next block
// of the image's data (Up, Down). Any of them first ends a mark.
class KCNavigationController : public KCKeyController
{
public:
    explicit KCNavigationController(KCDataViewModel &view) : m_view(view) {}

    bool handleKey(KCDataViewModel::Key key, unsigned modifiers) override;
    // Go To: an address in the units the current layout shows (words in the word view, the
    // device's display addresses with their offset) to the caret; false, nothing moved, when
    // it is no address of the buffer.
    bool goToDisplayAddress(uint64_t displayAddress);

private:
    bool tabSearch(bool forward);
    void extendMark(KCDataViewModel::Key key);
    bool jump(KCDataViewModel::Key key, bool control);

    KCDataViewModel &m_view;
};
