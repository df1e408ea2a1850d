#include "KrldvModule.h"

#include "KCClassRegistry.h"

namespace {
bool g_attached = false;
}

extern "C" int krldvModuleEntry(int reason)
{
    KCClassRegistry &registry = KCClassRegistry::instance();
    if (reason == KRLDV_MODULE_ATTACH) {
        if (g_attached)
            return 0;
        g_attached = true;
        return 1;
    }
    if (reason == KRLDV_MODULE_DETACH && g_attached) {
        registry.clear();
        g_attached = false;
    }
    return 1;
}
