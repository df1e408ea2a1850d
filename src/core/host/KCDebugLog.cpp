#include "host/KCDebugLog.h"

namespace {

std::function<void(const std::string &)> &sink()
{
    static std::function<void(const std::string &)> s;
    return s;
}

} // namespace

void KCDebugLog::SetSink(std::function<void(const std::string &)> newSink)
{
    sink() = std::move(newSink);
}

void KCDebugLog::Write(const std::string &text)
{
    if (sink())
        sink()(text);
}
