#include "labfixture.h"

#include "krsystem/ipv4address.h"
#include "krtransport/krsimulatedfaults.h"

#include <gmock/gmock.h>

#include <future>
#include <stop_token>

using namespace krtransport::cameraregister;
using testing::HasSubstr;

namespace {

constexpr std::uint32_t kShortLimitMs = 20;

class SilentSink : public krsystem::IDeviceLinkSink {
public:
  MOCK_METHOD(void, OnLinkLost, (const KrResult&), (override));
  MOCK_METHOD(void, OnLinkBack, (), (override));
};

class RegisterFaultsTest : public LabTest {
protected:
  void SetUp() override {
    ASSERT_TRUE(OpenLink(krsystem::DeviceAccess::Control, mLink).IsOK());
    mPort = &mLink->GetRegisterPort();
    mFaults = mLab->GetFaults(kMonoMAC);
    ASSERT_NE(mFaults, nullptr);
  }
  KrResult OpenLink(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
    krsystem::InterfaceFields interface;
    krsystem::AnyDeviceFields fields;
    const KrResult found = mLab->FindAddress(*krsystem::ParseIPv4(kMonoAddress), kGenerousLimitMs, interface, fields);
    return found.IsOK() ? mLab->Open(interface, fields, aAccess, aLink) : found;
  }
  KrResult Read(std::uint64_t aAddress, std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {}) {
    std::array<std::uint8_t, 4> bytes = {};
    return mPort->Read(aAddress, bytes.data(), bytes.size(), aTimeoutMs, aCancel);
  }
  KrResult Write(std::uint64_t aAddress, std::uint32_t aValue, std::uint32_t aTimeoutMs) {
    std::array<std::uint8_t, 4> bytes = {};
    krtransport::EncodeInteger(aValue, bytes.data());
    return mPort->Write(aAddress, bytes.data(), bytes.size(), aTimeoutMs);
  }
  std::uint32_t GetWidth() {
    std::array<std::uint8_t, 4> bytes = {};
    EXPECT_TRUE(WaitUntil([&] { return mPort->Read(kWidth, bytes.data(), 4, kGenerousLimitMs).IsOK(); }));
    return krtransport::DecodeInteger(bytes.data());
  }
  std::future<KrResult> ReadElsewhere(const std::stop_token& aCancel = {}) {
    return std::async(std::launch::async, [this, aCancel] { return Read(kWidth, kGenerousLimitMs, aCancel); });
  }

  std::unique_ptr<krsystem::IDeviceLink> mLink;
  IKrRegisterPort* mPort = nullptr;
  std::shared_ptr<KrSimulatedFaults> mFaults;
};

} // namespace

