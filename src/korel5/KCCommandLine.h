#pragma once

#include <QString>
#include <QStringList>

// What korel5 was asked to do on its command line.
class KCCommandLine
{
public:
    enum Mode { Run, Screenshot, Help, Invalid };

    // `args` without the program name.
    static KCCommandLine parse(const QStringList &args);
    static QString usage();

    Mode mode = Run;
    QString file;           // the file to open, may be empty
    QString screenshotPath; // the PNG to write in Screenshot mode
    QString device;         // the device to select before FILE opens, may be empty
    QString error;          // why the line is Invalid
};
