#include "view/KCEditByteModel.h"

#include "view/KCEditColumns.h"

int64_t KCEditByteModel::indexOfColumn(int p) const
{
    return state().baseOffset() + KCEditColumns::floorDiv(p, 2);
}

int KCEditByteModel::digitOfColumn(int p) const
{
    return KCEditColumns::floorMod(p, 2) + 1;
}

int KCEditByteModel::columnOfIndex(int64_t index) const
{
    return static_cast<int>((index - state().baseOffset()) * 2);
}
