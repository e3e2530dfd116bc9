#include "logic/finder/subnetrule.h"

#include "foundsystem.h"

#include <gtest/gtest.h>

using krgui::IsSubnetUnique;
using krsystem::AdapterAddress;

namespace {

KrNetworkAdapter MakeAdapterWith(const KrString& aName, std::vector<AdapterAddress> aAddresses) {
  krsystem::NetworkAdapterFields fields = MakeAdapter(aName);
  fields.macAddress = "mac of " + aName;
  fields.addresses = std::move(aAddresses);
  return KrNetworkAdapter(fields);
}

struct PairCase {
  const char* name;
  AdapterAddress own;
  AdapterAddress other;
  bool isUnique;
};

constexpr const char* kClassC = "255.255.255.0";

const PairCase kPairs[] = {
    {"two networks", {"192.168.1.10", kClassC}, {"192.168.2.10", kClassC}, true},
    {"one network", {"192.168.1.10", kClassC}, {"192.168.1.20", kClassC}, false},
    {"the same address twice", {"192.168.1.10", kClassC}, {"192.168.1.10", kClassC}, false},
    {"the other's mask makes it another network", {"192.168.1.10", kClassC}, {"192.168.1.20", "255.255.0.0"}, true},
    {"masks differ but the networks' numbers do not",
     {"10.1.0.1", "255.255.255.0"},
     {"10.1.0.2", "255.255.0.0"},
     false},
    {"no mask of its own", {"192.168.1.10", "0.0.0.0"}, {"192.168.1.20", "0.0.0.0"}, true},
    {"no address but a mask, beside one that has neither", {"0.0.0.0", kClassC}, {"0.0.0.0", "0.0.0.0"}, false},
    {"link-local on both", {"169.254.3.4", "255.255.0.0"}, {"169.254.200.1", "255.255.0.0"}, false},
    {"an own address that is none", {"?", kClassC}, {"?", kClassC}, true},
    {"an own mask that is none", {"192.168.1.10", "24"}, {"192.168.1.20", "24"}, true},
    {"an empty address", {"", ""}, {"", ""}, true},
    {"another's address that is none", {"0.0.0.5", kClassC}, {"bad", kClassC}, true},
    {"highest address", {"255.255.255.255", "255.255.255.255"}, {"255.255.255.254", "255.255.255.255"}, true},
};

} // namespace

TEST(SubnetRule, TwoAdapters_AsTheTableSays_AreToldApart) {
  for (const PairCase& pair : kPairs) {
    SCOPED_TRACE(pair.name);
    const KrNetworkAdapter own = MakeAdapterWith("own", {pair.own});
    const KrNetworkAdapter other = MakeAdapterWith("other", {pair.other});
    const KrInterface* const all[] = {&other, &own};

    EXPECT_EQ(IsSubnetUnique(all, own, 0), pair.isUnique);
  }
}

TEST(SubnetRule, OneAdapter_TwoAddressesInOneSubnet_NeitherIsUnique) {
  const KrNetworkAdapter adapter =
      MakeAdapterWith("own", {{"10.0.0.1", kClassC}, {"10.0.0.2", kClassC}, {"10.0.1.1", kClassC}});
  const KrInterface* const all[] = {&adapter};

  EXPECT_FALSE(IsSubnetUnique(all, adapter, 0));
  EXPECT_FALSE(IsSubnetUnique(all, adapter, 1));
  EXPECT_TRUE(IsSubnetUnique(all, adapter, 2));
}

TEST(SubnetRule, SecondAddressOfAnother_InTheSubnet_Counts) {
  const KrNetworkAdapter own = MakeAdapterWith("own", {{"10.0.1.7", kClassC}});
  const KrNetworkAdapter other = MakeAdapterWith("other", {{"10.0.0.1", kClassC}, {"10.0.1.1", kClassC}});
  const KrInterface* const all[] = {&own, &other};

  EXPECT_FALSE(IsSubnetUnique(all, own, 0));
}

TEST(SubnetRule, Controllers_AmongTheInterfaces_AreNoAdapters) {
  const KrUSBHostController controller(MakeController("usb0"));
  const KrNetworkAdapter own = MakeAdapterWith("own", {{"10.0.0.1", kClassC}});
  const KrInterface* const all[] = {&controller, &own};

  EXPECT_TRUE(IsSubnetUnique(all, own, 0));
}

TEST(SubnetRule, AdapterThatChangedAMomentAgo_StandsInTheListAsItWas_IsNotAnotherOne) {
  const KrNetworkAdapter before = MakeAdapterWith("own", {{"10.0.0.1", kClassC}});
  const KrNetworkAdapter now = MakeAdapterWith("own", {{"10.0.0.1", kClassC}, {"10.0.1.1", kClassC}});
  const KrInterface* const onlyBefore[] = {&before};
  const KrInterface* const both[] = {&before, &now};

  EXPECT_TRUE(IsSubnetUnique(onlyBefore, now, 0));
  EXPECT_TRUE(IsSubnetUnique(both, now, 0));
}

TEST(SubnetRule, IndexBeyondTheAddresses_HasNoMask_CountsAsUnique) {
  const KrNetworkAdapter own = MakeAdapterWith("own", {{"10.0.0.1", kClassC}});
  const KrInterface* const all[] = {&own};

  EXPECT_TRUE(IsSubnetUnique(all, own, 1));
}
