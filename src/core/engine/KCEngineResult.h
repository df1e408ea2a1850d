#pragma once

#include <string>

// How one engine operation ended. Anything but Passed is a failed device.
struct KCEngineResult
{
    enum Status { Passed, Failed, Cancelled, TimedOut };

    Status status = Failed;
    std::string message; // why it failed, for the message window

    bool passed() const { return status == Passed; }
    static KCEngineResult pass() { return {Passed, std::string()}; }
    static KCEngineResult fail(const std::string &why) { return {Failed, why}; }
};
