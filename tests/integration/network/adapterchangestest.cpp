// Networks of several adapters, and adapters that change while somebody looks for devices.

#include "await.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Where every device was found: serial number and adapter.
std::vector<std::pair<std::string, std::string>> GetPlaces(const KrSystem& aSystem) {
  std::vector<std::pair<std::string, std::string>> places;
  for (const KrDeviceInfoGEV* device : GetGEVDevices(aSystem)) {
    const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(device->GetInterface());
    places.emplace_back(device->GetSerialNumber().ToUtf8(), adapter == nullptr ? "" : adapter->GetName().ToUtf8());
  }
  return places;
}

std::pair<std::string, std::string> At(const char* aSerialNumber, const char* aAdapter) {
  return {aSerialNumber, aAdapter};
}

std::vector<KrString> GetUniqueIDs(const KrSystem& aSystem) {
  std::vector<KrString> ids;
  for (std::size_t i = 0; i < aSystem.GetInterfaceCount(); ++i)
    ids.push_back(aSystem.GetInterface(i)->GetUniqueID());
  return ids;
}

bool AreAllDifferent(std::vector<KrString> aTexts) {
  std::sort(aTexts.begin(), aTexts.end());
  return std::adjacent_find(aTexts.begin(), aTexts.end()) == aTexts.end();
}

TEST_F(OnANetwork, Find_OneDeviceOnEachOfTwoCablesOfOneSubnet_EachStandsUnderItsAdapter) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "192.168.1.11/24");
  mLab.SetReversePathFilter("eth1", 0);
  const TestDevice first(mHost, "port0", {.mac = "02:00:00:00:00:01", .address = "192.168.1.20", .serialNumber = "A"});
  const TestDevice second(mHost, "port1", {.mac = "02:00:00:00:00:02", .address = "192.168.1.21", .serialNumber = "B"});
  KrSystem system;

  FindThese(system, {"A", "B"}, true);

  EXPECT_THAT(GetPlaces(system), UnorderedElementsAre(At("A", "eth0"), At("B", "eth1")));
  EXPECT_TRUE(GetBySerialNumber(system, "A")->IsConfigurationValid());
  EXPECT_TRUE(GetBySerialNumber(system, "B")->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_TwoAdaptersOnOneSwitch_FindsTheDeviceUnderEach) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "192.168.1.11/24");
  mLab.SetReversePathFilter("eth1", 0);
  mHost.RunIp({"link", "add", "switch", "type", "bridge", "forward_delay", "0"});
  mHost.RunIp({"link", "set", "port0", "master", "switch"});
  mHost.RunIp({"link", "set", "port1", "master", "switch"});
  mHost.SetUp("switch");
  const TestDevice device(mHost, "switch", {.serialNumber = "both"});
  KrSystem system;

  FindUntil(
      system, [&] { return GetPlaces(system).size() == 2; }, "The device is found by both adapters.");

  EXPECT_THAT(GetPlaces(system), UnorderedElementsAre(At("both", "eth0"), At("both", "eth1")));
}

TEST_F(OnANetwork, FindDevice_LinkLocalAddressesOnTwoAdapters_AsksOnBoth) {
  mLab.SetAddress("eth0", "169.254.1.1/16");
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "169.254.1.2/16");
  mLab.SetReversePathFilter("eth1", 0);
  const TestDevice first(
      mHost, "port0",
      {.mac = "02:00:00:00:00:01", .address = "169.254.7.1", .mask = "255.255.0.0", .serialNumber = "A"});
  const TestDevice second(
      mHost, "port1",
      {.mac = "02:00:00:00:00:02", .address = "169.254.7.2", .mask = "255.255.0.0", .serialNumber = "B"});
  KrSystem system;
  FindThese(system, {"A", "B"}, true);
  const auto byBroadcast = GetPlaces(system);
  system.SetDetectionTimeout(krtest::GetGenerousMs()); // The answer ends it.
  const KrDeviceInfo* foundFirst = nullptr;
  const KrDeviceInfo* foundSecond = nullptr;

  const KrResult firstResult = system.FindDevice("169.254.7.1", &foundFirst);
  const KrResult secondResult = system.FindDevice("169.254.7.2", &foundSecond);

  EXPECT_THAT(byBroadcast, UnorderedElementsAre(At("A", "eth0"), At("B", "eth1")));
  ASSERT_TRUE(firstResult.IsOK()) << firstResult.GetDescription().CStr();
  ASSERT_TRUE(secondResult.IsOK()) << secondResult.GetDescription().CStr();
  EXPECT_EQ(foundFirst->GetInterface(), GetAdapter(system, "eth0"));
  EXPECT_EQ(foundSecond->GetInterface(), GetAdapter(system, "eth1"));
}

