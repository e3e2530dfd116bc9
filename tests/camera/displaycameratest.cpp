// From an independent camera to the screen, in one process: found, opened, streamed, shown, and compared pixel by
// pixel.

#include "await.h"
#include "displaypictures.h"
#include "fakecamera.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "packetpatience.h"
#include "plainpicture.h"
#include "windowwait.h"

#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

namespace {

constexpr std::uint64_t kWidthRegister = 0x100;
constexpr std::uint64_t kHeightRegister = 0x104;
constexpr std::uint64_t kTriggerModeRegister = 0x300;
constexpr std::uint64_t kTriggerSourceRegister = 0x304;
constexpr std::uint64_t kTriggerRegister = 0x30C;
constexpr std::uint32_t kSoftwareTrigger = 1;
constexpr std::uint32_t kWidth = 480;
constexpr std::uint32_t kHeight = 360;

void WriteNumber(KrDevice& aDevice, std::uint64_t aAddress, std::uint32_t aValue) {
  const std::array<std::uint8_t, 4> bytes = {static_cast<std::uint8_t>(aValue >> 24),
                                             static_cast<std::uint8_t>(aValue >> 16),
                                             static_cast<std::uint8_t>(aValue >> 8), static_cast<std::uint8_t>(aValue)};
  const KrResult written = aDevice.GetRegisterPort().Write(aAddress, bytes.data(), bytes.size(), krtest::kGenerousMs);
  ASSERT_TRUE(written.IsOK()) << written.GetDescription().CStr();
}

class CameraInAWindow : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = true, .simulation = false}).IsOK());
    mSystem.SetDetectionTimeout(2000);
  }

  void FindByAddress(const KrDeviceInfo*& aInfo) {
    mSystem.SetDetectionTimeout(krtest::kGenerousMs); // The answer ends it.
    ASSERT_TRUE(mSystem.FindDevice("127.0.0.1", &aInfo).IsOK());
  }
  void Open(const KrDeviceInfo& aInfo) {
    const KrResult opened = KrDevice::Open(aInfo, KrDeviceAccess::Control, mDevice);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  }

  FakeCamera mCamera;
  KrSystem mSystem;
  std::unique_ptr<KrDevice> mDevice;
};

} // namespace

TEST_F(CameraInAWindow, ByBroadcastAndByAddress_IsTheSameDevice) {
  // One that has to wait for a processor answers too late for a round, and is heard in another.
  KrResult found;
  ASSERT_TRUE(krtest::Await([&] {
    found = mSystem.Find();
    return !found.IsOK() || mSystem.GetDeviceCount() > 0;
  }));
  ASSERT_TRUE(found.IsOK()) << found.GetDescription().CStr();
  ASSERT_EQ(mSystem.GetDeviceCount(), 1u);
  const KrDeviceInfo* byBroadcast = mSystem.GetDeviceInfo(0);
  const KrDeviceInfo* byAddress = nullptr;

  FindByAddress(byAddress);

  ASSERT_NE(byAddress, nullptr);
  EXPECT_EQ(byAddress->GetUniqueID(), byBroadcast->GetUniqueID());
  EXPECT_EQ(byAddress->GetVendorName(), KrString("Aravis"));
  EXPECT_TRUE(byAddress->IsConfigurationValid());
}

TEST_F(CameraInAWindow, TwoHundredFrames_ComeWholeAndTheLastIsOnTheRootWindow) {
  const KrDeviceInfo* info = nullptr;
  FindByAddress(info);
  Open(*info);
  WriteNumber(*mDevice, kWidthRegister, kWidth);
  WriteNumber(*mDevice, kHeightRegister, kHeight);
  // Camera, stream, window and X server share the machine, and a sanitizer may slow them down: what is tested is that
  // every frame comes whole, not how many a second. The camera waits for a trigger, which comes when the last was
  // shown, and a frame finds room in the smallest of sockets.
  WriteNumber(*mDevice, kTriggerSourceRegister, kSoftwareTrigger);
  WriteNumber(*mDevice, kTriggerModeRegister, 1);
  KrDisplayWnd window;
  window.SetPosition(100, 100, kWidth, kHeight);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));
  KrStream stream(*mDevice);
  ASSERT_NO_FATAL_FAILURE(krtest::WaitForPackets(stream));
  const KrResult started = stream.Start();
  ASSERT_TRUE(started.IsOK()) << started.GetDescription().CStr();

  KrBuffer* last = nullptr;
  const auto showFrames = [&] {
    for (int frame = 0; frame < 200; ++frame) {
      KrBuffer* buffer = nullptr;
      WriteNumber(*mDevice, kTriggerRegister, 1);
      ASSERT_TRUE(stream.Retrieve(buffer, krtest::kGenerousMs).IsOK());
      ASSERT_EQ(buffer->GetStatus(), KrBufferStatus::Complete);
      ASSERT_EQ(buffer->GetImage()->GetWidth(), kWidth);
      ASSERT_EQ(buffer->GetImage()->GetHeight(), kHeight);
      ASSERT_TRUE(window.Display(*buffer, false).IsOK());
      std::swap(last, buffer);
      ASSERT_TRUE(!buffer || stream.Release(buffer).IsOK());
    }
  };
  std::atomic<bool> isOver = false;
  std::jthread acquisition([&] {
    showFrames();
    isOver = true;
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return isOver.load(); }, 4 * krtest::GetGenerousMs()));

  ASSERT_NE(last, nullptr);
  const KrStreamStatistics statistics = stream.GetStatistics();
  EXPECT_EQ(statistics.incomplete, 0u);
  EXPECT_GE(statistics.received, 200u);
  const QRect client(window.GetWidget()->mapToGlobal(QPoint(0, 0)), window.GetWidget()->size());
  const QImage received = ToQImage(*last->GetImage());
  EXPECT_TRUE(krtest::AwaitCondition([&] { return plainpicture::Compare(GrabScreen(client), received).empty(); }))
      << plainpicture::Compare(GrabScreen(client), received);
}

TEST_F(CameraInAWindow, KilledWhileFramesArrive_EndsTheStreamWithAResultAndAnEventAndTheWindowLivesOn) {
  const KrDeviceInfo* info = nullptr;
  FindByAddress(info);
  Open(*info);
  KrDisplayWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(stream.Retrieve(buffer, krtest::kGenerousMs).IsOK());
  ASSERT_TRUE(window.Display(*buffer, false).IsOK());

  class LossSink : public KrDeviceEventSink {
  public:
    void OnDeviceLost(KrDevice*, const KrResult&) override { lost = true; }
    void OnDeviceBack(KrDevice*) override {}
    std::atomic<bool> lost = false;
  } sink;
  ASSERT_TRUE(mDevice->RegisterEventSink(&sink).IsOK());

  mCamera.Kill();

  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = stream.Retrieve(buffer, 100);
    EXPECT_TRUE(!result.IsOK() || stream.Release(buffer).IsOK());
    return !result.IsOK() && !(result == KrResult::Code::TimeLimitExceeded);
  }));
  EXPECT_TRUE(result == KrResult::Code::ConnectionLost) << result.GetCodeString().CStr();
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  EXPECT_FALSE(mDevice->IsConnected());
  EXPECT_TRUE(krtest::AwaitCondition([&] { return sink.lost.load(); }));
  EXPECT_TRUE(mDevice->UnregisterEventSink(&sink).IsOK());
  EXPECT_TRUE(window.DoEvents().IsOK());
  EXPECT_NE(window.GetHandle(), 0u);
}
