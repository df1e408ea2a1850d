#include "view/KCEditWordModel.h"

#include "view/KCEditColumns.h"

int64_t KCEditWordModel::indexOfColumn(int p) const
{
    const int64_t slot = KCEditColumns::floorDiv(p, 2);
    return evenBase() + (m_swap ? (slot ^ 1) : slot);
}

int KCEditWordModel::digitOfColumn(int p) const
{
    return KCEditColumns::floorMod(p, 2) + 1;
}

int KCEditWordModel::columnOfIndex(int64_t index) const
{
    const int64_t rel = index - evenBase();
    return static_cast<int>((m_swap ? (rel ^ 1) : rel) * 2);
}

bool KCEditWordModel::isValidColumn(int p) const
{
    const int64_t i = indexOfColumn(p);
    const int64_t size = state().size();
    if (i < 0)
        return false;
    if (!m_swap)
        return KCEditFieldModel::isValidColumn(p);
    if ((i | 1) < size)
        return true;
    return (size & 1) && i == size - 1 && digitOfColumn(p) == FirstDigit;
}

void KCEditWordModel::moveToUnitStart()
{
    const int from = caretColumn();
    const int64_t wanted = m_swap ? 1 : 0;
    while (!(digitOfColumn(caretColumn()) == FirstDigit && (indexOfColumn(caretColumn()) & 1) == wanted))
        setCaretColumn(caretColumn() - 1);
    // The unpaired last byte has no first-shown partner: it is its own start.
    if (!isValidColumn(caretColumn())) {
        setCaretColumn(from);
        KCEditFieldModel::moveToUnitStart();
    }
}
