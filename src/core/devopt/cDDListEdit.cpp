#include "devopt/cDDListEdit.h"

void cDDListEdit::OnKillFocus(size_t element)
{
    m_elements.at(element).OnKillFocus();
    if (m_focus == int(element))
        m_focus = -1;
}

void cDDListEdit::Show()
{
    for (cDDEdit &e : m_elements)
        e.Show();
}

void cDDListEdit::WriteBack()
{
    for (cDDEdit &e : m_elements)
        e.WriteBack();
}
