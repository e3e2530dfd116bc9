#include "fakecamera.h"

#include "gigevision/gigevisiontransport.h"
#include "krsystem/idevicelink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arv.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

using krsystem::AccessType;
using krsystem::DeviceAccess;
using krtransport::GigEVisionTransport;

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::uint32_t kGenerousTimeoutMs = 20000;
constexpr std::chrono::seconds kGenerousLimit{60};
constexpr std::uint64_t kWidthRegister = 0x100;
constexpr std::uint64_t kHeightRegister = 0x104;
constexpr std::uint32_t kWidth = 1280;
constexpr std::uint32_t kHeight = 960;

/// Counts what a link tells, and lets a test wait for it.
class RecordingSink : public krsystem::IDeviceLinkSink {
public:
  void OnLinkLost(const KrResult& aReason) override {
    const std::lock_guard lock(mMutex);
    ++mLost;
    mReason = aReason;
    mChanged.notify_all();
  }
  void OnLinkBack() override {
    const std::lock_guard lock(mMutex);
    ++mBack;
    mChanged.notify_all();
  }
  bool WaitForLost() {
    return Wait([this] { return mLost > 0; });
  }
  bool WaitForBack() {
    return Wait([this] { return mBack > 0; });
  }
  int GetLostCount() {
    const std::lock_guard lock(mMutex);
    return mLost;
  }
  int GetBackCount() {
    const std::lock_guard lock(mMutex);
    return mBack;
  }
  KrResult GetReason() {
    const std::lock_guard lock(mMutex);
    return mReason;
  }

private:
  template <typename Condition>
  bool Wait(Condition aCondition) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, kGenerousLimit, aCondition);
  }

  // Guards the members below.
  std::mutex mMutex;
  std::condition_variable mChanged;
  int mLost = 0;
  int mBack = 0;
  KrResult mReason;
};

class GigEVisionLink : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(mCamera->IsAnswering());
    const KrResult result = mTransport.FindAddress(kLoopback, kGenerousTimeoutMs, mInterface, mDevice);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }

  static void TearDownTestSuite() { arv_shutdown(); }

  KrResult Open(DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
    return mTransport.Open(mInterface, mDevice, aAccess, aLink);
  }

  std::unique_ptr<krsystem::IDeviceLink> OpenControlled() {
    std::unique_ptr<krsystem::IDeviceLink> link;
    const KrResult result = Open(DeviceAccess::Control, link);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return link;
  }

  AccessType GetAccessType() {
    AccessType type = AccessType::Unknown;
    const KrResult result = mTransport.GetAccessType(mDevice, type);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return type;
  }

  std::unique_ptr<FakeCamera> mCamera = std::make_unique<FakeCamera>();
  GigEVisionTransport mTransport;
  krsystem::InterfaceFields mInterface;
  krsystem::AnyDeviceFields mDevice;
};

std::array<std::uint8_t, 4> ToBytes(std::uint32_t aValue) {
  return {static_cast<std::uint8_t>(aValue >> 24), static_cast<std::uint8_t>(aValue >> 16),
          static_cast<std::uint8_t>(aValue >> 8), static_cast<std::uint8_t>(aValue)};
}

KrResult WriteNumber(krsystem::IDeviceLink& aLink, std::uint64_t aAddress, std::uint32_t aValue) {
  const auto bytes = ToBytes(aValue);
  return aLink.GetRegisterPort().Write(aAddress, bytes.data(), bytes.size(), kGenerousTimeoutMs);
}

KrResult ReadNumber(krsystem::IDeviceLink& aLink, std::uint64_t aAddress, std::array<std::uint8_t, 4>& aBytes) {
  return aLink.GetRegisterPort().Read(aAddress, aBytes.data(), aBytes.size(), kGenerousTimeoutMs);
}