TEST_F(OnANetwork, FindDevice_SomebodyAnswersForAnotherAddress_WaitsForTheRightDevice) {
  constexpr std::size_t kLastAddressByte = 8 + 0x27;
  mLab.SetAddress("eth0", "169.254.1.1/16");
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "169.254.1.2/16");
  mLab.SetReversePathFilter("eth1", 0);
  TestDevice liar(
      mHost, "port0",
      {.mac = "02:00:00:00:00:01", .address = "169.254.7.1", .mask = "255.255.0.0", .serialNumber = "liar"});
  liar.ChangeDiscoveryAcknowledges([](const TestDevice::Bytes& aGood) {
    TestDevice::Bytes other = aGood;
    other[kLastAddressByte] = 9;
    return std::vector<TestDevice::Bytes>{other};
  });
  const TestDevice honest(
      mHost, "port1",
      {.mac = "02:00:00:00:00:02", .address = "169.254.7.1", .mask = "255.255.0.0", .serialNumber = "honest"});
  KrSystem system;
  system.SetDetectionTimeout(krtest::GetGenerousMs()); // The answer ends it.
  const KrDeviceInfo* found = nullptr;

  const KrResult result = system.FindDevice("169.254.7.1", &found);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(found->GetSerialNumber(), "honest");
}

TEST_F(OnANetwork, GetInterface_AdaptersThatShareAMac_HaveIDsOfTheirOwn) {
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetMAC("eth0", "02:00:00:00:aa:01");
  mLab.SetMAC("eth1", "02:00:00:00:aa:01");
  mLab.SetAddress("eth1", "10.0.0.10/8");
  const TestDevice device(mHost, "port1", {.address = "10.0.0.20", .mask = "255.0.0.0", .serialNumber = "behind"});
  KrSystem system;

  FindThese(system, {"behind"}, true);

  EXPECT_TRUE(AreAllDifferent(GetUniqueIDs(system)));
  ASSERT_NE(GetAdapter(system, "eth0"), nullptr);
  ASSERT_NE(GetAdapter(system, "eth1"), nullptr);
  EXPECT_EQ(GetAdapter(system, "eth0")->GetUniqueID(), KrString("02:00:00:00:aa:01/eth0"));
  EXPECT_EQ(GetAdapter(system, "eth1")->GetUniqueID(), KrString("02:00:00:00:aa:01/eth1"));
  EXPECT_EQ(GetAdapter(system, "eth0")->GetMACAddress(), KrString("02:00:00:00:aa:01"));
  EXPECT_THAT(GetPlaces(system), ElementsAre(At("behind", "eth1")));
}

