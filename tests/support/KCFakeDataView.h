#pragma once

#include "KCDocView.h"

#include <string>

// A data view without a window: shows a named layout and counts its updates.
class KCFakeDataView : public KCDocView
{
public:
    explicit KCFakeDataView(std::string layout) : layout(std::move(layout)) {}
    void OnUpdate(KCDocView *, long hint) override
    {
        ++updates;
        lastHint = hint;
    }
    bool isDataView() const override { return true; }
    std::string GetBufferLayoutName() const override { return layout; }

    std::string layout;
    int updates = 0;
    long lastHint = -1;
};
