#include "networkselection.h"

#include "faketransport.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using testing::HasSubstr;

// Two adapters; what answers on them is each test's.
class NetworkSelection : public testing::Test {
protected:
  NetworkSelection() { mTransport->interfaces = {MakeAdapter("eth0"), MakeAdapter("eth1", "10.0.1.1")}; }

  KrResult Select(const KrString& aName, const KrString& aAdapter = "") {
    return SelectNetworkDevice(mSystem, aName, aAdapter, mChosen);
  }

  RegisteredTransport mTransport;
  KrSystem mSystem;
  NetworkDevice mChosen;
};

TEST_F(NetworkSelection, DeviceOfAForeignSubnet_IsChosenByEachOfItsNames) {
  krsystem::GEVFields camera = MakeCamera("02:00:00:00:00:01", "172.16.5.5");
  camera.serialNumber = "S1";
  camera.userDefinedName = "left";
  camera.configurationValid = false;
  mTransport->answers = {{0, camera}, {0, MakeCamera("02:00:00:00:00:02")}};
  for (const char* name : {"02:00:00:00:00:01", "02-00-00-00-00-01", "172.16.5.5", "S1", "left"}) {
    mChosen = {};

    const KrResult result = Select(name);

    EXPECT_TRUE(result.IsOK()) << name << ": " << result.GetDescription().CStr();
    ASSERT_TRUE(mChosen.device && mChosen.adapter) << name;
    EXPECT_EQ(mChosen.fields.macAddress, "02:00:00:00:00:01") << name;
    EXPECT_EQ(mChosen.adapter->GetName(), "eth0") << name;
  }
}

TEST_F(NetworkSelection, DeviceHeardOnTwoAdapters_IsRefusedUntilOneIsNamed) {
  mTransport->answers = {{0, MakeCamera("02:00:00:00:00:01")}, {1, MakeCamera("02:00:00:00:00:01")}};

  const KrResult refused = Select("02:00:00:00:00:01");
  const KrResult chosen = Select("02:00:00:00:00:01", "eth1");

  EXPECT_EQ(refused.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_THAT(refused.GetDescription().CStr(), HasSubstr("eth0, eth1"));
  EXPECT_TRUE(chosen.IsOK());
  EXPECT_EQ(mChosen.adapter->GetName(), "eth1");
}

TEST_F(NetworkSelection, AdapterThatDoesNotHearTheDevice_IsToldWithThoseThatDo) {
  mTransport->answers = {{0, MakeCamera("02:00:00:00:00:01")}};

  const KrResult result = Select("02:00:00:00:00:01", "eth1");

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("but on: eth0"));
}

TEST_F(NetworkSelection, TwoDevicesWithOneMACAddress_AreRefusedOnWhateverAdapter) {
  krsystem::GEVFields other = MakeCamera("02:00:00:00:00:01", "10.0.1.7");
  other.serialNumber = "another";
  mTransport->answers = {{0, MakeCamera("02:00:00:00:00:01")}, {1, other}};

  const KrResult result = Select("02:00:00:00:00:01", "eth1");

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("several devices"));
}

TEST_F(NetworkSelection, TwoDevicesWithOneAddress_AreRefusedByThatAndChosenByTheirID) {
  mTransport->answers = {{0, MakeCamera("02:00:00:00:00:01")}, {0, MakeCamera("02:00:00:00:00:02")}};

  const KrResult byAddress = Select("10.0.0.2");
  const KrResult byID = Select("02:00:00:00:00:02");

  EXPECT_EQ(byAddress.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_TRUE(byID.IsOK());
  EXPECT_EQ(mChosen.fields.macAddress, "02:00:00:00:00:02");
}

TEST_F(NetworkSelection, AddressThatNoAdapterHeard_IsAskedDirectly) {
  mTransport->foundInterface = MakeAdapter("eth0");
  mTransport->foundDevice = MakeCamera("02:00:00:00:00:03", "172.16.9.9");
  mTransport->findResult = {};

  const KrResult result = Select("172.16.9.9");

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(mChosen.fields.macAddress, "02:00:00:00:00:03");
}

TEST_F(NetworkSelection, USBDevice_HasNoAddressToSpeakOf) {
  krsystem::U3VFields camera;
  camera.uniqueID = "usb1";
  mTransport->answers = {{0, camera}};

  const KrResult result = Select("usb1");

  EXPECT_EQ(result.GetCode(), KrResult::Code::InvalidInput);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("on no network"));
}

TEST_F(NetworkSelection, UnknownName_IsToldWithWhatWasFound) {
  mTransport->answers = {{0, MakeCamera("02:00:00:00:00:01")}};

  const KrResult result = Select("nobody");

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("02:00:00:00:00:01"));
}

TEST_F(NetworkSelection, AdapterForAnAddress_IsTheNamedOneOrTheOneWhoseSubnetHoldsIt) {
  constexpr std::uint32_t kOnSecond = 0x0A000107; // 10.0.1.7
  KrSystem system;

  const KrNetworkAdapter* const named = FindAdapter(system, "eth0", kOnSecond);
  const KrNetworkAdapter* const holding = FindAdapter(system, "", kOnSecond);

  ASSERT_TRUE(named && holding);
  EXPECT_EQ(named->GetName(), "eth0");
  EXPECT_EQ(holding->GetName(), "eth1");
  EXPECT_EQ(FindAdapter(system, "eth7", kOnSecond), nullptr);
  EXPECT_EQ(FindAdapter(system, "", 0xAC100001), nullptr);
}

TEST(NetworkSelectionText, MACAddress_IsReadInEachWayOfWriting) {
  EXPECT_EQ(ParseMAC("02:4B:52:00:77:1a"), KrString("02:4b:52:00:77:1a"));
  EXPECT_EQ(ParseMAC("02-4b-52-00-77-1a"), KrString("02:4b:52:00:77:1a"));
  for (const char* text : {"", "02:4b:52:00:77", "02:4b:52:00:77:1g", "024b52:00:77:1a:0", "192.168.100.200.1"})
    EXPECT_FALSE(ParseMAC(text)) << text;
}

} // namespace
} // namespace krtool