TEST_F(GigEVisionLink, Registers_Written_ReadBackInTheDevicesByteOrder) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  std::array<std::uint8_t, 4> bytes{};

  const KrResult written = WriteNumber(*link, kWidthRegister, kWidth);
  const KrResult read = ReadNumber(*link, kWidthRegister, bytes);

  EXPECT_TRUE(written.IsOK()) << written.GetDescription().CStr();
  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  EXPECT_EQ(bytes, ToBytes(kWidth));
}

TEST_F(GigEVisionLink, Registers_OddAddressAndLength_ReadTheBytesBetween) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  std::array<char, 3> text{};

  // The manufacturer's name, "Aravis", begins at 0x48.
  const KrResult result = link->GetRegisterPort().Read(0x49, text.data(), text.size(), kGenerousTimeoutMs);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(std::string(text.data(), text.size()), "rav");
}

TEST_F(GigEVisionLink, Registers_LongerThanOneDatagram_AreReadWhole) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  std::vector<std::uint8_t> whole(1024);
  std::vector<std::uint8_t> tail(8);

  const KrResult read = link->GetRegisterPort().Read(0, whole.data(), whole.size(), kGenerousTimeoutMs);
  const KrResult readTail = link->GetRegisterPort().Read(0x200, tail.data(), tail.size(), kGenerousTimeoutMs);

  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  EXPECT_TRUE(readTail.IsOK()) << readTail.GetDescription().CStr();
  EXPECT_EQ(std::string(whole.begin() + 0x48, whole.begin() + 0x48 + 6), "Aravis");
  EXPECT_TRUE(std::equal(tail.begin(), tail.end(), whole.begin() + 0x200));
}

TEST_F(GigEVisionLink, Registers_InvalidArguments_ReturnInvalidInput) {
  const auto link = OpenControlled();
  ASSERT_NE(link, nullptr);
  IKrRegisterPort& port = link->GetRegisterPort();
  std::array<std::uint8_t, 8> bytes{};

  EXPECT_EQ(port.Read(0, bytes.data(), 0, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0, bytes.data(), (16u << 20) + 1, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0xFFFFFFFF, bytes.data(), 2, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(std::uint64_t{1} << 32, bytes.data(), 4, 1000), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Write(0x102, bytes.data(), 4, 1000), KrResult::Code::InvalidInput);
}

TEST_F(GigEVisionLink, AccessType_OpenedAndClosed_FollowsTheDevice) {
  EXPECT_EQ(GetAccessType(), AccessType::Open);

  auto link = OpenControlled();
  EXPECT_EQ(GetAccessType(), AccessType::Control);

  link.reset();
  EXPECT_EQ(GetAccessType(), AccessType::Open);
}

TEST_F(GigEVisionLink, Open_Exclusive_TakesTheDeviceExclusively) {
  std::unique_ptr<krsystem::IDeviceLink> link;

  const KrResult result = Open(DeviceAccess::Exclusive, link);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetAccessType(), AccessType::Exclusive);
}

TEST_F(GigEVisionLink, Open_ControlledElsewhere_RefusesControlAndLetsMonitorRead) {
  const auto first = OpenControlled();
  std::unique_ptr<krsystem::IDeviceLink> second;
  std::unique_ptr<krsystem::IDeviceLink> monitor;
  std::array<std::uint8_t, 4> bytes{};

  const KrResult refused = Open(DeviceAccess::Control, second);
  const KrResult opened = Open(DeviceAccess::Monitor, monitor);

  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), testing::HasSubstr("another application"));
  ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  EXPECT_TRUE(ReadNumber(*monitor, 0x48, bytes).IsOK());
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "Arav");
  EXPECT_EQ(WriteNumber(*monitor, kWidthRegister, kWidth), KrResult::Code::AccessDenied);
  EXPECT_EQ(monitor->GetBufferSource(0), nullptr);
}

TEST_F(GigEVisionLink, Open_CameraGone_ReturnsNotFound) {
  mCamera->Kill();
  std::unique_ptr<krsystem::IDeviceLink> link;

  const KrResult result = Open(DeviceAccess::Control, link);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_EQ(link, nullptr);
}

