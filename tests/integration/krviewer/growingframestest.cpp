// A camera that lets its frames grow while it streams: the buffers of the stream that runs have no room for them.

#include "acquisition/acquisition.h"
#include "await.h"
#include "fakecamera.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>

using krtest::Await;
using krviewer::Acquisition;
using krviewer::AcquisitionState;

namespace {

/// The width of the last whole frame.
struct WidthSink : krviewer::FrameSink {
  void OnFrame(const KrBuffer& aFrame, std::uint64_t) override {
    if (aFrame.GetStatus() == KrBufferStatus::Complete)
      width = aFrame.GetImage()->GetWidth();
  }
  std::atomic<std::uint32_t> width = 0;
};

class GrowingFramesTest : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = true, .usb3Vision = false}).IsOK());
    mSystem.SetDetectionTimeout(krtest::GetGenerousMs()); // The answer ends it.
    ASSERT_TRUE(mSystem.FindDevice("127.0.0.1", &mInfo).IsOK());
  }
  static KrResult SetWidth(Acquisition& aAcquisition, std::int64_t aWidth) {
    std::optional<KrResult> end;
    aAcquisition.Do(
        {.run = [=](KrGenParameterArray& aParameters) { return aParameters.GetInteger("Width")->SetValue(aWidth); },
         .then = [&](const KrResult& aResult) { end = aResult; }});
    EXPECT_TRUE(Await([&] {
      aAcquisition.LookAgain();
      return end.has_value();
    }));
    return end.value_or(KrResult(KrResult::Code::TimeLimitExceeded));
  }

  const FakeCamera mCamera;
  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  KrDisplayWnd mWindow;
  WidthSink mSink;
};

} // namespace

TEST_F(GrowingFramesTest, WidthSetWhileItStreams_FramesComeOnInTheNewSize) {
  Acquisition acquisition(mWindow, krviewer::BorrowCamera(*mInfo), {.startsAtOnce = false, .sink = &mSink});
  ASSERT_TRUE(Await([&] { return acquisition.GetProgress().state == AcquisitionState::Connected; }));
  ASSERT_TRUE(SetWidth(acquisition, 256).IsOK());
  acquisition.Start();
  ASSERT_TRUE(Await([&] { return mSink.width == 256; }));

  ASSERT_TRUE(SetWidth(acquisition, 1024).IsOK());

  EXPECT_TRUE(Await([&] { return mSink.width == 1024; }));
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Streaming);
}

TEST_F(GrowingFramesTest, WidthThatShrinks_StreamsOn) {
  Acquisition acquisition(mWindow, krviewer::BorrowCamera(*mInfo), {.sink = &mSink});
  ASSERT_TRUE(Await([&] { return mSink.width != 0; }));

  ASSERT_TRUE(SetWidth(acquisition, 256).IsOK());

  EXPECT_TRUE(Await([&] { return mSink.width == 256; }));
}
