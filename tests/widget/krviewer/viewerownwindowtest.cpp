// Cameras in windows of their own beside the first one, and windows that fill the screen.

#include "viewerfixture.h"

#include <QMenuBar>
#include <QStatusBar>

namespace {

using ViewerOwnWindowTest = ViewerTest;

} // namespace

TEST_F(ViewerOwnWindowTest, CameraMovedToAWindowOfItsOwn_StreamsOnThereAndComesBack) {
  Begin();
  OpenStreaming(kColourMAC);
  OpenStreaming(kMonoMAC);

  ASSERT_TRUE(Choose("move"));

  ASSERT_EQ(mViewer->GetWindows().size(), 2);
  EXPECT_EQ(GetPage(0)->GetCamera().GetUniqueID(), kColourMAC);
  ASSERT_NE(GetPage(1), nullptr);
  EXPECT_EQ(GetPage(1)->GetCamera().GetUniqueID(), kMonoMAC);
  EXPECT_TRUE(GetPage(1)->isVisible());
  const std::uint64_t frames = GetPage(1)->GetProgress().figures.GetFrames();
  EXPECT_TRUE(Await([&] { return GetPage(1)->GetProgress().figures.GetFrames() > frames; }));

  ASSERT_TRUE(Choose("move", 1));

  EXPECT_TRUE(Await([this] { return mViewer->GetWindows().size() == 1; }));
  EXPECT_EQ(GetWindow().GetPages().size(), 2);
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kMonoMAC);
  EXPECT_FALSE(mViewer->IsOver());
}

TEST_F(ViewerOwnWindowTest, TerminalOfAWindowOfItsOwn_OpensAgainOverTheTabs) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Choose("move"));
  ASSERT_TRUE(Choose("terminal", 1));
  ASSERT_NE(FindWindow("Device Serial Communication"), nullptr);

  ASSERT_TRUE(Choose("move", 1));
  ASSERT_TRUE(Await([this] { return mViewer->GetWindows().size() == 1; }));

  EXPECT_TRUE(Await([] { return FindWindow("Device Serial Communication") == nullptr; }));
  ASSERT_TRUE(Choose("terminal"));
  EXPECT_NE(FindWindow("Device Serial Communication"), nullptr);
}

TEST_F(ViewerOwnWindowTest, WindowOfItsOwnClosed_GivesItsCameraBackAndLeavesTheOthers) {
  Begin();
  OpenStreaming(kColourMAC);
  OpenStreaming(kMonoMAC);
  ASSERT_TRUE(Choose("move"));

  GetWindow(1).close();

  EXPECT_TRUE(Await([this] { return mViewer->GetWindows().size() == 1; }));
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kColourMAC);
  EXPECT_FALSE(mViewer->IsOver());
  EXPECT_TRUE(AwaitFree(kMonoMAC));
}

TEST_F(ViewerOwnWindowTest, FirstWindowClosedBeforeTheOther_LeavesThat) {
  Begin();
  OpenStreaming(kMonoMAC);
  ASSERT_TRUE(Choose("move"));
  ASSERT_EQ(mViewer->GetWindows().size(), 2);

  GetWindow(0).close();

  EXPECT_FALSE(mViewer->IsOver());
  ASSERT_EQ(mViewer->GetWindows().size(), 1);
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kMonoMAC);
  ASSERT_TRUE(Choose("move"));
  EXPECT_TRUE(Await([this] { return mViewer->GetWindows().size() == 1 && !GetWindow().IsOwn(); }));
  EXPECT_EQ(GetPage()->GetCamera().GetUniqueID(), kMonoMAC);
}

TEST_F(ViewerOwnWindowTest, WindowOfItsOwnClosedLast_IsNotWhatTheNextRunBeginsWith) {
  constexpr QSize kFirst(810, 620);
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Choose("move"));
  GetWindow(0).resize(kFirst);
  GetWindow(1).resize(640, 500);
  ASSERT_TRUE(Await([&] { return GetWindow(0).size() == kFirst; }));
  GetWindow(0).close();
  ASSERT_TRUE(Await([this] { return mViewer->GetWindows().size() == 1; }));
  End();

  Begin();

  EXPECT_EQ(GetWindow().size(), kFirst);
}

TEST_F(ViewerOwnWindowTest, FullScreen_HidesTheBarsUntilEscape) {
  Begin();
  OpenStreaming();

  Press(Qt::Key_F11);
  EXPECT_TRUE(GetWindow().isFullScreen());
  EXPECT_FALSE(GetWindow().menuBar()->isVisible());

  Press(Qt::Key_Escape);
  EXPECT_FALSE(GetWindow().isFullScreen());
  EXPECT_TRUE(GetWindow().menuBar()->isVisible());

  Press(Qt::Key_Escape);
  EXPECT_FALSE(mViewer->IsOver());
}

TEST_F(ViewerOwnWindowTest, FullScreenLeftAndEnteredByTheWindowManager_ShowsAndHidesTheBars) {
  Begin();
  OpenStreaming();
  Press(Qt::Key_F11);
  ASSERT_FALSE(GetWindow().menuBar()->isVisible());

  GetWindow().showNormal();
  EXPECT_TRUE(GetWindow().menuBar()->isVisible());
  EXPECT_TRUE(GetWindow().statusBar()->isVisible());

  GetWindow().showFullScreen();
  EXPECT_FALSE(GetWindow().menuBar()->isVisible());
  EXPECT_FALSE(GetWindow().statusBar()->isVisible());
}
