// The examples that show a camera's features, run as a user runs them: what stands in their rows is copied by keyboard.

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

namespace {

constexpr int kLimitMs = 60000;
constexpr int kTryMs = 500;
const QString kCamera = "Simulated .* Camera";

// A user's hands; what they find is what xdotool prints.
QString MoveHands(const QStringList& aMovement) {
  QProcess hands;
  hands.start("xdotool", aMovement);
  EXPECT_TRUE(hands.waitForFinished(kLimitMs) && hands.exitCode() == 0)
      << aMovement.join(' ').toStdString() << ": " << hands.readAllStandardError().toStdString();
  return QString::fromUtf8(hands.readAllStandardOutput()).trimmed();
}

/// An example on the simulated cameras, from its start to its end.
class BrowserExample : public testing::Test {
protected:
  void Start(const QString& aPath, const QStringList& aArguments = {}) {
    mProcess.start(aPath, QStringList{"--simulate"} + aArguments);
    ASSERT_TRUE(mProcess.waitForStarted(kLimitMs));
    MoveHands({"search", "--sync", "--onlyvisible", "--name", kCamera, "windowactivate", "--sync"});
  }
  void TearDown() override {
    if (mProcess.state() == QProcess::NotRunning)
      return;
    mProcess.kill();
    mProcess.waitForFinished(kLimitMs);
  }

  /// Copies the row that has the keyboard until it shows this: it may not have been read yet.
  static void ExpectRow(const QString& aText) {
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const bool isShown = QTest::qWaitFor(
        [&] {
          MoveHands({"key", "ctrl+c"});
          return QTest::qWaitFor([&] { return clipboard.text() == aText; }, kTryMs);
        },
        kLimitMs);
    EXPECT_TRUE(isShown) << "not \"" << aText.toStdString() << "\" but \"" << clipboard.text().toStdString() << '"';
  }
  /// Closes the window as its user does.
  void ExpectEnd() {
    MoveHands({"key", "alt+F4"});
    ASSERT_TRUE(mProcess.waitForFinished(kLimitMs));
    EXPECT_EQ(mProcess.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(mProcess.exitCode(), 0) << mProcess.readAllStandardError().toStdString();
  }

  QProcess mProcess;
};

} // namespace

TEST_F(BrowserExample, FeatureBrowser_ShowsThoseFeaturesAloneThatWereAskedFor) {
  Start(FEATURE_BROWSER_PATH, {"Exposure"});

  MoveHands({"key", "Home", "Down"});
  ExpectRow("ExposureMode = Timed");
  MoveHands({"key", "Down"});
  ExpectRow("ExposureTime = 1000 us");
  ExpectEnd();

  EXPECT_EQ(mProcess.readAllStandardOutput(), "Nothing was written.\n");
}

TEST_F(BrowserExample, OwnBrowser_FindsAFeatureAndWritesIt) {
  Start(OWN_BROWSER_PATH);

  const QString window = MoveHands({"getactivewindow"});
  MoveHands({"mousemove", "--window", window, "60", "20", "click", "1", "type", "ExposureTime"});
  MoveHands({"key", "Tab", "Tab"});
  ExpectRow("ExposureTime = 1000 us");
  MoveHands({"key", "Return", "ctrl+a"});
  MoveHands({"type", "2500"});
  MoveHands({"key", "Return"});
  ExpectRow("ExposureTime = 2500 us");
  ExpectEnd();
}
