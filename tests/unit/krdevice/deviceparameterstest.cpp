// The parameters of an open device, as KrDevice gives them.

#include "await.h"
#include "describedlink.h"
#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

namespace {

constexpr std::uint64_t kGain = 0x20;

std::string MakeNodes() {
  return MakeIntReg("Gain", "0x20");
}

KrGenDescription MakeOwnDescription(const char* aNodes) {
  KrGenDescription description;
  EXPECT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(aNodes), "own", description).IsOK());
  return description;
}

class DeviceParametersTest : public testing::Test {
protected:
  void SetUp() override { Open(KrDeviceAccess::Control); }
  void Open(KrDeviceAccess aAccess) {
    auto link = std::make_unique<DescribedLink>(MakeNodes());
    mLink = link.get();
    mDevice = std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields(), aAccess);
  }
  KrResult Get() { return mDevice->GetParameters(mArray); }
  void Refuse(KrResult::Code aCode) {
    mLink->port.SetFault([aCode](const RegisterAccessRecord&) { return KrResult(aCode); });
  }

  DescribedLink* mLink = nullptr; // The device's.
  std::unique_ptr<KrDevice> mDevice;
  KrGenParameterArray* mArray = nullptr;
};

} // namespace

TEST_F(DeviceParametersTest, GetParameters_FirstCall_ReadsTheDescriptionThatTheDeviceNames) {
  mLink->Poke(kGain, 7);

  ASSERT_TRUE(Get().IsOK());

  std::int64_t gain = 0;
  EXPECT_TRUE(mArray->GetInteger("Gain")->GetValue(gain).IsOK());
  EXPECT_EQ(gain, 7);
  EXPECT_TRUE(mArray->GetInteger("Gain")->SetValue(8).IsOK());
  EXPECT_EQ(mLink->Peek(kGain), 8u);
}

TEST_F(DeviceParametersTest, GetParameters_SecondCall_GivesTheSameArrayAndReadsNothing) {
  ASSERT_TRUE(Get().IsOK());
  KrGenParameterArray* const first = mArray;
  mLink->port.TakeRecords();

  ASSERT_TRUE(Get().IsOK());

  EXPECT_EQ(mArray, first);
  EXPECT_EQ(mDevice->GetParameters(), first);
  EXPECT_THAT(mLink->port.TakeRecords(), testing::IsEmpty());
}

TEST_F(DeviceParametersTest, GetParameters_FromSeveralThreadsAtOnce_MakesOneArray) {
  std::vector<std::future<KrGenParameterArray*>> calls;
  for (int i = 0; i < 4; ++i)
    calls.push_back(std::async(std::launch::async, [this] { return mDevice->GetParameters(); }));
  std::vector<KrGenParameterArray*> arrays;
  for (auto& call : calls)
    arrays.push_back(call.get());

  EXPECT_NE(arrays[0], nullptr);
  EXPECT_THAT(arrays, testing::Each(arrays[0]));
}

TEST_F(DeviceParametersTest, GetParameters_DescriptionThatIsNoGood_IsBadDataAndRemembered) {
  mLink->SetDescription("<NoDescription></NoDescription>");

  const KrResult first = Get();
  mLink->SetDescription(MakeDescription(MakeNodes()));
  mLink->port.TakeRecords();
  const KrResult second = Get();

  EXPECT_EQ(first, KrResult::Code::BadData);
  EXPECT_THAT(first.GetDescription().ToUtf8(), testing::HasSubstr("Camera"));
  EXPECT_EQ(second, KrResult::Code::BadData);
  EXPECT_EQ(second.GetDescription(), first.GetDescription());
  EXPECT_THAT(mLink->port.TakeRecords(), testing::IsEmpty());
  EXPECT_EQ(mArray, nullptr);
  EXPECT_EQ(mDevice->GetParameters(), nullptr);
}

TEST_F(DeviceParametersTest, GetParameters_DeviceThatDidNotAnswer_IsAskedAgainByTheNextCall) {
  Refuse(KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Get(), KrResult::Code::TimeLimitExceeded);

  mLink->port.SetFault(nullptr);

  EXPECT_TRUE(Get().IsOK());
}

TEST_F(DeviceParametersTest, GetParameters_OfAMonitor_GivesParametersThatCanOnlyBeRead) {
  Open(KrDeviceAccess::Monitor);
  ASSERT_TRUE(Get().IsOK());
  KrGenInteger& gain = *mArray->GetInteger("Gain");
  std::int64_t value = 0;

  EXPECT_TRUE(gain.GetValue(value).IsOK());
  EXPECT_FALSE(gain.IsWritable());
  EXPECT_EQ(gain.SetValue(1), KrResult::Code::AccessDenied);
  EXPECT_EQ(mLink->port.CountWrites(), 0u);
}

TEST_F(DeviceParametersTest, LostDevice_KeepsItsArrayWhoseAccessesFailAsThePortDoes) {
  ASSERT_TRUE(Get().IsOK());
  Refuse(KrResult::Code::ConnectionLost);
  std::int64_t value = 0;

  EXPECT_EQ(mArray->GetInteger("Gain")->GetValue(value), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mDevice->GetParameters(), mArray);
}

