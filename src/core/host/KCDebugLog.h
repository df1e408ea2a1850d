#pragma once

#include <functional>
#include <string>

// The library's debug output: silent unless a sink is set (a developer's console, a test).
class KCDebugLog
{
public:
    static void SetSink(std::function<void(const std::string &)> sink);
    static void Write(const std::string &text);
};
