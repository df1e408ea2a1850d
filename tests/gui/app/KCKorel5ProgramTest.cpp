#include "KCCommandLine.h"

#include <QImage>
#include <QProcess>
#include <QHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct ProgramRun
{
    int exitCode;
    QString errors;
};

ProgramRun korel5(const QStringList &args)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // The program must manage without a display on its own.
    env.remove("QT_QPA_PLATFORM");
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    p.setProcessEnvironment(env);
    p.start(KOREL5_BINARY, args);
    if (!p.waitForFinished(30000))
        return {-1, "timed out"};
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromLocal8Bit(p.readAllStandardError())};
}

// Pixels that differ from the most common colour, and how many colours there are.
void inkOf(const QImage &image, int &inkPixels, int &colours)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    int most = 0;
    for (int n : counts)
        most = std::max(most, n);
    inkPixels = image.width() * image.height() - most;
    colours = int(counts.size());
}

} // namespace

TEST(Korel5Program, ScreenshotOfAFileWithoutADisplay)
{
    QTemporaryDir dir;
    const QString png = dir.filePath("demo.png");
    const ProgramRun run = korel5({"--screenshot", png, KRLDV_SOURCE_DATA_DIR "/demo/demo.bin"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    QImage image(png);
    ASSERT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 800);
    int ink = 0, colours = 0;
    inkOf(image, ink, colours);
    // Rows of hex digits cover a good part of the window in more than a couple of colours.
    EXPECT_GT(ink, image.width() * image.height() / 20);
    EXPECT_GT(colours, 8);

    // A file that cannot be opened still gives the picture (with the message) and says so.
    const QString failed = dir.filePath("failed.png");
    const ProgramRun missing = korel5({"--screenshot", failed, dir.filePath("absent.jed")});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(missing.errors.contains("absent.jed"));
    EXPECT_FALSE(QImage(failed).isNull());
}

TEST(Korel5Program, WithoutADisplayItSaysHowToRun)
{
    const ProgramRun run = korel5({KRLDV_SOURCE_DATA_DIR "/demo/demo.bin"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("xvfb-run"));
    EXPECT_EQ(korel5({"--screenshot"}).exitCode, 2);
}

TEST(Korel5Program, CommandLine)
{
    const KCCommandLine shot = KCCommandLine::parse({"--screenshot", "o.png", "f.hex"});
    EXPECT_EQ(shot.mode, KCCommandLine::Screenshot);
    EXPECT_EQ(shot.screenshotPath, "o.png");
    EXPECT_EQ(shot.file, "f.hex");
    EXPECT_EQ(KCCommandLine::parse({"--", "--odd-name.bin"}).file, "--odd-name.bin");
    EXPECT_EQ(KCCommandLine::parse({"a.bin", "b.bin"}).mode, KCCommandLine::Invalid);
    EXPECT_EQ(KCCommandLine::parse({"--bogus"}).mode, KCCommandLine::Invalid);
}
