// Two adapters whose subnets hold the same addresses, on two cables: the routing table knows one of them alone, and
// what is behind the other is asked and opened there all the same, or a result says what to do.

#include "krdevice/krdevicegev.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr std::uint16_t kReadRegister = 0x0080;
constexpr std::uint16_t kWriteRegister = 0x0082;

/// The adapters' addresses, and a device's.
struct SubnetCase {
  const char* name;
  const char* first;
  const char* second;
  const char* device;
  const char* mask;
};

const SubnetCase kSubnetCases[] = {
    {"PrivateSubnet", "10.7.0.10/24", "10.7.0.11/24", "10.7.0.20", "255.255.255.0"},
    {"LinkLocal", "169.254.3.10/16", "169.254.9.11/16", "169.254.40.20", "255.255.0.0"},
};

/// An adapter "eth1" cabled to "port1" besides "eth0"; the routing table sends to a device's address by "eth0".
class OnTwoCables : public OnANetwork, public testing::WithParamInterface<SubnetCase> {
protected:
  OnTwoCables() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetReversePathFilter("eth1", 0);
    mLab.SetAddress("eth0", GetParam().first);
    mLab.SetAddress("eth1", GetParam().second);
  }

  TestDeviceIdentity MakeIdentity(const char* aMac, const char* aSerialNumber) const {
    return {.mac = aMac, .address = GetParam().device, .mask = GetParam().mask, .serialNumber = aSerialNumber};
  }
  /// Opens the device of a serial number on the adapter where it is found.
  KrResult Open(const char* aSerialNumber, KrDeviceAccess aAccess) {
    FindThese(mSystem, {aSerialNumber});
    const KrDeviceInfoGEV* const info = GetBySerialNumber(mSystem, aSerialNumber);
    EXPECT_NE(info, nullptr);
    if (info == nullptr)
      return KrResult::Code::Failed;
    EXPECT_TRUE(info->IsConfigurationValid());
    EXPECT_EQ(info->GetInterface(), GetAdapter(mSystem, "eth1"));
    return KrDevice::Open(*info, aAccess, mOpened);
  }

  KrSystem mSystem;
  std::unique_ptr<KrDevice> mOpened;
};

TEST_P(OnTwoCables, GetAccessType_DeviceWhereNoRouteLeads_IsToldFromOneRead) {
  TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));
  device.SetForeignControl(2);
  KrAccessType type = KrAccessType::Unknown;

  const KrResult result = KrDeviceGEV::GetAccessType(GetParam().device, type);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(type, KrAccessType::Control);
  EXPECT_EQ(device.GetHeard(kReadRegister), 1u);
}

TEST_P(OnTwoCables, GetAccessType_DeviceThatKeepsSilentThere_IsUnknownAndAskedOnce) {
  TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));
  KrAccessType before = KrAccessType::Unknown;
  // The device's MAC becomes known to this host, so that the question does go out.
  ASSERT_TRUE(KrDeviceGEV::GetAccessType(GetParam().device, before).IsOK());
  const std::uint32_t heardBefore = device.GetHeard(kReadRegister);
  device.SetSilent(true);
  KrAccessType type = KrAccessType::Unknown;

  const KrResult result = KrDeviceGEV::GetAccessType(GetParam().device, type);

  EXPECT_FALSE(result.IsOK());
  EXPECT_EQ(type, KrAccessType::Unknown);
  EXPECT_EQ(device.GetHeard(kReadRegister), heardBefore + 1);
}

TEST_P(OnTwoCables, Open_WithControlWhereNoRouteLeads_NamesTheOtherAdapterAndWhatToDo) {
  const TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));

  const KrResult result = Open("there", KrDeviceAccess::Control);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              AllOf(HasSubstr("by the network adapter eth0"),
                    HasSubstr("ip route add " + std::string(GetParam().device) + "/32 dev eth1")));
}

TEST_P(OnTwoCables, Open_WithControlBesideTheRoutesDeviceOfThatAddress_LeavesThatAlone) {
  const TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));
  ASSERT_NO_FATAL_FAILURE(FindThese(mSystem, {"there"}));
  const TestDevice other(mHost, "port0", MakeIdentity("02:00:00:00:00:42", "other"));

  const KrResult result = KrDevice::Open(*GetBySerialNumber(mSystem, "there"), KrDeviceAccess::Control, mOpened);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_EQ(other.GetHeard(kWriteRegister), 0u);
}

TEST_P(OnTwoCables, Open_WithControlAfterTheRouteWasAdded_Succeeds) {
  const TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));
  mLab.SetRoute("eth1", GetParam().device);

  const KrResult result = Open("there", KrDeviceAccess::Control);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_NE(device.Read(kTestDevicePrivilege), 0u);
}

TEST_P(OnTwoCables, Open_ForReadingWhereNoRouteLeads_ReadsTheDeviceThere) {
  TestDevice device(mHost, "port1", MakeIdentity("02:00:00:00:00:41", "there"));
  device.Write(0x064C, 0x0A070063);

  const KrResult result = Open("there", KrDeviceAccess::Monitor);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  KrLastingIPConfiguration configuration;
  const KrResult read = dynamic_cast<KrDeviceGEV&>(*mOpened).GetLastingIPConfiguration(configuration);
  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  EXPECT_EQ(configuration.address, "10.7.0.99");
}

TEST_P(OnTwoCables, Open_TwoCablesToOneNetwork_SucceedsOnTheOneWithoutRoute) {
  mHost.RunIp({"link", "add", "switch", "type", "bridge"});
  // The device is at the end of a cable: what is sent to a bridge is for its host alone.
  mHost.RunIp({"link", "add", "port2", "type", "veth", "peer", "name", "camera"});
  for (const char* port : {"port0", "port1", "port2"})
    mHost.RunIp({"link", "set", port, "master", "switch"});
  for (const char* adapter : {"port2", "camera", "switch"})
    mHost.SetUp(adapter);
  const TestDevice device(mHost, "camera", MakeIdentity("02:00:00:00:00:41", "shared"));
  const KrDeviceInfo* info = nullptr;
  FindUntil(
      mSystem,
      [&] {
        for (const KrDeviceInfoGEV* found : GetGEVDevices(mSystem))
          if (found->GetInterface() == GetAdapter(mSystem, "eth1"))
            info = found;
        return info != nullptr;
      },
      "the device on eth1");
  ASSERT_NE(info, nullptr);

  const KrResult result = KrDevice::Open(*info, KrDeviceAccess::Control, mOpened);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
}

INSTANTIATE_TEST_SUITE_P(Subnets, OnTwoCables, testing::ValuesIn(kSubnetCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace
