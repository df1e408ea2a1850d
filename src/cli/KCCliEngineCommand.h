#pragma once

#include "KCCliCommand.h"

#include <string>

// The device commands that run a programming engine: "krldv program" (a production run,
// optionally with serial numbers), "read", "verify", "erase" and "blank". One class serves
// all five; each instance is one of them.
class KCCliEngineCommand : public KCCliCommand
{
public:
    enum Action { Program, Read, Verify, Erase, Blank };

    explicit KCCliEngineCommand(Action action) : m_action(action) {}
    const char *name() const override;
    const char *summary() const override;
    const char *usage() const override;
    int run(const std::vector<std::string> &args) override;

private:
    Action m_action;
};
