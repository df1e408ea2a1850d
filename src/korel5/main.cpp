#include "KCAppHost.h"
#include "KCCommandLine.h"
#include "KCDeviceMenu.h"
#include "KCMainFrame.h"
#include "KrldvModule.h"

#include <QApplication>
#include <QImage>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int ScreenshotWidth = 1280;
constexpr int ScreenshotHeight = 800;
// The fastest compression that still makes a small file: the picture is for looking at, and
// squeezing it harder took a third of a screenshot run.
constexpr int ScreenshotPngQuality = 80;
enum ExitCode { ExitOk = 0, ExitFailed = 1, ExitUsage = 2, ExitNotOpened = 3 };

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int takeScreenshot(KCMainFrame &frame, const KCCommandLine &line)
{
    frame.host().setInteractive(false);
    frame.settings().setReadOnly(true);
    frame.resize(ScreenshotWidth, ScreenshotHeight);
    if (!line.device.isEmpty() && !frame.devices()->select(line.device)) {
        std::fprintf(stderr, "korel5: %s: no such device\n", qPrintable(line.device));
        return ExitUsage;
    }
    const bool opened = line.file.isEmpty() ? frame.newDocument() : frame.openFile(line.file);
    frame.show();
    // Docks shown while the window comes up lay out on the next pass.
    QApplication::processEvents();
    QApplication::processEvents();
    const QImage image = frame.grab().toImage();
    if (!image.save(line.screenshotPath, "PNG", ScreenshotPngQuality)) {
        std::fprintf(stderr, "korel5: %s: cannot write the picture\n", qPrintable(line.screenshotPath));
        return ExitFailed;
    }
    if (!opened) {
        std::fprintf(stderr, "korel5: %s: not opened\n", qPrintable(line.file));
        return ExitNotOpened;
    }
    return ExitOk;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    const KCCommandLine line = KCCommandLine::parse(args);
    switch (line.mode) {
    case KCCommandLine::Help:
        std::fputs(qPrintable(KCCommandLine::usage()), stdout);
        return ExitOk;
    case KCCommandLine::Invalid:
        std::fprintf(stderr, "korel5: %s\n%s", qPrintable(line.error), qPrintable(KCCommandLine::usage()));
        return ExitUsage;
    case KCCommandLine::Screenshot:
        // A picture needs no screen.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        break;
    case KCCommandLine::Run:
        if (!hasDisplay()) {
            std::fputs("korel5: no display to show the window on.\n"
                       "Run it under a virtual display, e.g.  xvfb-run -a korel5 FILE\n"
                       "or render the window to a picture:    korel5 --screenshot out.png FILE\n",
                       stderr);
            return ExitFailed;
        }
        break;
    }

    QApplication app(argc, argv);
    QApplication::setOrganizationName("krldv");
    QApplication::setApplicationName("korel5");
    QApplication::setApplicationDisplayName("KOREL5");
    if (!krldvModuleEntry(KRLDV_MODULE_ATTACH)) {
        std::fputs("korel5: the buffer library could not be loaded\n", stderr);
        return ExitFailed;
    }
    int rc = ExitOk;
    {
        KCMainFrame frame;
        if (line.mode == KCCommandLine::Screenshot) {
            rc = takeScreenshot(frame, line);
        } else {
            frame.show();
            if (!line.device.isEmpty() && !frame.devices()->select(line.device)) {
                std::fprintf(stderr, "korel5: %s: no such device\n", qPrintable(line.device));
                rc = ExitUsage;
            }
            // Open once the window is up, so a long load shows its busy cursor in it.
            QTimer::singleShot(0, &frame, [&frame, &line] {
                if (line.file.isEmpty() || !frame.openFile(line.file))
                    if (!frame.document())
                        frame.newDocument();
            });
            rc = app.exec();
        }
    }
    krldvModuleEntry(KRLDV_MODULE_DETACH);
    return rc;
}
