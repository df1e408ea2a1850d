#include "host/KCClassRegistry.h"

KCClassRegistry &KCClassRegistry::instance()
{
    static KCClassRegistry registry;
    return registry;
}

bool KCClassRegistry::registerClass(const std::string &name, const std::string &baseName, Factory create)
{
    if (name.empty() || !create || m_classes.count(name))
        return false;
    m_classes[name] = ClassRecord{name, baseName, std::move(create)};
    return true;
}

void KCClassRegistry::unregisterClass(const std::string &name)
{
    m_classes.erase(name);
}

const KCClassRegistry::ClassRecord *KCClassRegistry::find(const std::string &name) const
{
    const auto it = m_classes.find(name);
    return it == m_classes.end() ? nullptr : &it->second;
}

bool KCClassRegistry::isKindOf(const std::string &name, const std::string &baseName) const
{
    // Walk up the base chain; bounded by the number of classes against cycles.
    std::string current = name;
    for (size_t guard = 0; guard <= m_classes.size(); ++guard) {
        if (current == baseName)
            return true;
        const ClassRecord *record = find(current);
        if (!record)
            return false;
        current = record->baseName;
    }
    return false;
}

std::vector<std::string> KCClassRegistry::classNames() const
{
    std::vector<std::string> names;
    for (const auto &entry : m_classes)
        names.push_back(entry.first);
    return names;
}
