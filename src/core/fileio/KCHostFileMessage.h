#pragma once

#include "KCFileMessage.h"

class KCMainProgDataExChange;

// Sends a file reader's or writer's messages to the host's message window, with the
// window's control marks for errors and warnings: "file : line N: text".
class KCHostFileMessage : public KCFileMessage
{
public:
    explicit KCHostFileMessage(KCMainProgDataExChange *host) : m_host(host) {}
    void message(Severity severity, const std::string &fileName, uint64_t line, const std::string &text) override;
    int errors() const { return m_errors; }
    int warnings() const { return m_warnings; }

private:
    KCMainProgDataExChange *m_host;
    int m_errors = 0;
    int m_warnings = 0;
};
