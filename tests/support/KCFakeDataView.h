#pragma once

#include "doc/KCHeadlessDataView.h"

#include <string>

// A data view without a window that counts its updates.
class KCFakeDataView : public KCHeadlessDataView
{
public:
    explicit KCFakeDataView(std::string layout) : KCHeadlessDataView(std::move(layout)) {}
    void OnUpdate(KCDocView *, long hint) override
    {
        ++updates;
        lastHint = hint;
    }

    int updates = 0;
    long lastHint = -1;
};
