#pragma once
// What the tests of open GigE Vision devices have in common: a camera of an independent program on loopback, found and
// opened, and a sink that a test can wait for.

#include "await.h"
#include "fakecamera.h"

#include "gigevision/gigevisiontransport.h"
#include "krsystem/idevicelink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arv.h>

#include <array>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <sys/types.h>

inline constexpr std::uint32_t kLoopback = 0x7F000001;
inline const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();
inline constexpr std::uint64_t kWidthRegister = 0x100;
inline constexpr std::uint64_t kHeightRegister = 0x104;
inline constexpr std::uint64_t kFramePeriodRegister = 0x138; ///< Microseconds.
inline constexpr std::uint64_t kControlPrivilege = 0x0A00;
inline constexpr std::uint64_t kPacketSizeRegister = 0x0D04;
inline constexpr std::uint64_t kPacketDelayRegister = 0x0D08;
inline constexpr std::uint32_t kWidth = 1280;
inline constexpr std::uint32_t kHeight = 960;

/// Counts what a link tells, and lets a test wait for it.
class RecordingSink : public krsystem::IDeviceLinkSink {
public:
  void OnLinkLost(const KrResult& aReason) override;
  void OnLinkBack() override;

  bool WaitForLost();
  bool WaitForBack();
  int GetLostCount();
  int GetBackCount();
  KrResult GetReason();

private:
  // Guards the members below.
  std::mutex mMutex;
  std::condition_variable mChanged;
  int mLost = 0;
  int mBack = 0;
  KrResult mReason;
};

/// A camera's register, most significant byte first; a failure fails the test and gives 0.
std::uint32_t ReadRegister(krsystem::IDeviceLink& aLink, std::uint64_t aAddress);
KrResult WriteRegister(krsystem::IDeviceLink& aLink, std::uint64_t aAddress, std::uint32_t aValue);

/// Returns once a thread of this process, which does nothing but the call that is to wait, sleeps; a thread that never
/// does fails the test.
void WaitUntilAsleep(pid_t aThread);

/// One camera on loopback.
class GigEVisionCameraTest : public testing::Test {
protected:
  explicit GigEVisionCameraTest(FakeCameraOptions aOptions = {}) : mOptions(std::move(aOptions)) {}

  void SetUp() override;
  static void TearDownTestSuite() { arv_shutdown(); }

  KrResult Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink);
  /// A link with control; null, and a failure, where there is none.
  std::unique_ptr<krsystem::IDeviceLink> OpenControlled();
  krsystem::AccessType GetAccessType();
  /// Ends the camera as pulling its plug would, and starts another in its place.
  void RestartCamera();

  const FakeCameraOptions mOptions;
  std::unique_ptr<FakeCamera> mCamera = std::make_unique<FakeCamera>(mOptions);
  krtransport::GigEVisionTransport mTransport;
  krsystem::InterfaceFields mInterface;
  krsystem::AnyDeviceFields mDevice;
};

/// One camera, opened with control and set to kWidth by kHeight Mono8.
class GigEVisionStreamTest : public GigEVisionCameraTest {
protected:
  using GigEVisionCameraTest::GigEVisionCameraTest;

  void SetUp() override;
  /// Queues buffers and starts.
  KrResult Start(std::size_t aBufferBytes = std::size_t{kWidth} * kHeight);
  /// What a call of Retrieve returned that another thread waited in, with no end of its own in sight, when aAction
  /// came.
  KrResult EndWaitBy(const std::function<void()>& aAction);
  /// Takes the next frame; null, and a failure, where none comes.
  KrBuffer* Retrieve();

  std::array<KrBuffer, 8> mBuffers;
  RecordingSink mSink;
  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IBufferSource* mSource = nullptr;
};
