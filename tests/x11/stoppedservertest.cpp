// Drawing surfaces whose X server stops, goes on, or ends: nobody waits for it for long, and nothing ends with it.

#include "platform/windowsurface.h"

#include "await.h"
#include "surfacedrawing.h"
#include "surfacewindow.h"
#include "threadstate.h"
#include "xvfbserver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace krgui {

namespace {

using krtest::Await;
using std::chrono::milliseconds;

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr milliseconds kShortLimit(50);
/// Longer than a test may last: whoever waits for it fails.
constexpr milliseconds kEndlessLimit = std::chrono::hours(10);

class StoppedServer : public testing::TestWithParam<SurfaceKind> {
protected:
  void SetUp() override {
    mSurface = MakeWindowSurface(mServer.GetDisplayName(), mWindow.GetID(), GetParam(), GetFarLimit());
    ASSERT_TRUE(mSurface);
    ASSERT_EQ(mSurface->GetKind(), GetParam());
  }
  // Both buffers are on their way, and the server does not read.
  void StopWithAllInFlight() {
    ASSERT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, 1)));
    ASSERT_TRUE(IsSoonOnScreen(mWindow, MakePicture(kWidth, kHeight, 1)));
    mServer.Stop();
    ASSERT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, 2)));
    ASSERT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, 3)));
  }
  bool Gives(milliseconds aLimit) { return mSurface->Begin(kWidth, kHeight, aLimit).has_value(); }
  /// Somebody waits for the server, which goes on then.
  void ExpectThatItIsWaitedFor() {
    bool isGiven = false;
    krtest::CallBeside call([&] { isGiven = Gives(kEndlessLimit); });

    EXPECT_TRUE(call.Waits());
    mServer.Continue();
    call.Join();

    EXPECT_TRUE(isGiven);
  }

  XvfbServer mServer;
  SurfaceWindow mWindow{10, 20, kWidth, kHeight, mServer.GetDisplayName()};
  std::unique_ptr<DrawingSurface> mSurface;
};

TEST_P(StoppedServer, BuffersInFlight_AreNeverHandedOut) {
  StopWithAllInFlight();

  EXPECT_FALSE(Gives(milliseconds(0)));
  EXPECT_FALSE(Gives(milliseconds(0)));
  EXPECT_FALSE(Gives(kShortLimit));
  EXPECT_FALSE(Gives(milliseconds(0)));
  EXPECT_FALSE(mSurface->Present({0, 0, kWidth, kHeight}, 9));
  EXPECT_FALSE(mSurface->IsLost());
}

TEST_P(StoppedServer, AfterALimitHasPassed_NobodyWaitsAgain) {
  StopWithAllInFlight();

  EXPECT_FALSE(Gives(kShortLimit));

  EXPECT_FALSE(Gives(kEndlessLimit));
  EXPECT_FALSE(Gives(kEndlessLimit));
}

TEST_P(StoppedServer, Looking_DoesNotKeepFromWaitingLater) {
  StopWithAllInFlight();

  EXPECT_FALSE(Gives(milliseconds(0)));

  ExpectThatItIsWaitedFor();
}

TEST_P(StoppedServer, ServerGoesOn_SoDoFrames) {
  StopWithAllInFlight();
  EXPECT_FALSE(Gives(kShortLimit));

  mServer.Continue();

  EXPECT_TRUE(IsSoonOnScreen(mWindow, MakePicture(kWidth, kHeight, 3)));
  EXPECT_TRUE(Await([&] { return Gives(milliseconds(0)); }));
  for (std::uint32_t seed = 4; seed < 10; ++seed) {
    EXPECT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, seed)));
  }
  EXPECT_TRUE(IsSoonOnScreen(mWindow, MakePicture(kWidth, kHeight, 9)));
}

TEST_P(StoppedServer, ServerHasGoneOn_IsWaitedForAgain) {
  StopWithAllInFlight();
  EXPECT_FALSE(Gives(kShortLimit));
  mServer.Continue();
  EXPECT_TRUE(Await([&] { return Gives(milliseconds(0)); }));

  StopWithAllInFlight();

  ExpectThatItIsWaitedFor();
}

TEST_P(StoppedServer, ServerGoesOnWhileSomebodyWaits_WaitingEndsWithABuffer) {
  StopWithAllInFlight();

  ExpectThatItIsWaitedFor();
}

TEST_P(StoppedServer, SurfaceEnds_WithoutTheServerAndTheNextOneShows) {
  StopWithAllInFlight();

  mSurface.reset();

  mServer.Continue();
  mWindow.Synchronise();
  mSurface = MakeWindowSurface(mServer.GetDisplayName(), mWindow.GetID(), GetParam(), GetFarLimit());
  ASSERT_TRUE(mSurface);
  EXPECT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, 4)));
  EXPECT_TRUE(IsSoonOnScreen(mWindow, MakePicture(kWidth, kHeight, 4)));
}

TEST_P(StoppedServer, ServerEndsWithFramesInFlight_SurfaceIsLost) {
  StopWithAllInFlight();

  mServer.Kill();

  EXPECT_FALSE(Gives(kEndlessLimit));
  EXPECT_TRUE(mSurface->IsLost());
  EXPECT_FALSE(Gives(milliseconds(0)));
}

TEST_P(StoppedServer, ServerEndsBetweenBeginAndPresent_SurfaceIsLost) {
  ASSERT_TRUE(Show(*mSurface, MakePicture(kWidth, kHeight, 1)));
  ASSERT_TRUE(Gives(kGenerousLimit));

  mServer.Kill();
  mSurface->Present({0, 0, kWidth, kHeight}, 2);

  EXPECT_TRUE(Await([&] { return !Gives(kGenerousLimit) && mSurface->IsLost(); }));
  EXPECT_FALSE(mSurface->Present({0, 0, kWidth, kHeight}, 3));
}

TEST_P(StoppedServer, ServerEndsWhileFramesAreSent_SurfaceIsLost) {
  std::atomic<int> shown = 0;
  std::thread drawing([&] {
    while (Show(*mSurface, MakeUniform(kWidth, kHeight, 0x112233))) {
      ++shown;
    }
  });
  EXPECT_TRUE(Await([&] { return shown >= 20; }));

  mServer.Kill();
  drawing.join();

  EXPECT_TRUE(mSurface->IsLost());
}

TEST_P(StoppedServer, ServerThatHasEnded_HasNoSurface) {
  mServer.Kill();

  EXPECT_FALSE(MakeWindowSurface(mServer.GetDisplayName(), mWindow.GetID(), GetParam(), GetFarLimit()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, StoppedServer,
                         testing::Values(SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV,
                                         SurfaceKind::PlainPut),
                         [](const auto& aInfo) { return GetName(aInfo.param); });

} // namespace

} // namespace krgui
