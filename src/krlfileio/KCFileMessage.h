#pragma once

#include <cstdint>
#include <string>

// Sink for the messages of a file reader or writer. The caller decides where they go
// (the host's message window, stderr, a test's list).
class KCFileMessage
{
public:
    enum Severity { Info = 0, Warning = 1, Error = 2 };

    virtual ~KCFileMessage() = default;

    // line is 1-based; 0 when the message concerns the whole file.
    virtual void message(Severity severity, const std::string &fileName, uint64_t line,
                         const std::string &text) = 0;
};
