// The viewer without a mouse, what it keeps for its next run, and what becomes of kept settings that make no sense.

#include "viewersession.h"

#include <QFileInfo>

namespace {

const QString kCamera = "Simulated Mono Camera (192.168.77.10)";

class ViewerKeyboard : public ViewerSession {
protected:
  /// From the first page to the camera that needs no hardware.
  void OpenSimulated() {
    Start({});
    ASSERT_TRUE(User().AwaitWindow("krviewer"));
    User().Press("alt+s");
    ASSERT_TRUE(AwaitStreaming(kCamera));
  }
  void Quit() {
    User().Press("ctrl+q");
    EXPECT_EQ(User().AwaitEnd(), 0) << User().GetErrors().toStdString();
  }
  bool HasPanel(const QString& aName) {
    return User()
        .GetScreen()
        .Find([&](const AccessibleItem& aItem) { return aItem.role == "frame" && aItem.name == aName; })
        .has_value();
  }
  QSize GetWindowSize() {
    const auto window =
        User().GetScreen().Find([](const AccessibleItem& aItem) { return aItem.role == "frame" && aItem.isActive; });
    return window ? User().GetScreen().GetPlace(*window).size() : QSize();
  }
};

} // namespace

TEST_F(ViewerKeyboard, FromTheFirstPageToASavedFrame_NeedsNoMouse) {
  Start({"--simulate"});
  ASSERT_TRUE(User().AwaitWindow("krviewer"));
  User().Press("alt+n");
  ASSERT_TRUE(User().AwaitWindow("Device Selection"));
  ASSERT_TRUE(User().AwaitControl("tree item", kCamera));
  User().Press("Home");
  ASSERT_TRUE(User().Await("the camera in the list", [&] {
    if (User().GetFocused().name == kCamera)
      return true;
    User().Press("Down");
    return false;
  }));
  User().Press("Return");
  ASSERT_TRUE(AwaitStreaming(kCamera));

  User().Press("shift+F5");
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - stopped"));
  const QString path = GetPath("frame.png");
  ASSERT_TRUE(User().Choose("f", "Save Frame…", "s"));
  ASSERT_TRUE(User().AwaitWindow("Save Frame"));
  User().Press("ctrl+a");
  User().Type(path);
  User().Press("Return");

  EXPECT_TRUE(User().Await(path, [&] { return QFileInfo::exists(path); }));
  ASSERT_TRUE(User().AwaitWindow(kCamera + " - stopped"));
  Quit();
}

TEST_F(ViewerKeyboard, PanelsAndWindow_AreAsTheyWereInTheNextRun) {
  ASSERT_NO_FATAL_FAILURE(OpenSimulated());
  ASSERT_TRUE(HasPanel("Camera Features"));
  User().Press("alt+1");
  ASSERT_TRUE(User().Await("no features", [&] { return !HasPanel("Camera Features"); }));
  User().Press("alt+4");
  ASSERT_TRUE(User().Await("the histogram", [&] { return HasPanel("Histogram"); }));
  User().ResizeWindow({900, 700});
  ASSERT_TRUE(User().Await("another size", [&] { return GetWindowSize() == QSize(900, 700); }));
  Quit();

  ASSERT_NO_FATAL_FAILURE(OpenSimulated());

  EXPECT_TRUE(User().Await("the size", [&] { return GetWindowSize() == QSize(900, 700); }));
  EXPECT_TRUE(User().Await("the histogram", [&] { return HasPanel("Histogram"); }));
  EXPECT_FALSE(HasPanel("Camera Features"));
  Quit();
}

TEST_F(ViewerKeyboard, DamagedSettings_AreToldAndBeginAnew) {
  WriteFile("config/krgui/krviewer.ini",
            QByteArray("\x00\xff[[[\nwindow\\\\layout=@ByteArray(\n[page]\nlayout=\xfe\n", 43));

  Start({});
  ASSERT_TRUE(User().AwaitWindow("krviewer"));
  EXPECT_TRUE(User().AwaitText("krviewer.ini are damaged"));
  User().Press("alt+s");
  ASSERT_TRUE(AwaitStreaming(kCamera));
  EXPECT_TRUE(User().Await("the features", [&] { return HasPanel("Camera Features"); }));
  Quit();

  Start({});
  ASSERT_TRUE(User().AwaitControl("push button", kCamera));
  EXPECT_FALSE(User().Has("damaged"));
}
