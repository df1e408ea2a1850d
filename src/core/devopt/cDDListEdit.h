#pragma once

#include "devopt/cDDEdit.h"

#include <vector>

// A list of value edits, one per element of a parameter list, that remembers which element
// has the focus.
class cDDListEdit
{
public:
    void add(cDDEdit element) { m_elements.push_back(std::move(element)); }
    size_t size() const { return m_elements.size(); }
    cDDEdit &element(size_t i) { return m_elements.at(i); }

    void OnSetFocus(size_t element) { m_focus = int(element); }
    void OnKillFocus(size_t element);
    void OnChange(size_t element, const std::string &text) { m_elements.at(element).OnChange(text); }
    // The element with the focus, -1 when none has it.
    int focusedElement() const { return m_focus; }

    void Show();
    void WriteBack();

private:
    std::vector<cDDEdit> m_elements;
    int m_focus = -1;
};