class GigEVisionStream : public GigEVisionLink {
protected:
  void SetUp() override {
    GigEVisionLink::SetUp();
    if (HasFatalFailure())
      return;
    mLink = OpenControlled();
    ASSERT_NE(mLink, nullptr);
    mLink->SetSink(&mSink);
    ASSERT_TRUE(WriteNumber(*mLink, kWidthRegister, kWidth).IsOK());
    ASSERT_TRUE(WriteNumber(*mLink, kHeightRegister, kHeight).IsOK());
    mSource = mLink->GetBufferSource(0);
    ASSERT_NE(mSource, nullptr);
  }

  /// Queues buffers and starts.
  KrResult Start(std::size_t aBufferBytes = kWidth * kHeight) {
    for (KrBuffer& buffer : mBuffers)
      if (!buffer.Alloc(aBufferBytes).IsOK() || !mSource->Queue(&buffer).IsOK())
        return KrResult::Code::SystemError;
    return mSource->Start();
  }

  std::array<KrBuffer, 8> mBuffers;
  RecordingSink mSink;
  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IBufferSource* mSource = nullptr;
};

TEST_F(GigEVisionStream, PayloadSize_WidthAndHeightSet_IsTheirProduct) {
  std::uint64_t bytes = 0;

  const KrResult result = mSource->GetPayloadSize(bytes);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(bytes, std::uint64_t{kWidth} * kHeight);
}

TEST_F(GigEVisionStream, Retrieve_TwoHundredFrames_AreAllComplete) {
  const KrResult started = Start();
  ASSERT_TRUE(started.IsOK()) << started.GetDescription().CStr();
  std::uint64_t lastFrameID = 0;

  for (int i = 0; i < 200; ++i) {
    KrBuffer* buffer = nullptr;
    const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_EQ(buffer->GetStatus(), KrBufferStatus::Complete) << "frame " << i;
    ASSERT_EQ(buffer->GetPayloadType(), KrPayloadType::Image);
    ASSERT_EQ(buffer->GetImage()->GetWidth(), kWidth);
    ASSERT_EQ(buffer->GetImage()->GetHeight(), kHeight);
    ASSERT_EQ(buffer->GetImage()->GetPixelType(), KrPixel::Mono8);
    ASSERT_EQ(buffer->GetAcquiredSize(), std::size_t{kWidth} * kHeight);
    ASSERT_NE(buffer->GetFrameID(), lastFrameID);
    ASSERT_GT(buffer->GetHostTimestampNs(), 0u);
    lastFrameID = buffer->GetFrameID();
    ASSERT_TRUE(mSource->Queue(buffer).IsOK());
  }
  const auto statistics = mSource->GetStatistics();
  mSource->Stop();

  EXPECT_GE(statistics.received, 200u);
  EXPECT_EQ(statistics.incomplete, 0u);
  EXPECT_GE(statistics.bytes, std::uint64_t{200} * kWidth * kHeight);
}

TEST_F(GigEVisionStream, Retrieve_BuffersSmallerThanTheFrame_SaysTooSmallOrIncomplete) {
  ASSERT_TRUE(Start(1000).IsOK());
  KrBuffer* buffer = nullptr;

  const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(buffer->GetStatus(), testing::AnyOf(KrBufferStatus::TooSmall, KrBufferStatus::Incomplete));
  EXPECT_LE(buffer->GetAcquiredSize(), 1000u);
}

TEST_F(GigEVisionStream, Retrieve_NoBufferQueued_ReturnsTimeLimitExceeded) {
  ASSERT_TRUE(mSource->Start().IsOK());
  KrBuffer* buffer = nullptr;

  const KrResult result = mSource->Retrieve(buffer, 50);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(buffer, nullptr);
}

