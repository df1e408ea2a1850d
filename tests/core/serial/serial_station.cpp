// A programming station in a separate process: consumes numbers from a definition file
// and writes each value, in decimal, as one line to stdout as soon as it has it. PAUSE
// stands for programming a device between two numbers.
#include "serial/KCSerialDefCtrl.h"
#include "KCTestHost.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

int main(int argc, char **argv)
{
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: %s DEFFILE COUNT [PAUSE_MICROSECONDS]\n", argv[0]);
        return 2;
    }
    KCTestHost host;
    KCSerialDefCtrl ctrl(&host, argv[1]);
    const long count = std::strtol(argv[2], nullptr, 10);
    const long pause = argc == 4 ? std::strtol(argv[3], nullptr, 10) : 0;
    char data[KCSerialDefCtrl::DataBufferSize];
    for (long i = 0; i < count; ++i) {
        unsigned flags = KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagBin;
        unsigned length = 0;
        unsigned value = 0;
        std::string text;
        if (!ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, data, &text, 1, 1))
            return 1;
        const std::string line = std::to_string(value) + "\n";
        if (::write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            return 1;
        if (pause > 0)
            usleep(static_cast<useconds_t>(pause));
    }
    return 0;
}
