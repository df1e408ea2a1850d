#pragma once

#include <string>

// Follows a production run device by device, as the counter view and the command line do.
class KCProductionListener
{
public:
    virtual ~KCProductionListener() = default;
    // `number` is the serial number's journal key, empty in a run without numbers.
    virtual void deviceStarted(unsigned index, const std::string &number) = 0;
    virtual void deviceDone(unsigned index, const std::string &number, bool passed, const std::string &why) = 0;
};