TEST_F(GigEVisionStream, Stop_WhileAnotherThreadWaits_EndsTheWaitWithAborted) {
  ASSERT_TRUE(mSource->Start().IsOK());
  KrResult result;
  std::thread waiter([&] {
    KrBuffer* buffer = nullptr;
    result = mSource->Retrieve(buffer, 3600000);
  });

  mSource->Stop();
  waiter.join();

  EXPECT_EQ(result, KrResult::Code::Aborted);
}

TEST_F(GigEVisionStream, Stop_BuffersQueued_LeavesThemAloneAndStartsAgain) {
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());

  mSource->Stop();
  for (KrBuffer& each : mBuffers)
    each.Free();
  const KrResult stopped = mSource->Retrieve(buffer, 0);
  const KrResult again = Start();
  const KrResult retrieved = mSource->Retrieve(buffer, kGenerousTimeoutMs);

  EXPECT_EQ(stopped, KrResult::Code::Aborted);
  EXPECT_TRUE(again.IsOK()) << again.GetDescription().CStr();
  EXPECT_TRUE(retrieved.IsOK()) << retrieved.GetDescription().CStr();
}

TEST_F(GigEVisionStream, CameraKilledWhileStreaming_EndsRetrieveAndRegistersWithConnectionLost) {
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());
  mCamera->Kill();

  KrResult result;
  const auto limit = std::chrono::steady_clock::now() + kGenerousLimit;
  while (result != KrResult::Code::ConnectionLost && std::chrono::steady_clock::now() < limit)
    result = mSource->Retrieve(buffer, 1000);

  EXPECT_EQ(result, KrResult::Code::ConnectionLost);
  EXPECT_TRUE(mSink.WaitForLost());
  EXPECT_FALSE(mLink->IsConnected());
  EXPECT_EQ(mSink.GetLostCount(), 1);
  EXPECT_EQ(mSink.GetReason(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(WriteNumber(*mLink, kWidthRegister, 100), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mSource->Queue(&mBuffers[0]), KrResult::Code::WrongState);
  EXPECT_EQ(mSource->Start(), KrResult::Code::WrongState);
  mSource->Stop();
  EXPECT_EQ(mSource->Start(), KrResult::Code::ConnectionLost);
}

TEST_F(GigEVisionStream, CameraKilled_StoppedBeforeTheLossIsNoticed_StopReturns) {
  ASSERT_TRUE(Start().IsOK());
  mCamera->Kill();

  mSource->Stop();

  KrBuffer* buffer = nullptr;
  EXPECT_THAT(mSource->Retrieve(buffer, 0).GetCode(),
              testing::AnyOf(KrResult::Code::Aborted, KrResult::Code::ConnectionLost));
}

TEST_F(GigEVisionStream, CameraKilled_RegisterReadWithAShortLimit_ReturnsAndTheNextFailsAtOnce) {
  mCamera->Kill();
  std::array<std::uint8_t, 4> bytes{};

  const KrResult first = mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 50);
  const KrResult second = mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 3600000);

  EXPECT_EQ(first, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(second.GetCode(), testing::AnyOf(KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost));
}

TEST_F(GigEVisionStream, CameraRestarted_AfterItsLoss_TellsOnceThatItIsBackAndCanBeOpenedAnew) {
  mCamera->Kill();
  ASSERT_TRUE(mSink.WaitForLost());
  mCamera = std::make_unique<FakeCamera>();

  EXPECT_TRUE(mSink.WaitForBack());

  EXPECT_FALSE(mLink->IsConnected());
  mLink.reset();
  EXPECT_EQ(mSink.GetLostCount(), 1);
  EXPECT_EQ(mSink.GetBackCount(), 1);
  EXPECT_NE(OpenControlled(), nullptr);
}

TEST_F(GigEVisionStream, CameraRestartedAtOnce_IsNoticedBecauseNobodyControlsIt) {
  mCamera->Kill();
  mCamera = std::make_unique<FakeCamera>();

  EXPECT_TRUE(mSink.WaitForLost());
  EXPECT_TRUE(mSink.WaitForBack());
}

} // namespace
