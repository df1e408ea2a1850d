#pragma once

#include "view/KCKeyController.h"

// Typing into the data view: hex digits into the nibble under the caret, characters into
// character cells, 0 and 1 into fuse bits; each written byte goes through the document and
// the caret moves on. Also owns the Insert key, whose state is the paste's mode.
class KCValueEditController : public KCKeyController
{
public:
    explicit KCValueEditController(KCDataViewModel &view) : m_view(view) {}

    bool handleKey(KCDataViewModel::Key key, unsigned modifiers) override;
    // True when a byte was written.
    bool handleChar(unsigned ch);

private:
    KCDataViewModel &m_view;
};
