// The examples that show a camera's features, run as a user runs them: what stands in their rows is copied by keyboard.

#include "exampleonscreen.h"

#include <QClipboard>

namespace {

using krtest::MoveHands;

const QString kCamera = "Simulated .* Camera";

class BrowserExample : public ExampleOnScreen {
protected:
  /// Copies the row that has the keyboard until it shows this: it may not have been read yet.
  static void ExpectRow(const QString& aText) {
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const bool isShown = krtest::AwaitCondition([&] {
      MoveHands({"key", "ctrl+c"});
      return QTest::qWaitFor([&] { return clipboard.text() == aText; }, kTryMs);
    });
    EXPECT_TRUE(isShown) << "not \"" << aText.toStdString() << "\" but \"" << clipboard.text().toStdString() << '"';
  }
};

} // namespace

TEST_F(BrowserExample, FeatureBrowser_ShowsThoseFeaturesAloneThatWereAskedFor) {
  StartWindow(FEATURE_BROWSER_PATH, kCamera, {"Exposure"});

  MoveHands({"key", "Home", "Down"});
  ExpectRow("ExposureMode = Timed");
  MoveHands({"key", "Down"});
  ExpectRow("ExposureTime = 1000 us");
  ExpectEnd();

  EXPECT_EQ(mProcess.readAllStandardOutput(), "Nothing was written.\n");
}

TEST_F(BrowserExample, OwnBrowser_FindsAFeatureAndWritesIt) {
  StartWindow(OWN_BROWSER_PATH, kCamera);

  MoveHands({"mousemove", "--window", mWindow, "60", "20", "click", "1", "type", "ExposureTime"});
  MoveHands({"key", "Tab", "Tab"});
  ExpectRow("ExposureTime = 1000 us");
  MoveHands({"key", "Return", "ctrl+a"});
  MoveHands({"type", "2500"});
  MoveHands({"key", "Return"});
  ExpectRow("ExposureTime = 2500 us");
  ExpectEnd();
}
