#pragma once

#include "view/KCDataViewModel.h"

// One link of the data view's key chain: handles the keys it knows and passes on the rest.
class KCKeyController
{
public:
    virtual ~KCKeyController() = default;
    // True when the key was handled; the chain stops there.
    virtual bool handleKey(KCDataViewModel::Key key, unsigned modifiers) = 0;
};
