// The viewer as a whole: run with arguments, judged by its pictures and by what it prints.

#include "await.h"
#include "fakecamera.h"
#include "plainpicture.h"
#include "serverhands.h"
#include "simulation/testpattern.h"
#include "viewerprocess.h"
#include "windowwait.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace {

using krtest::ActivateWindow;
using krtest::GetGenerousMs;
using krtest::MoveHands;

const QColor kBackground(0x80, 0x80, 0x80);
const QColor kOverlay(0, 255, 0);

// Image, bands and overlay of a picture of the window, against a plain computation from the frame that it shows.
void ExpectFrameInWindow(const ViewerProcess& aViewer) {
  const QImage frame = aViewer.GetFramePicture();
  const QImage picture = aViewer.GetDisplayPicture();
  ASSERT_FALSE(frame.isNull());
  ASSERT_FALSE(picture.isNull());
  const QRect image = plainpicture::FitRect(picture.size(), frame.size());
  const QImage plain = plainpicture::Compute(picture.size(), frame, kBackground);

  // Two lines of 20 pixels, 10 pixels from the image's corner.
  const QRect overlay(image.left() + 10, image.top() + 10, 420, 44);
  EXPECT_EQ(plainpicture::Compare(picture, plain, overlay), "");
  const QRect firstLine(overlay.left(), overlay.top(), overlay.width(), 20);
  const QRect secondLine = firstLine.translated(0, 20);
  EXPECT_GT(plainpicture::Count(picture, firstLine, kOverlay), 100);
  EXPECT_GT(plainpicture::Count(picture, secondLine, kOverlay), 100);

  // The bands' colour is part of the comparison above; here, that there are two of the same width.
  const QMargins bands(image.left(), image.top(), picture.width() - image.right() - 1,
                       picture.height() - image.bottom() - 1);
  EXPECT_GT(std::max(bands.left(), bands.top()), 10);
  EXPECT_LE(std::abs(bands.left() - bands.right()), 1);
  EXPECT_LE(std::abs(bands.top() - bands.bottom()), 1);
}

// Looks at a camera for some seconds, without a display; for more of them where a busy machine kept all frames away.
ViewerProcess RunWithoutDisplay(const QString& aCamera) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* const name : {"DISPLAY", "QT_QPA_PLATFORM", "WAYLAND_DISPLAY"})
    environment.remove(name);
  for (int seconds = 2;; seconds *= 4) {
    ViewerProcess viewer({aCamera, "--seconds", QString::number(seconds)}, environment);
    if (viewer.GetFigure("frames") != 0 || seconds > 30)
      return viewer;
  }
}

// Pixels of a part of a picture that are all but black, as texts are beside their soft edges.
int CountDark(const QImage& aPicture, const QRect& aPart) {
  int count = 0;
  for (int y = aPart.top(); y <= aPart.bottom(); ++y)
    for (int x = aPart.left(); x <= aPart.right(); ++x)
      count += qGray(aPicture.pixel(x, y)) < 64 ? 1 : 0;
  return count;
}

void ExpectHundredWholeFrames(const ViewerProcess& aViewer) {
  EXPECT_EQ(aViewer.GetExitCode(), 0) << aViewer.GetErrors().toStdString();
  EXPECT_EQ(aViewer.GetFigure("frames"), 100) << aViewer.GetOutput().toStdString();
  EXPECT_EQ(aViewer.GetFigure("incomplete"), 0);
  EXPECT_GT(aViewer.GetFigure("fps"), 0);
  EXPECT_GT(aViewer.GetFigure("MBps"), 0);
}

} // namespace

