#include "devopt/KCOptionPageDesc.h"

namespace {

void visitAll(const std::vector<cParamStcBase> &controls, const std::function<void(const cParamStcBase &)> &visit)
{
    for (const cParamStcBase &c : controls) {
        visit(c);
        visitAll(c.children, visit);
    }
}

} // namespace

void KCOptionPageDesc::forEach(const std::function<void(const cParamStcBase &)> &visit) const
{
    visitAll(controls, visit);
}

const cParamStcBase *KCOptionPageDesc::find(uint32_t id) const
{
    const cParamStcBase *found = nullptr;
    forEach([&](const cParamStcBase &c) {
        if (!found && c.id == id)
            found = &c;
    });
    return found;
}
