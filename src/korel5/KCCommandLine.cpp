#include "KCCommandLine.h"

KCCommandLine KCCommandLine::parse(const QStringList &args)
{
    KCCommandLine line;
    QStringList files;
    for (int i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if (a == "--help" || a == "-h") {
            line.mode = Help;
            return line;
        }
        if (a == "--screenshot") {
            if (i + 1 >= args.size()) {
                line.mode = Invalid;
                line.error = "--screenshot needs the name of the PNG file to write";
                return line;
            }
            line.mode = Screenshot;
            line.screenshotPath = args[++i];
        } else if (a == "--device") {
            if (i + 1 >= args.size()) {
                line.mode = Invalid;
                line.error = "--device needs the name of a device (krldv devices lists them)";
                return line;
            }
            line.device = args[++i];
        } else if (a == "--") {
            files += args.mid(i + 1);
            break;
        } else if (a.startsWith("--")) {
            line.mode = Invalid;
            line.error = QString("unknown option %1").arg(a);
            return line;
        } else {
            files << a;
        }
    }
    if (files.size() > 1) {
        line.mode = Invalid;
        line.error = "only one file can be opened: there is one buffer document";
        return line;
    }
    line.file = files.value(0);
    return line;
}

QString KCCommandLine::usage()
{
    return "usage: korel5 [--device NAME] [FILE]\n"
           "       korel5 --screenshot OUT.png [--device NAME] [FILE]\n"
           "Opens FILE (any programmer file type, chosen by its extension) in the buffer editor,\n"
           "through the size, ranges and layout of device NAME when one is given.\n"
           "--screenshot renders the main window with FILE loaded to OUT.png and exits; it needs no\n"
           "display. Exit status: 0 done, 1 the PNG could not be written, 2 bad command line,\n"
           "3 FILE could not be opened (the picture shows why).\n";
}
