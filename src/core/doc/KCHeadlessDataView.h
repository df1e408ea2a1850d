#pragma once

#include "doc/KCDocView.h"

#include <string>

// A data view without a window: it only names the layout it shows, which is what the
// document asks of a view to choose the checksum kind. The command line uses it.
class KCHeadlessDataView : public KCDocView
{
public:
    explicit KCHeadlessDataView(std::string layout) : m_layout(std::move(layout)) {}

    void OnUpdate(KCDocView *, long) override {}
    bool isDataView() const override { return true; }
    std::string GetBufferLayoutName() const override { return m_layout; }
    void setLayout(const std::string &layout) { m_layout = layout; }

private:
    std::string m_layout;
};
