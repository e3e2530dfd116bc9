// What is seen and set of the connection to a device, as KrDevice::GetTransportParameters gives it.

#include "describedlink.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krstream.h"
#include "parametertext.h"

#include <gmock/gmock.h>

namespace {

constexpr std::uint64_t kMACRegister = 0x0008;
constexpr std::uint64_t kAddressRegister = 0x0024;
constexpr std::uint64_t kHeartbeatRegister = 0x0938;

class ConnectionParametersTest : public testing::Test {
protected:
  void SetUp() override { Open(KrDeviceAccess::Control); }
  void Open(KrDeviceAccess aAccess) {
    auto link = std::make_unique<DescribedLink>(MakeIntReg("Gain", "0x20", "NoCache"), &mSource);
    mLink = link.get();
    mDevice = std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields(), aAccess);
    const KrResult got = mDevice->GetTransportParameters(mArray);
    ASSERT_TRUE(got.IsOK()) << got.GetDescription().CStr();
  }

  FakeBufferSource mSource;
  DescribedLink* mLink = nullptr; // The device's.
  std::unique_ptr<KrDevice> mDevice;
  KrGenParameterArray* mArray = nullptr;
};

} // namespace

TEST_F(ConnectionParametersTest, GetTransportParameters_SeveralCalls_GiveOneArrayOfWhichAllCanBeRead) {
  KrGenParameterArray* again = nullptr;

  ASSERT_TRUE(mDevice->GetTransportParameters(again).IsOK());

  EXPECT_EQ(again, mArray);
  ExpectAllReadable(*mArray);
  EXPECT_EQ(ReadText(*mArray, "DeviceModelName"), KrString("Model X"));
  EXPECT_EQ(ReadText(*mArray, "DeviceType"), KrString("GigEVision"));
}

TEST_F(ConnectionParametersTest, GetTransportParameters_FirstCall_AsksTheDeviceForNothing) {
  EXPECT_TRUE(mLink->port.TakeRecords().empty());
}

TEST_F(ConnectionParametersTest, Addresses_OfAGigEVisionDevice_AreThoseInItsRegisters) {
  mLink->Poke(kMACRegister, 0x0000024B);
  mLink->Poke(kMACRegister + 4, 0x52007710);
  mLink->Poke(kAddressRegister, 0xC0A84D0A);

  EXPECT_EQ(ReadNumber(*mArray, "GevMACAddress"), 0x024B52007710);
  EXPECT_EQ(ReadNumber(*mArray, "GevCurrentIPAddress"), 0xC0A84D0A);
}

TEST_F(ConnectionParametersTest, Heartbeat_Set_IsWrittenToTheDevice) {
  ASSERT_TRUE(SetText(*mArray, "GevHeartbeatTimeout", "5000").IsOK());

  EXPECT_EQ(mLink->Peek(kHeartbeatRegister), 5000u);
  EXPECT_EQ(SetText(*mArray, "GevHeartbeatTimeout", "10"), KrResult::Code::OutOfRange);
}

TEST_F(ConnectionParametersTest, Monitor_SetsItsOwnTimeLimitAndNothingOfTheDevice) {
  ASSERT_NO_FATAL_FAILURE(Open(KrDeviceAccess::Monitor));

  EXPECT_EQ(ReadText(*mArray, "DeviceAccessStatus"), KrString("OpenReadOnly"));
  EXPECT_FALSE(IsWritable(*mArray, "GevHeartbeatTimeout"));
  EXPECT_TRUE(SetText(*mArray, "LinkCommandTimeout", "250000").IsOK());
}

TEST_F(ConnectionParametersTest, Counters_AccessesOfTheDevicesArray_AreCounted) {
  KrGenParameterArray* camera = nullptr;
  ASSERT_TRUE(mDevice->GetParameters(camera).IsOK());
  ASSERT_TRUE(mArray->GetCommand("LinkStatisticsReset")->Execute().IsOK());

  std::int64_t gain = 0;
  ASSERT_TRUE(camera->GetInteger("Gain")->GetValue(gain).IsOK());
  ASSERT_TRUE(camera->GetInteger("Gain")->SetValue(3).IsOK());
  mLink->port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });
  ASSERT_FALSE(camera->GetInteger("Gain")->GetValue(gain).IsOK());

  EXPECT_EQ(ReadNumber(*mArray, "LinkReadCount"), 2);
  EXPECT_EQ(ReadNumber(*mArray, "LinkWriteCount"), 1);
  EXPECT_EQ(ReadNumber(*mArray, "LinkByteCount"), 8);
  EXPECT_EQ(ReadNumber(*mArray, "LinkTimeoutCount"), 1);
  EXPECT_EQ(ReadNumber(*mArray, "LinkFailureCount"), 0);
}

TEST_F(ConnectionParametersTest, IsStreaming_StreamStartedAndStopped_FollowsIt) {
  EXPECT_EQ(ReadText(*mArray, "LinkIsStreaming"), KrString("0"));
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  EXPECT_EQ(ReadText(*mArray, "LinkIsStreaming"), KrString("1"));

  stream.Stop();

  EXPECT_EQ(ReadText(*mArray, "LinkIsStreaming"), KrString("0"));
}

TEST_F(ConnectionParametersTest, DeviceLost_ArrayIsStillThere_AndTellsOfIt) {
  mLink->port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::ConnectionLost); });
  mLink->connected = false;

  EXPECT_EQ(ReadText(*mArray, "DeviceAccessStatus"), KrString("NoAccess"));
  std::int64_t heartbeat = 0;
  EXPECT_EQ(mArray->GetInteger("GevHeartbeatTimeout")->GetValue(heartbeat), KrResult::Code::ConnectionLost);
  EXPECT_EQ(ReadText(*mArray, "DeviceModelName"), KrString("Model X"));
}
