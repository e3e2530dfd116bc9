// The examples with windows of cameras, run as a user runs them: pictures on the screen are live, and what the finder
// gives is opened.

#include "exampleonscreen.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

using krtest::ActivateWindow;
using krtest::FindWindows;
using krtest::MoveHands;

const QString kFinder = "Pick a camera";
const QString kMonoCamera = "Simulated Mono Camera";

class WindowExample : public ExampleOnScreen {
protected:
  /// How many frames it said, at its end, that it has shown.
  int ReadShownCount() {
    const QString output = QString::fromUtf8(mProcess.readAllStandardOutput());
    const QRegularExpressionMatch match = QRegularExpression("(\\d+) frames were shown").match(output);
    EXPECT_TRUE(match.hasMatch()) << output.toStdString();
    return match.captured(1).toInt();
  }
  /// Starts the example and types into its finder until it has the camera; between two tries the finder forgets what
  /// was typed. Whoever typed at the one that somebody else controls, which answered first, starts again.
  void PickCamera(const QString& aPath, const std::function<bool()>& aIsPicked) {
    QString finder;
    const auto pick = [&] {
      if (mProcess.state() == QProcess::NotRunning) {
        Start(aPath);
        finder = ActivateWindow(kFinder);
      }
      if (!FindWindows(kFinder).isEmpty())
        krtest::TypeIntoFinder(finder, "Simulated Mono");
      return QTest::qWaitFor(aIsPicked, kTryMs);
    };
    EXPECT_TRUE(krtest::AwaitCondition(pick)) << mProcess.readAllStandardError().toStdString();
  }
};

class FirstApplication : public WindowExample {
protected:
  void SetUp() override {
    ASSERT_TRUE(mFolder.isValid());
    mProcess.setWorkingDirectory(mFolder.path());
  }
  /// Picks the camera, waits for its picture and closes the window.
  void RunOnce() {
    PickCamera(FIRST_APPLICATION_PATH, [] { return !FindWindows("^" + kMonoCamera).isEmpty(); });
    mWindow = ActivateWindow(kMonoCamera);
    ExpectLivePicture(QRect(10, 100, 400, 400));
    ExpectEnd();
  }
  /// Of the one camera that was shown.
  QString FindSettings() const {
    const QStringList files = QDir(mFolder.path()).entryList({"camera-*.txt"});
    EXPECT_EQ(files.size(), 1);
    return mFolder.filePath(files.value(0));
  }
  QString ReadSettings() const {
    QFile file(FindSettings());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << "no settings were saved";
    return QString::fromUtf8(file.readAll());
  }
  void WriteSettings(const QString& aText) const {
    QFile file(FindSettings());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(aText.toUtf8()) > 0);
  }

private:
  QTemporaryDir mFolder;
};

} // namespace

TEST_F(WindowExample, ShowCamera_ShowsALivePictureUntilItIsClosed) {
  StartWindow(SHOW_CAMERA_PATH, kMonoCamera);

  ExpectLivePicture(QRect(20, 100, 400, 300));
  ExpectEnd();
}

TEST_F(WindowExample, EmbedDisplay_ItsButtonsStartAndStopThePictureInItsLayout) {
  StartWindow(EMBED_DISPLAY_PATH, kMonoCamera);
  const QRect part(60, 50, 400, 300);

  MoveHands({"key", "alt+s"});
  ExpectLivePicture(part);
  MoveHands({"key", "alt+t"});
  ExpectStandingPicture(part);
  MoveHands({"key", "alt+s"});
  ExpectLivePicture(part);
  ExpectEnd();

  EXPECT_GE(ReadShownCount(), 2);
}

TEST_F(WindowExample, EmbedX11_ThePictureFollowsTheSizeOfAWindowWithoutAToolkit) {
  StartWindow(EMBED_X11_PATH, "A window of another toolkit");

  ExpectLivePicture(QRect(20, 100, 400, 300));
  MoveHands({"windowsize", mWindow, "1000", "800"});
  ExpectLivePicture(QRect(700, 500, 290, 250));
  ExpectEnd();

  EXPECT_GE(ReadShownCount(), 4);
}

TEST_F(WindowExample, PickCamera_OpensTheOneThatIsPicked) {
  PickCamera(PICK_CAMERA_PATH, [this] { return mProcess.state() == QProcess::NotRunning && mProcess.exitCode() == 0; });

  EXPECT_EQ(mProcess.exitStatus(), QProcess::NormalExit);
  EXPECT_TRUE(mProcess.readAllStandardOutput().startsWith("Opened " + kMonoCamera.toUtf8()));
}

TEST_F(WindowExample, PickCamera_CancelledSaysThatNoneWasPicked) {
  ASSERT_NO_FATAL_FAILURE(Start(PICK_CAMERA_PATH, {"A vendor that nobody is"}));

  ActivateWindow(kFinder);
  MoveHands({"key", "Escape"});

  ASSERT_TRUE(mProcess.waitForFinished(kLimitMs));
  EXPECT_EQ(mProcess.exitCode(), 1);
  EXPECT_TRUE(mProcess.readAllStandardError().startsWith("No camera was picked."));
}

TEST_F(FirstApplication, Settings_AreFoundAgainAtTheNextStart) {
  ASSERT_NO_FATAL_FAILURE(RunOnce());
  const QString first = ReadSettings();
  ASSERT_TRUE(first.contains("\nExposureTime\t1000\n")) << first.toStdString();

  // The simulated camera of the next process begins anew, as one that was switched off.
  WriteSettings(QString(first).replace("\nExposureTime\t1000\n", "\nExposureTime\t2500\n"));
  ASSERT_NO_FATAL_FAILURE(RunOnce());

  EXPECT_TRUE(ReadSettings().contains("\nExposureTime\t2500\n")) << ReadSettings().toStdString();
}
