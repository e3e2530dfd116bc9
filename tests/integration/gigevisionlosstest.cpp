#include "await.h"
#include "gigevisionfixture.h"

#include <future>
#include <stop_token>
#include <unistd.h>

namespace {

using GigEVisionLoss = GigEVisionStreamTest;

TEST_F(GigEVisionLoss, CameraKilledWhileStreaming_EndsRetrieveAndRegistersWithConnectionLost) {
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());
  mCamera->Kill();

  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = mSource->Retrieve(buffer, 1000);
    return result == KrResult::Code::ConnectionLost;
  })) << result.GetDescription().CStr();

  EXPECT_TRUE(mSink.WaitForLost());
  EXPECT_FALSE(mLink->IsConnected());
  EXPECT_EQ(mSink.GetLostCount(), 1);
  EXPECT_EQ(mSink.GetReason(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(WriteRegister(*mLink, kWidthRegister, 100), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mSource->Queue(&mBuffers[0]), KrResult::Code::WrongState);
  EXPECT_EQ(mSource->Start(), KrResult::Code::WrongState);
  mSource->Stop();
  EXPECT_EQ(mSource->Start(), KrResult::Code::ConnectionLost);
}

TEST_F(GigEVisionLoss, CameraKilled_StoppedBeforeTheLossIsNoticed_StopReturns) {
  ASSERT_TRUE(Start().IsOK());
  mCamera->Kill();

  mSource->Stop();

  KrBuffer* buffer = nullptr;
  EXPECT_THAT(mSource->Retrieve(buffer, 0).GetCode(),
              testing::AnyOf(KrResult::Code::Aborted, KrResult::Code::ConnectionLost));
}

TEST_F(GigEVisionLoss, CameraKilled_RegisterReadWithAShortLimit_ReturnsAndTheNextFailsAtOnce) {
  mCamera->Kill();
  std::array<std::uint8_t, 4> bytes{};

  const KrResult first = mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 50);
  const KrResult second = mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 3600000);

  EXPECT_EQ(first, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(second.GetCode(), testing::AnyOf(KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost));
}

TEST_F(GigEVisionLoss, CameraRestarted_AfterItsLoss_TellsOnceThatItIsBackAndCanBeOpenedAnew) {
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

TEST_F(GigEVisionLoss, CameraRestartedAtOnce_IsNoticedBecauseNobodyControlsIt) {
  mCamera->Kill();
  mCamera = std::make_unique<FakeCamera>();

  EXPECT_TRUE(mSink.WaitForLost());
  EXPECT_TRUE(mSink.WaitForBack());
}

TEST_F(GigEVisionLoss, CameraRestartedWhileStreaming_IsOpenedAnewAndStreams) {
  ASSERT_TRUE(Start().IsOK());
  ASSERT_NE(Retrieve(), nullptr);
  RestartCamera();
  ASSERT_TRUE(mSink.WaitForLost());
  ASSERT_TRUE(mSink.WaitForBack());

  mLink.reset();
  mLink = OpenControlled();
  ASSERT_NE(mLink, nullptr);
  mSource = mLink->GetBufferSource(0);
  ASSERT_TRUE(WriteRegister(*mLink, kWidthRegister, kWidth).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kHeightRegister, kHeight).IsOK());

  // A receiver that gets no time for a burst loses packets of it, which the camera here does not send again.
  ASSERT_TRUE(WriteRegister(*mLink, kFramePeriodRegister, 150'000).IsOK());
  ASSERT_TRUE(Start().IsOK());
  bool isWhole = false;
  for (int taken = 0; !isWhole && taken < 100; ++taken) {
    KrBuffer* buffer = Retrieve();
    ASSERT_NE(buffer, nullptr);
    isWhole = buffer->GetStatus() == KrBufferStatus::Complete;
    ASSERT_TRUE(mSource->Queue(buffer).IsOK());
  }
  EXPECT_TRUE(isWhole);
}

TEST_F(GigEVisionLoss, AnotherCameraAtItsAddress_IsNotOpenedInItsPlace) {
  mCamera->Kill();
  ASSERT_TRUE(mSink.WaitForLost());
  mLink.reset();
  FakeCameraOptions options = mOptions;
  options.serialNumber = "GV99";
  mCamera = std::make_unique<FakeCamera>(options);

  std::unique_ptr<krsystem::IDeviceLink> link;
  const KrResult opened = Open(krsystem::DeviceAccess::Control, link);

  EXPECT_EQ(opened, KrResult::Code::NotFound);
  EXPECT_THAT(opened.GetDescription().ToUtf8(), testing::HasSubstr("another device answers"));
  EXPECT_THAT(opened.GetDescription().ToUtf8(), testing::HasSubstr("GV99"));
}

TEST_F(GigEVisionLoss, CameraSilentForAMoment_RegistersWorkAgainWithoutWordOfLoss) {
  std::array<std::uint8_t, 4> bytes{};
  IKrRegisterPort& port = mLink->GetRegisterPort();
  mCamera->Pause();
  ASSERT_EQ(port.Read(kWidthRegister, bytes.data(), bytes.size(), 20), KrResult::Code::TimeLimitExceeded);

  mCamera->Resume();
  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = port.Read(kWidthRegister, bytes.data(), bytes.size(), kGenerousTimeoutMs);
    return result != KrResult::Code::TimeLimitExceeded;
  }));

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mSink.GetLostCount(), 0);
}

TEST_F(GigEVisionLoss, CameraSilent_CancelledReadReturnsWithAborted) {
  mCamera->Pause();
  std::stop_source cancel;
  std::promise<pid_t> readerID;
  auto read = std::async(std::launch::async, [&] {
    std::array<std::uint8_t, 4> bytes{};
    readerID.set_value(::gettid());
    return mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 3600000, cancel.get_token());
  });
  WaitUntilAsleep(readerID.get_future().get());

  cancel.request_stop();

  EXPECT_EQ(read.get(), KrResult::Code::Aborted);
  mCamera->Resume();
}

} // namespace
