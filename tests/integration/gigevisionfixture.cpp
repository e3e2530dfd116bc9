#include "gigevisionfixture.h"

#include "await.h"
#include "threadstate.h"

#include <future>
#include <string>
#include <thread>
#include <unistd.h>

using krsystem::AccessType;
using krsystem::DeviceAccess;

void RecordingSink::OnLinkLost(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  ++mLost;
  mReason = aReason;
  mChanged.notify_all();
}

void RecordingSink::OnLinkBack() {
  const std::lock_guard lock(mMutex);
  ++mBack;
  mChanged.notify_all();
}

bool RecordingSink::WaitForLost() {
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [this] { return mLost > 0; });
}

bool RecordingSink::WaitForBack() {
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [this] { return mBack > 0; });
}

int RecordingSink::GetLostCount() {
  const std::lock_guard lock(mMutex);
  return mLost;
}

int RecordingSink::GetBackCount() {
  const std::lock_guard lock(mMutex);
  return mBack;
}

KrResult RecordingSink::GetReason() {
  const std::lock_guard lock(mMutex);
  return mReason;
}

std::uint32_t ReadRegister(krsystem::IDeviceLink& aLink, std::uint64_t aAddress) {
  std::array<std::uint8_t, 4> bytes{};
  const KrResult result = aLink.GetRegisterPort().Read(aAddress, bytes.data(), bytes.size(), kGenerousTimeoutMs);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes)
    value = value << 8 | byte;
  return value;
}

KrResult WriteRegister(krsystem::IDeviceLink& aLink, std::uint64_t aAddress, std::uint32_t aValue) {
  const std::array<std::uint8_t, 4> bytes = {static_cast<std::uint8_t>(aValue >> 24),
                                             static_cast<std::uint8_t>(aValue >> 16),
                                             static_cast<std::uint8_t>(aValue >> 8), static_cast<std::uint8_t>(aValue)};
  return aLink.GetRegisterPort().Write(aAddress, bytes.data(), bytes.size(), kGenerousTimeoutMs);
}

void WaitUntilAsleep(pid_t aThread) {
  EXPECT_TRUE(krtest::Await([aThread] { return krtest::IsAsleep(aThread); })) << "The thread never slept.";
}

void GigEVisionCameraTest::SetUp() {
  ASSERT_TRUE(mCamera->IsAnswering());
  const KrResult result = mTransport.FindAddress(kLoopback, kGenerousTimeoutMs, mInterface, mDevice);
  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
}

KrResult GigEVisionCameraTest::Open(DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  return mTransport.Open(mInterface, mDevice, aAccess, aLink);
}

std::unique_ptr<krsystem::IDeviceLink> GigEVisionCameraTest::OpenControlled() {
  std::unique_ptr<krsystem::IDeviceLink> link;
  const KrResult result = Open(DeviceAccess::Control, link);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return link;
}

AccessType GigEVisionCameraTest::GetAccessType() {
  AccessType type = AccessType::Unknown;
  const KrResult result = mTransport.GetAccessType(mDevice, type);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return type;
}

void GigEVisionCameraTest::RestartCamera() {
  mCamera.reset();
  mCamera = std::make_unique<FakeCamera>(mOptions);
}

void GigEVisionStreamTest::SetUp() {
  GigEVisionCameraTest::SetUp();
  if (HasFatalFailure())
    return;
  mLink = OpenControlled();
  ASSERT_NE(mLink, nullptr);
  mLink->SetSink(&mSink);
  ASSERT_TRUE(WriteRegister(*mLink, kWidthRegister, kWidth).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kHeightRegister, kHeight).IsOK());
  mSource = mLink->GetBufferSource(0);
  ASSERT_NE(mSource, nullptr);
}

KrResult GigEVisionStreamTest::Start(std::size_t aBufferBytes) {
  for (KrBuffer& buffer : mBuffers)
    if (!buffer.Alloc(aBufferBytes).IsOK() || !mSource->Queue(&buffer).IsOK())
      return KrResult::Code::SystemError;
  return mSource->Start();
}

KrResult GigEVisionStreamTest::EndWaitBy(const std::function<void()>& aAction) {
  KrResult result;
  std::promise<pid_t> waiterID;
  std::thread waiter([&] {
    KrBuffer* buffer = nullptr;
    waiterID.set_value(::gettid());
    result = mSource->Retrieve(buffer, 3600000);
  });
  WaitUntilAsleep(waiterID.get_future().get());
  aAction();
  waiter.join();
  return result;
}

KrBuffer* GigEVisionStreamTest::Retrieve() {
  KrBuffer* buffer = nullptr;
  const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return buffer;
}
