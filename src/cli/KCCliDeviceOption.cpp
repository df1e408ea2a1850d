#include "KCCliDeviceOption.h"

#include "devopt/KCDeviceDatabase.h"
#include "doc/KCDataDoc.h"

#include <cstdio>

namespace {

// Names offered when a device is not found.
constexpr size_t MaxSuggestions = 5;

const KCDeviceDatabase *database(std::string &problem)
{
    static KCDeviceDatabase db;
    static bool loaded = false;
    static std::string error;
    if (!loaded) {
        loaded = true;
        if (!db.load(KCDeviceDatabase::defaultFolder()))
            error = db.error();
    }
    problem = error;
    return error.empty() ? &db : nullptr;
}

} // namespace

std::string KCCliDeviceOption::problem(const std::string &name)
{
    if (name.empty())
        return {};
    std::string problem;
    const KCDeviceDatabase *db = database(problem);
    if (!db)
        return problem;
    if (db->find(name))
        return {};
    problem = "no device is called " + name + " (krldv devices lists them)";
    // A part of the name often finds the device meant.
    const std::string part = name.substr(0, std::max<size_t>(name.size() / 2, 3));
    const auto near = db->match(part);
    for (size_t i = 0; i < near.size() && i < MaxSuggestions; ++i)
        problem += (i ? ", " : "; did you mean ") + near[i]->name;
    return problem;
}

bool KCCliDeviceOption::select(KCDataDoc &doc, const std::string &name)
{
    if (name.empty())
        return true;
    std::string problem;
    const KCDeviceDatabase *db = database(problem);
    const DEVICE_KRLXDEF_ITEM *device = db ? db->find(name) : nullptr;
    if (!device || !doc.selectDevice(*device)) {
        std::fprintf(stderr, "krldv: %s: %s\n", name.c_str(), device ? "the device cannot be selected" : problem.c_str());
        return false;
    }
    return true;
}

const DEVICE_KRLXDEF_ITEM *KCCliDeviceOption::find(const std::string &name)
{
    std::string problem;
    const KCDeviceDatabase *db = database(problem);
    return db ? db->find(name) : nullptr;
}