TEST(Krviewer, RealCameraByItsAddress_IsShownCentredWithBandsAndOverlay) {
  const FakeCamera camera;
  // Frames that find room in the smallest of sockets, and time to take each before the next one comes.
  camera.SetFramePeriod(100'000);
  camera.SetFrameHeight(256);

  const ViewerProcess viewer({"--device", "127.0.0.1", "--frames", "100"});

  ExpectHundredWholeFrames(viewer);
  ExpectFrameInWindow(viewer);
  // The camera's picture is a ramp along its diagonals.
  const QImage frame = viewer.GetFramePicture();
  EXPECT_EQ(frame.size(), QSize(512, 256));
  for (int y = 0; y + 1 < frame.height(); ++y)
    for (int x = 0; x + 1 < frame.width(); ++x)
      ASSERT_EQ(frame.pixel(x + 1, y), frame.pixel(x, y + 1)) << x << "," << y;
  EXPECT_NE(frame.pixel(0, 0), frame.pixel(100, 0));
}

TEST(Krviewer, RealCameraWithoutADisplay_LeavesPicturesOfItsFrameAndOfTheWindow) {
  const FakeCamera camera;
  camera.SetFramePeriod(100'000);

  const ViewerProcess viewer = RunWithoutDisplay("127.0.0.1");

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  EXPECT_TRUE(viewer.GetOutput().contains("headless")) << viewer.GetOutput().toStdString();
  const QImage frame = viewer.GetFramePicture();
  ASSERT_EQ(frame.size(), QSize(512, 512));
  const int first = qGreen(frame.pixel(0, 0));
  for (int y = 0; y < frame.height(); ++y)
    for (int x = 0; x < frame.width(); ++x) {
      const int grey = (first + x + y) % 255;
      ASSERT_EQ(frame.pixel(x, y), qRgb(grey, grey, grey)) << x << "," << y;
    }
  const QImage window = viewer.GetWindowPicture();
  const QImage display = viewer.GetDisplayPicture();
  ASSERT_FALSE(display.isNull());
  EXPECT_GT(window.width(), display.width());
  EXPECT_GT(window.height(), display.height());
  // Right of the picture stand the features' texts.
  EXPECT_GT(CountDark(window, window.rect().adjusted(display.width(), 0, 0, 0)), 500);
}

TEST(Krviewer, SimulatedCamera_IsShownCentredWithBandsAndOverlay) {
  const ViewerProcess viewer({"--simulate", "--device", "sim-mono", "--frames", "100"});

  ExpectHundredWholeFrames(viewer);
  ExpectFrameInWindow(viewer);
  const QImage frame = viewer.GetFramePicture();
  ASSERT_EQ(frame.size(), QSize(1280, 960));
  std::vector<std::uint8_t> pattern(1280 * 960);
  krtransport::FillPattern(KrPixel::Mono8, 1280, 960, static_cast<std::uint64_t>(viewer.GetFigure("frame_id")),
                           pattern.data());
  for (int y = 0; y < frame.height(); ++y)
    for (int x = 0; x < frame.width(); ++x)
      ASSERT_EQ(qGreen(frame.pixel(x, y)), pattern[static_cast<std::size_t>(y * 1280 + x)]) << x << "," << y;
}

TEST(Krviewer, AskedToBeHeadless_RunsToItsEndWithoutAWordOnIt) {
  const ViewerProcess viewer({"--simulate", "--headless", "--frames", "20"});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  EXPECT_FALSE(viewer.GetOutput().contains("headless")) << viewer.GetOutput().toStdString();
  EXPECT_EQ(viewer.GetErrors(), "");
  EXPECT_EQ(viewer.GetFigure("frames"), 20);
  ExpectFrameInWindow(viewer);
}

TEST(Krviewer, DisplayThatCannotBeOpened_SaysSoAndRunsHeadlessWithPictures) {
  struct Row {
    const char* name;
    QString display;
  };
  for (const Row& row : {Row{"no display", ""}, Row{"a display that nobody serves", ":7777"}}) {
    SCOPED_TRACE(row.name);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    environment.remove("WAYLAND_DISPLAY");
    environment.insert("DISPLAY", row.display);

    const ViewerProcess viewer({"--simulate", "--frames", "20"}, environment);

    EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
    EXPECT_TRUE(viewer.GetOutput().contains("headless")) << viewer.GetOutput().toStdString();
    EXPECT_EQ(viewer.GetFigure("frames"), 20);
    ExpectFrameInWindow(viewer);
  }
}

TEST(Krviewer, FeaturesOfTheCamera_StandBesideThePicture) {
  const ViewerProcess viewer({"--simulate", "--device", "sim-mono", "--frames", "60"});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  const QImage browser = viewer.GetBrowserPicture();
  const QImage display = viewer.GetDisplayPicture();
  ASSERT_FALSE(browser.isNull());
  EXPECT_NEAR(static_cast<double>(display.width()) / (display.width() + browser.width()), 0.6, 0.03);
  // Rows with their texts, which an empty browser has not.
  const QRect rows(10, 60, browser.width() - 40, browser.height() / 2);
  EXPECT_GT(plainpicture::Count(browser, rows, Qt::black), 200);
}

TEST(Krviewer, DescriptionWithoutACamera_IsShownAlone) {
  const ViewerProcess viewer({"--headless", KR_DESCRIPTION_PATH});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  EXPECT_GT(viewer.GetFigure("features"), 10) << viewer.GetOutput().toStdString();
  const QImage browser = viewer.GetBrowserPicture();
  ASSERT_FALSE(browser.isNull());
  EXPECT_GT(plainpicture::Count(browser, browser.rect(), Qt::black), 500);
  EXPECT_TRUE(viewer.GetDisplayPicture().isNull());
}

TEST(Krviewer, DescriptionWithoutRoot_SaysThatItHasNoFeatures) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  file.write("<RegisterDescription xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" ModelName=\"Bare\" "
             "VendorName=\"None\" ToolTip=\"\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
             "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
             "SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\">"
             "<Integer Name=\"Width\"><Value>1</Value></Integer></RegisterDescription>");
  file.close();

  const ViewerProcess viewer({"--headless", file.fileName()});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  EXPECT_EQ(viewer.GetFigure("features"), 0);
  EXPECT_TRUE(viewer.GetErrors().contains("no features to show")) << viewer.GetErrors().toStdString();
}

TEST(Krviewer, DescriptionOnTheScreen_SaysThatThereIsNoCameraAndEndsWithItsWindow) {
  QProcess process;
  process.start(KRVIEWER_PATH, {KR_DESCRIPTION_PATH});
  ASSERT_TRUE(process.waitForStarted(GetGenerousMs()));

  ActivateWindow("everynode.xml - description without a camera");
  MoveHands({"key", "alt+F4"});

  ASSERT_TRUE(process.waitForFinished(GetGenerousMs()));
  EXPECT_EQ(process.exitCode(), 0);
}

TEST(Krviewer, FileThatIsNoDescription_IsNamedWithTheReason) {
  struct Row {
    const char* name;
    QString file;
    const char* reason;
  };
  for (const Row& row :
       {Row{"missing", "/nowhere/camera.xml", "No such file"}, Row{"another kind of file", "/etc/passwd", "no XML"}}) {
    SCOPED_TRACE(row.name);

    const ViewerProcess viewer({"--headless", row.file});

    EXPECT_EQ(viewer.GetExitCode(), 1);
    EXPECT_TRUE(viewer.GetErrors().contains(row.file)) << viewer.GetErrors().toStdString();
    EXPECT_TRUE(viewer.GetErrors().contains(row.reason)) << viewer.GetErrors().toStdString();
    EXPECT_TRUE(viewer.GetBrowserPicture().isNull());
  }
}

TEST(Krviewer, Interrupted_GivesTheCameraBackAndPrintsItsFigures) {
  QProcess process;
  process.start(KRVIEWER_PATH, {"--simulate", "--device", "sim-mono"});
  ASSERT_TRUE(process.waitForReadyRead(GetGenerousMs()));

  process.terminate();

  ASSERT_TRUE(process.waitForFinished(GetGenerousMs()));
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(process.exitCode(), 0);
  EXPECT_TRUE(process.readAllStandardOutput().contains("frames="));
}

TEST(Krviewer, WindowClosedByItsUser_EndsTheProgram) {
  for (const char* key : {"alt+F4", "ctrl+q"}) {
    SCOPED_TRACE(key);
    QProcess process;
    process.start(KRVIEWER_PATH, {"--simulate", "--device", "sim-mono"});
    ASSERT_TRUE(process.waitForReadyRead(GetGenerousMs()));

    // Typed at the server: a key that is sent to the window would find it gone when it is released.
    ActivateWindow("Simulated Mono Camera");
    MoveHands({"key", key});

    ASSERT_TRUE(process.waitForFinished(GetGenerousMs()));
    EXPECT_EQ(process.exitCode(), 0);
  }
}

TEST(Krviewer, NoDeviceNamed_LetsTheUserPickOneAndShowsIt) {
  QProcess process;
  process.start(KRVIEWER_PATH, {"--simulate", "--frames", "20"});
  ASSERT_TRUE(process.waitForStarted(GetGenerousMs()));
  ActivateWindow("krviewer");
  MoveHands({"key", "ctrl+o"});

  // Nothing is accepted before an item is selected, and between two tries the finder forgets what was typed.
  const QString finder = ActivateWindow("Device Selection");
  EXPECT_TRUE(krtest::AwaitCondition([&] {
    if (krtest::FindWindows("Device Selection").contains(finder))
      krtest::TypeIntoFinder(finder, "Simulated Mono");
    return process.waitForFinished(1000);
  }));

  EXPECT_EQ(process.exitCode(), 0);
  const QByteArray output = process.readAllStandardOutput();
  EXPECT_TRUE(output.contains("camera=Simulated Mono Camera")) << output.toStdString();
  EXPECT_TRUE(output.contains("frames=20")) << output.toStdString();
}

TEST(Krviewer, FinderCancelled_LeavesTheFirstPage) {
  QProcess process;
  process.start(KRVIEWER_PATH, {"--simulate"});
  ASSERT_TRUE(process.waitForStarted(GetGenerousMs()));
  ActivateWindow("krviewer");
  MoveHands({"key", "ctrl+o"});

  ActivateWindow("Device Selection");
  MoveHands({"key", "Escape"});

  ActivateWindow("krviewer");
  EXPECT_EQ(process.state(), QProcess::Running);
  MoveHands({"key", "ctrl+q"});
  ASSERT_TRUE(process.waitForFinished(GetGenerousMs()));
  EXPECT_EQ(process.exitCode(), 0);
  EXPECT_TRUE(process.readAllStandardOutput().isEmpty());
}

TEST(Krviewer, InterruptedWhileTheFinderIsOpen_Ends) {
  QProcess process;
  process.start(KRVIEWER_PATH, {"--simulate"});
  ASSERT_TRUE(process.waitForStarted(GetGenerousMs()));
  ActivateWindow("krviewer");
  MoveHands({"key", "ctrl+o"});
  ActivateWindow("Device Selection");

  process.terminate();

  ASSERT_TRUE(process.waitForFinished(GetGenerousMs()));
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(process.exitCode(), 0);
}

TEST(Krviewer, CameraThatCannotBeHad_IsNotSaidToBeShown) {
  const ViewerProcess viewer({"--simulate", "--headless", "--seconds", "1", "sim-busy"});

  EXPECT_EQ(viewer.GetExitCode(), 1);
  EXPECT_FALSE(viewer.GetErrors().isEmpty());
  EXPECT_FALSE(viewer.GetOutput().contains("camera=")) << viewer.GetOutput().toStdString();
}

TEST(Krviewer, StyleThatThereIsNot_IsNamedWithThoseThatThereAre) {
  const ViewerProcess viewer({"--simulate", "--headless", "-style", "Nobody's"});

  EXPECT_EQ(viewer.GetExitCode(), 2);
  EXPECT_TRUE(viewer.GetErrors().contains("\"Nobody's\"")) << viewer.GetErrors().toStdString();
  EXPECT_TRUE(viewer.GetErrors().contains("Fusion")) << viewer.GetErrors().toStdString();
}

TEST(Krviewer, SeveralCameras_AreShownAndCountedApart) {
  const ViewerProcess viewer({"--simulate", "--frames", "20", "sim-mono", "sim-colour"});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  const QStringList lines = viewer.GetOutput().split('\n').filter("frames=20");
  EXPECT_EQ(lines.filter("camera=Simulated Mono Camera").size(), 1) << viewer.GetOutput().toStdString();
  EXPECT_EQ(lines.size(), 2) << viewer.GetOutput().toStdString();
  EXPECT_EQ(viewer.GetFramePicture().size(), QSize(1280, 960));
  EXPECT_FALSE(viewer.GetSecondFramePicture().isNull());
}

TEST(Krviewer, RunOfSomeSeconds_EndsWithAPictureOfItsWindow) {
  const ViewerProcess viewer({"--simulate", "--headless", "--seconds", "2"});

  EXPECT_EQ(viewer.GetExitCode(), 0) << viewer.GetErrors().toStdString();
  EXPECT_GT(viewer.GetFigure("frames"), 0) << viewer.GetOutput().toStdString();
  const QImage window = viewer.GetWindowPicture();
  const QImage display = viewer.GetDisplayPicture();
  ASSERT_FALSE(window.isNull());
  EXPECT_GT(window.width(), display.width());
  EXPECT_GT(window.height(), display.height());
}

TEST(Krviewer, CameraThatSendsNoFrame_LeavesAPictureOfTheWindowAndFails) {
  QTemporaryFile lab;
  ASSERT_TRUE(lab.open());
  lab.write("adapters:\n"
            "  - name: silent0\n"
            "    mac: 02:4b:52:00:99:01\n"
            "    addresses:\n"
            "      - {address: 192.168.99.1, mask: 255.255.255.0}\n"
            "    devices:\n"
            "      - kind: gigeVision\n"
            "        model: Silent Camera\n"
            "        name: silent\n"
            "        mac: 02:4b:52:00:99:10\n"
            "        address: 192.168.99.10\n"
            "        mask: 255.255.255.0\n"
            "        faults: {droppedFrames: 1000000000}\n");
  lab.close();

  const ViewerProcess viewer({"--lab", lab.fileName(), "--headless", "--seconds", "1", "silent"});

  EXPECT_EQ(viewer.GetExitCode(), 1);
  EXPECT_TRUE(viewer.GetErrors().contains("no frame of it came")) << viewer.GetErrors().toStdString();
  EXPECT_FALSE(viewer.GetWindowPicture().isNull());
  EXPECT_TRUE(viewer.GetDisplayPicture().isNull());
}

TEST(Krviewer, UnknownDevice_IsNamedOnTheErrorStream) {
  const ViewerProcess viewer({"--simulate", "--device", "no-such-camera", "--frames", "1"});

  EXPECT_EQ(viewer.GetExitCode(), 1);
  EXPECT_TRUE(viewer.GetErrors().contains("no-such-camera")) << viewer.GetErrors().toStdString();
  EXPECT_TRUE(viewer.GetDisplayPicture().isNull());
}

TEST(Krviewer, CameraOnAForeignSubnet_IsRefusedWithAReason) {
  const ViewerProcess viewer({"--simulate", "--device", "sim-foreign", "--frames", "1"});

  EXPECT_EQ(viewer.GetExitCode(), 1);
  EXPECT_TRUE(viewer.GetErrors().contains("subnet")) << viewer.GetErrors().toStdString();
}

TEST(Krviewer, FolderThatCannotBeMade_IsNamedOnTheErrorStream) {
  QProcess process;
  process.start(KRVIEWER_PATH, {"--simulate", "--headless", "--frames", "2", "--screenshot", "/proc/nowhere"});
  ASSERT_TRUE(process.waitForFinished(2 * GetGenerousMs()));

  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_TRUE(process.readAllStandardError().contains("/proc/nowhere"));
}