TEST_F(OnANetwork, Find_MacvlanWithTheMacOfItsAdapter_IsListedByItselfAndFindsTheDevice) {
  mLab.AddMacvlan("mac0", "eth0", "passthru");
  mLab.RemoveAddress("eth0", "192.168.1.10/24");
  mLab.SetAddress("mac0", "192.168.1.12/24");
  mLab.SetReversePathFilter("mac0", 0);
  const TestDevice device(mHost, "port0", {.serialNumber = "behind"});
  KrSystem system;

  FindThese(system, {"behind"}, true);

  EXPECT_TRUE(AreAllDifferent(GetUniqueIDs(system)));
  ASSERT_NE(GetAdapter(system, "mac0"), nullptr);
  EXPECT_EQ(GetAdapter(system, "mac0")->GetMACAddress(), GetAdapter(system, "eth0")->GetMACAddress());
  const KrDeviceInfoGEV* found = GetBySerialNumber(system, "behind");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->GetInterface(), GetAdapter(system, "mac0"));
  EXPECT_TRUE(found->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_BridgeOverAnAdapter_FindsTheDeviceUnderTheBridgeAlone) {
  mLab.RemoveAddress("eth0", "192.168.1.10/24");
  mLab.AddBridge("bridge0", {"eth0"});
  mLab.SetAddress("bridge0", "192.168.1.13/24");
  mLab.SetReversePathFilter("bridge0", 0);
  const TestDevice device(mHost, "port0", {.serialNumber = "behind"});
  KrSystem system;

  FindUntil(
      system, [&] { return !GetPlaces(system).empty(); }, "The device is found through the bridge.");

  EXPECT_TRUE(AreAllDifferent(GetUniqueIDs(system)));
  EXPECT_THAT(GetPlaces(system), ElementsAre(At("behind", "bridge0")));
  EXPECT_TRUE(GetBySerialNumber(system, "behind")->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_AdapterWithoutAddress_FindsTheDeviceAsUnreachable) {
  mLab.RemoveAddress("eth0", "192.168.1.10/24");
  const TestDevice device(mHost, "port0", {.serialNumber = "behind"});
  KrSystem system;

  FindThese(system, {"behind"}, false);

  const KrNetworkAdapter* adapter = GetAdapter(system, "eth0");
  ASSERT_NE(adapter, nullptr);
  ASSERT_EQ(adapter->GetIPAddressCount(), 1u);
  EXPECT_EQ(adapter->GetIPAddress(0), KrString("0.0.0.0"));
  EXPECT_EQ(adapter->GetSubnetMask(0), KrString("0.0.0.0"));
  EXPECT_EQ(adapter->GetDefaultGateway(), KrString("0.0.0.0"));
  ASSERT_NE(GetBySerialNumber(system, "behind"), nullptr);
  EXPECT_FALSE(GetBySerialNumber(system, "behind")->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_SecondAddressOfAnAdapter_MakesItsSubnetReachable) {
  mLab.SetAddress("eth0", "10.0.0.10/8");
  const TestDevice device(mHost, "port0", {.address = "10.0.0.20", .mask = "255.0.0.0", .serialNumber = "behind"});
  KrSystem system;

  FindThese(system, {"behind"}, true);

  EXPECT_EQ(GetAdapter(system, "eth0")->GetIPAddressCount(), 2u);
  ASSERT_NE(GetBySerialNumber(system, "behind"), nullptr);
  EXPECT_TRUE(GetBySerialNumber(system, "behind")->IsConfigurationValid());
}

TEST_F(OnANetwork, Find_AdapterDownAndUp_StaysListedAndFindsTheDeviceAgain) {
  mLab.SetMAC("eth0", "02:00:00:00:aa:05");
  const TestDevice device(mHost, "port0", {.serialNumber = "behind"});
  KrSystem system;
  FindThese(system, {"behind"});

  mLab.SetDown("eth0");
  Find(system);
  const auto whileDown = GetSerialNumbers(system);
  const KrNetworkAdapter* down = GetAdapter(system, "eth0");
  mLab.SetUp("eth0");
  FindThese(system, {"behind"});

  EXPECT_THAT(whileDown, IsEmpty());
  ASSERT_NE(down, nullptr);
  EXPECT_EQ(down->GetUniqueID(), KrString("02:00:00:00:aa:05"));
  EXPECT_EQ(down->GetIPAddress(0), KrString("0.0.0.0"));
  ASSERT_NE(GetAdapter(system, "eth0"), nullptr);
  EXPECT_EQ(GetAdapter(system, "eth0")->GetIPAddress(0), KrString("192.168.1.10"));
}

TEST_F(OnANetwork, Find_CablePulledAndPluggedIn_LosesTheDeviceAndFindsItAgain) {
  const TestDevice device(mHost, "port0", {.serialNumber = "behind"});
  KrSystem system;
  FindThese(system, {"behind"});

  mLab.Unplug("eth0");
  Find(system);
  const auto unplugged = GetSerialNumbers(system);
  mLab.PlugIn("eth0");
  FindThese(system, {"behind"});

  EXPECT_THAT(unplugged, IsEmpty());
  EXPECT_NE(GetAdapter(system, "eth0"), nullptr);
}

TEST_F(OnANetwork, Find_AdapterDeletedAndMadeAgain_LeavesTheListAndReturns) {
  KrSystem system;
  Find(system);
  const bool wasThere = GetAdapter(system, "eth0") != nullptr;

  mLab.DeleteAdapter("eth0");
  Find(system);
  const bool isGone = GetAdapter(system, "eth0") == nullptr;
  mLab.Connect("eth0", mHost, "port0");
  mLab.SetAddress("eth0", "192.168.1.10/24");
  const TestDevice device(mHost, "port0", {.serialNumber = "new"});
  FindThese(system, {"new"});

  EXPECT_TRUE(wasThere);
  EXPECT_TRUE(isGone);
  EXPECT_THAT(GetPlaces(system), ElementsAre(At("new", "eth0")));
}

TEST_F(OnANetwork, Find_AdapterAppears_IsAskedInTheNextRound) {
  KrSystem system;
  Find(system);
  mLab.Connect("eth1", mHost, "port1");
  mLab.SetAddress("eth1", "10.0.0.10/8");
  const TestDevice device(mHost, "port1", {.address = "10.0.0.20", .mask = "255.0.0.0", .serialNumber = "new"});

  FindThese(system, {"new"});

  EXPECT_THAT(GetPlaces(system), ElementsAre(At("new", "eth1")));
}

TEST_F(OnANetwork, GetInterface_Gateway_IsThatOfTheRoutingTable) {
  mLab.SetGateway("eth0", "192.168.1.1");
  KrSystem system;

  Find(system);

  ASSERT_NE(GetAdapter(system, "eth0"), nullptr);
  EXPECT_EQ(GetAdapter(system, "eth0")->GetDefaultGateway(), KrString("192.168.1.1"));
}

} // namespace