TEST_F(DeviceParametersTest, SetDescription_BeforeTheFirstUse_IsTakenInPlaceOfTheDevices) {
  EXPECT_TRUE(mDevice->SetDescription(MakeOwnDescription("<Integer Name=\"Own\"><Value>5</Value></Integer>")).IsOK());

  ASSERT_TRUE(Get().IsOK());

  EXPECT_NE(mArray->GetInteger("Own"), nullptr);
  EXPECT_EQ(mArray->Get("Gain"), nullptr);
  EXPECT_EQ(mLink->port.CountReads(), 0u);
}

TEST_F(DeviceParametersTest, SetDescription_AfterTheDevicesOwnWasNoGood_MakesParameters) {
  mLink->SetDescription("<NoDescription></NoDescription>");
  ASSERT_EQ(Get(), KrResult::Code::BadData);

  EXPECT_TRUE(mDevice->SetDescription(MakeOwnDescription("<Integer Name=\"Own\"><Value>5</Value></Integer>")).IsOK());

  EXPECT_TRUE(Get().IsOK());
}

TEST_F(DeviceParametersTest, SetDescription_OnceThereAreParameters_IsWrongState) {
  ASSERT_TRUE(Get().IsOK());

  EXPECT_EQ(mDevice->SetDescription(MakeOwnDescription("<Integer Name=\"Own\"><Value>5</Value></Integer>")),
            KrResult::Code::WrongState);

  EXPECT_NE(mDevice->GetParameters()->Get("Gain"), nullptr);
}

TEST_F(DeviceParametersTest, SetDescription_Empty_IsInvalidInput) {
  EXPECT_EQ(mDevice->SetDescription(KrGenDescription()), KrResult::Code::InvalidInput);

  EXPECT_TRUE(Get().IsOK());
}

TEST_F(DeviceParametersTest, ReadDescription_OfADeviceWithAnotherOne_GivesItsOwn) {
  ASSERT_TRUE(mDevice->SetDescription(MakeOwnDescription("<Integer Name=\"Own\"><Value>5</Value></Integer>")).IsOK());
  ASSERT_TRUE(Get().IsOK());
  KrGenDescription description;

  ASSERT_TRUE(mDevice->ReadDescription(description).IsOK());

  EXPECT_EQ(description.GetText(), MakeDescription(MakeNodes()));
}

TEST_F(DeviceParametersTest, ReadDescription_OfADeviceThatDoesNotAnswer_FailsAndLeavesTheTarget) {
  KrGenDescription description = MakeOwnDescription("<Integer Name=\"Own\"><Value>5</Value></Integer>");
  const std::string before(description.GetText());
  Refuse(KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(mDevice->ReadDescription(description), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(description.GetText(), before);
}

namespace {

/// Answers the description, and then no more until an access is cancelled.
class MuteLink : public DescribedLink {
public:
  MuteLink() : DescribedLink(MakeNodes()) {}

  IKrRegisterPort& GetRegisterPort() override { return *this; }
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    if (aAddress != mMuteFrom)
      return memory.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
    std::unique_lock lock(mMutex);
    isAwaited.set_value();
    mCancelled.wait(lock, aCancel, [] { return false; });
    return KrResult::Code::Aborted;
  }

  void SetMute(std::uint64_t aAddress) { mMuteFrom = aAddress; }

  std::promise<void> isAwaited;

private:
  std::mutex mMutex; // For the wait alone.
  std::condition_variable_any mCancelled;
  std::uint64_t mMuteFrom = ~std::uint64_t{0};
};

/// Reads a parameter in the word of the loss.
class ReadingSink : public KrDeviceEventSink {
public:
  void OnDeviceLost(KrDevice* aDevice, const KrResult&) override {
    std::int64_t value = 0;
    KrGenParameterArray* parameters = nullptr;
    result = aDevice->GetParameters(parameters);
    if (result.IsOK())
      result = parameters->GetInteger("Gain")->GetValue(value);
  }
  void OnDeviceBack(KrDevice*) override {}

  KrResult result;
};

/// A sink that waits for the device in an access when the device is destroyed. Returns what its access gave.
KrResult DestroyWhileASinkWaits(std::uint64_t aMuteAddress) {
  auto made = std::make_unique<MuteLink>();
  MuteLink& link = *made;
  link.SetMute(aMuteAddress);
  auto device = std::make_unique<KrDeviceGEV>(std::move(made), MakeDeviceFields());
  ReadingSink sink;
  EXPECT_TRUE(device->RegisterEventSink(&sink).IsOK());
  std::thread events([&] { link.sink->OnLinkLost(KrResult::Code::ConnectionLost); });
  // As real links do, which wait for a call that is running.
  link.onSetSink = [&](krsystem::IDeviceLinkSink*) { events.join(); };
  EXPECT_EQ(link.isAwaited.get_future().wait_for(krtest::GetGenerousLimit()), std::future_status::ready);

  device.reset();

  return sink.result;
}

} // namespace

TEST(DeviceParameters, DeviceDestroyedWhileASinkWaitsForAValue_TheAccessEnds) {
  EXPECT_THAT(DestroyWhileASinkWaits(kGain).GetCode(),
              testing::AnyOf(KrResult::Code::Aborted, KrResult::Code::ConnectionLost));
}

TEST(DeviceParameters, DeviceDestroyedWhileASinkWaitsForTheDescription_TheReadingEnds) {
  EXPECT_THAT(DestroyWhileASinkWaits(0x100000).GetCode(),
              testing::AnyOf(KrResult::Code::Aborted, KrResult::Code::ConnectionLost));
}