TEST_F(RegisterFaultsTest, SilentRegister_Once_TimesOutOnceAndTheWriteDoesNotHappen) {
  mFaults->SilenceRegister(kWidth, 1);

  EXPECT_TRUE(Write(kWidth, 640, kShortLimitMs) == KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(GetWidth(), 1280u) << "answers again, and was not written";
}

TEST_F(RegisterFaultsTest, SilentRegister_OtherAddresses_AnswerAtOnce) {
  mFaults->SilenceRegister(kWidth);

  EXPECT_TRUE(Read(kHeight, kGenerousLimitMs).IsOK());
  EXPECT_TRUE(Read(kWidth, kShortLimitMs) == KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(WaitUntil([&] { return Read(kHeight, kGenerousLimitMs).IsOK(); })) << "the camera answers, after all";
  EXPECT_TRUE(Read(kWidth, kShortLimitMs) == KrResult::Code::TimeLimitExceeded) << "until the order is ended";

  mFaults->EndRegisterFaults();
  EXPECT_EQ(GetWidth(), 1280u);
}

TEST_F(RegisterFaultsTest, SilentRegister_InTheMidstOfALongRead_TimesThatOut) {
  mFaults->SilenceRegister(kHeight, 1);
  std::array<std::uint8_t, 16> bytes = {};

  EXPECT_TRUE(mPort->Read(kWidthMax, bytes.data(), bytes.size(), kShortLimitMs) == KrResult::Code::TimeLimitExceeded);
}

TEST_F(RegisterFaultsTest, SilentCamera_AfterATimeOut_FailsAtOnceUntilItAnswersAgain) {
  mFaults->SilenceRegisters();
  const KrResult first = Read(kWidth, kShortLimitMs);

  const KrResult second = Read(kHeight, kGenerousLimitMs);

  EXPECT_TRUE(first == KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(first.GetDescription().ToUtf8(), HasSubstr("in time"));
  EXPECT_TRUE(second == KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(second.GetDescription().ToUtf8(), HasSubstr("a moment ago")) << "it did not wait itself";
  for (const KrResult& silent : {first, second}) {
    EXPECT_THAT(silent.GetDescription().ToUtf8(), testing::StartsWith("Simulated Mono Camera SIM-0001: "));
    EXPECT_THAT(silent.GetDescription().ToUtf8(), HasSubstr("heck its cable and its power"));
  }
  mFaults->EndRegisterFaults();
  EXPECT_EQ(GetWidth(), 1280u);
}

TEST_F(RegisterFaultsTest, SlowRegisters_WithinTheLimit_AnswerAndBeyondItTimeOut) {
  mFaults->SlowRegisters(5);
  EXPECT_TRUE(Read(kWidth, kGenerousLimitMs).IsOK());
  EXPECT_TRUE(Write(kWidth, 640, kGenerousLimitMs).IsOK());

  mFaults->SlowRegisters(kGenerousLimitMs);
  EXPECT_TRUE(Write(kWidth, 320, kShortLimitMs) == KrResult::Code::TimeLimitExceeded);

  mFaults->SlowRegisters(0);
  EXPECT_EQ(GetWidth(), 640u) << "the write that timed out did not happen";
}

TEST_F(RegisterFaultsTest, SlowRegisters_SeveralThreads_AllGetTheirAnswers) {
  mFaults->SlowRegisters(2);
  std::vector<std::future<KrResult>> reads;

  for (int i = 0; i < 8; ++i)
    reads.push_back(ReadElsewhere());

  for (std::future<KrResult>& read : reads)
    EXPECT_TRUE(read.get().IsOK());
}

TEST_F(RegisterFaultsTest, Cancel_WaitingAccess_IsAbortedAtOnceAndTheCameraDoesNotCountAsSilent) {
  mFaults->SilenceRegister(kWidth);
  std::stop_source cancel;
  std::future<KrResult> read = ReadElsewhere(cancel.get_token());

  cancel.request_stop();

  EXPECT_TRUE(read.get() == KrResult::Code::Aborted);
  EXPECT_TRUE(Read(kHeight, kGenerousLimitMs).IsOK());
}

TEST_F(RegisterFaultsTest, Cancel_BeforeTheAccess_IsAborted) {
  std::stop_source cancel;
  cancel.request_stop();

  EXPECT_TRUE(Read(kWidth, kGenerousLimitMs, cancel.get_token()) == KrResult::Code::Aborted);
}

TEST_F(RegisterFaultsTest, Lose_WhileAccessesWait_EndsThemWithConnectionLost) {
  mFaults->SilenceRegisters();
  std::future<KrResult> waiting = ReadElsewhere();
  std::future<KrResult> queued = ReadElsewhere();

  EXPECT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(waiting.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(queued.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(Read(kWidth, kGenerousLimitMs) == KrResult::Code::ConnectionLost) << "and so do later ones";
}

TEST_F(RegisterFaultsTest, Close_WhileTheCameraIsSilent_Returns) {
  mFaults->SilenceRegisters();
  EXPECT_TRUE(Read(kWidth, 1) == KrResult::Code::TimeLimitExceeded);

  mLink.reset();

  mFaults->EndRegisterFaults();
  EXPECT_TRUE(OpenLink(krsystem::DeviceAccess::Control, mLink).IsOK());
}

TEST_F(RegisterFaultsTest, OtherLink_OfASilentCamera_FindsThatOutByItself) {
  std::unique_ptr<krsystem::IDeviceLink> monitor;
  ASSERT_TRUE(OpenLink(krsystem::DeviceAccess::Monitor, monitor).IsOK());
  mFaults->SilenceRegister(kWidth, 1);
  EXPECT_TRUE(Read(kWidth, kShortLimitMs) == KrResult::Code::TimeLimitExceeded);
  std::array<std::uint8_t, 4> bytes = {};

  EXPECT_TRUE(monitor->GetRegisterPort().Read(kWidth, bytes.data(), 4, kGenerousLimitMs).IsOK());
}

TEST_F(RegisterFaultsTest, GiveBackControl_WhileEverythingWaits_EndsItAndFreesTheCamera) {
  testing::StrictMock<SilentSink> sink;
  mLink->SetSink(&sink);
  krsystem::IBufferSource& source = *mLink->GetBufferSource(0);
  ASSERT_TRUE(source.Start().IsOK());
  mFaults->SilenceRegister(kWidth);
  std::future<KrResult> access = ReadElsewhere();
  std::future<KrResult> frame = std::async(std::launch::async, [&source] {
    KrBuffer* buffer = nullptr;
    return source.Retrieve(buffer, kGenerousLimitMs);
  });

  mLink->GiveBackControl();

  EXPECT_TRUE(access.get() == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(frame.get() == KrResult::Code::ConnectionLost);
  EXPECT_FALSE(mLink->IsConnected());
  EXPECT_TRUE(source.Start() == KrResult::Code::ConnectionLost);
  std::unique_ptr<krsystem::IDeviceLink> other;
  EXPECT_TRUE(OpenLink(krsystem::DeviceAccess::Exclusive, other).IsOK());
  mLink->GiveBackControl();
  source.Stop();
  mLink.reset();
  std::array<std::uint8_t, 4> bytes = {};
  EXPECT_TRUE(other->GetRegisterPort().Read(kHeight, bytes.data(), 4, kGenerousLimitMs).IsOK());
}

TEST_F(RegisterFaultsTest, GiveBackControl_OfAMonitor_ChangesNothing) {
  std::unique_ptr<krsystem::IDeviceLink> monitor;
  ASSERT_TRUE(OpenLink(krsystem::DeviceAccess::Monitor, monitor).IsOK());
  std::array<std::uint8_t, 4> bytes = {};

  monitor->GiveBackControl();

  EXPECT_TRUE(monitor->IsConnected());
  EXPECT_TRUE(monitor->GetRegisterPort().Read(kWidth, bytes.data(), 4, kGenerousLimitMs).IsOK());
  EXPECT_TRUE(Write(kWidth, 640, kGenerousLimitMs).IsOK()) << "control stays where it was";
}

TEST_F(RegisterFaultsTest, GiveBackControl_AndStopOnTwoThreads_BothReturn) {
  for (int round = 0; round < 20; ++round) {
    krsystem::IBufferSource& source = *mLink->GetBufferSource(0);
    ASSERT_TRUE(source.Start().IsOK());
    std::future<void> stopped = std::async(std::launch::async, [&source] { source.Stop(); });

    mLink->GiveBackControl();

    stopped.get();
    EXPECT_FALSE(mLink->IsConnected());
    ASSERT_TRUE(OpenLink(krsystem::DeviceAccess::Control, mLink).IsOK());
  }
}
