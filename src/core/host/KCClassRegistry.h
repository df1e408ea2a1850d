#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

// The library's run-time class records: each exported class by name, with its base's
// name and a factory. The host creates documents, views and dialogs through it.
class KCClassRegistry
{
public:
    using Factory = std::function<void *()>;

    struct ClassRecord
    {
        std::string name;
        std::string baseName;
        Factory create;
    };

    static KCClassRegistry &instance();

    // False when the name is empty, has no factory or is registered already.
    bool registerClass(const std::string &name, const std::string &baseName, Factory create);
    void unregisterClass(const std::string &name);
    const ClassRecord *find(const std::string &name) const;
    bool isKindOf(const std::string &name, const std::string &baseName) const;
    std::vector<std::string> classNames() const;
    void clear() { m_classes.clear(); }

private:
    std::map<std::string, ClassRecord> m_classes;
};
