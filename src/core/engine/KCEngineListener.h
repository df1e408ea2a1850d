#pragma once

#include <string>

// Where an engine reports while it works: the message window and the progress bar.
// Called on the thread that runs the engine.
class KCEngineListener
{
public:
    virtual ~KCEngineListener() = default;
    virtual void engineMessage(const std::string &line) = 0;
    virtual void engineProgress(const std::string &operation, unsigned percent) = 0;
};
