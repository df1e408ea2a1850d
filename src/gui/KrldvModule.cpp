#include "KrldvModule.h"

#include "host/KCClassRegistry.h"
#include "doc/KCDataDoc.h"
#include "KCDeviceOptions.h"
#include "KCFileDialog.h"
#include "KCLoadSaveCombo.h"
#include "doc/KCUiAdrDataManager.h"

#include <string>
#include <vector>

namespace {

bool g_attached = false;

struct ClassEntry
{
    const char *name;
    const char *baseName;
    KCClassRegistry::Factory create;
};

// The library's exported classes: a row each.
std::vector<ClassEntry> exportedClasses()
{
    return {
        {"KCDocBase", "", [] { return static_cast<void *>(new KCDocBase); }},
        {"KCDataDoc", "KCDocBase", [] { return static_cast<void *>(new KCDataDoc); }},
        {"KCUiAdrDataManager", "", [] { return static_cast<void *>(new KCUiAdrDataManager); }},
        {"KCFileDialog", "", [] { return static_cast<void *>(new KCFileDialog); }},
        {"KCLoadSaveCombo", "", [] { return static_cast<void *>(new KCLoadSaveCombo); }},
        {"KCDeviceOptions", "", [] { return static_cast<void *>(new KCDeviceOptions); }},
    };
}

bool attach()
{
    KCClassRegistry &registry = KCClassRegistry::instance();
    std::vector<std::string> done;
    for (const ClassEntry &c : exportedClasses()) {
        if (!registry.registerClass(c.name, c.baseName, c.create)) {
            for (const std::string &name : done)
                registry.unregisterClass(name);
            return false;
        }
        done.push_back(c.name);
    }
    return true;
}

void detach()
{
    KCClassRegistry &registry = KCClassRegistry::instance();
    for (const ClassEntry &c : exportedClasses())
        registry.unregisterClass(c.name);
}

} // namespace

extern "C" int krldvModuleEntry(int reason)
{
    switch (reason) {
    case KRLDV_MODULE_ATTACH:
        if (g_attached || !attach())
            return 0;
        g_attached = true;
        return 1;
    case KRLDV_MODULE_DETACH:
        if (g_attached)
            detach();
        g_attached = false;
        return 1;
    default:
        return 1;
    }
}
