#include "gigevision/networkadapters.h"

#include "krsystem/ipv4address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace krtransport;
using krsystem::NetworkAdapterFields;

NetworkAdapterFields MakeAdapter(const char* aName, const char* aMac,
                                 std::vector<krsystem::AdapterAddress> aAddresses = {{}}) {
  NetworkAdapterFields fields;
  fields.name = aName;
  fields.macAddress = aMac;
  fields.addresses = std::move(aAddresses);
  return fields;
}

struct ReachRow {
  const char* name;
  const char* device;
  const char* local; ///< Null where the device cannot be reached.
};

const ReachRow kReaches[] = {
    {"FirstSubnet", "192.168.1.20", "192.168.1.10"},      {"SecondSubnet", "10.1.2.3", "10.0.0.1"},
    {"ForeignSubnet", "192.168.2.20", nullptr},           {"NoAddress", "0.0.0.0", nullptr},
    {"TheSubnetItself", "192.168.1.0", nullptr},          {"ItsBroadcastAddress", "10.255.255.255", nullptr},
    {"OfThisHostItself", "192.168.1.10", "192.168.1.10"},
};

class NetworkAdapterReach : public testing::TestWithParam<ReachRow> {};

TEST_P(NetworkAdapterReach, FindLocalAddress_DevicesAddress_GivesTheAddressOfItsSubnet) {
  const auto adapter =
      MakeAdapter("eth0", "", {{"192.168.1.10", "255.255.255.0"}, {"10.0.0.1", "255.0.0.0"}, {"0.0.0.0", "0.0.0.0"}});

  const auto local = FindLocalAddress(adapter, krsystem::ParseIPv4(GetParam().device).value());

  ASSERT_EQ(local.has_value(), GetParam().local != nullptr);
  EXPECT_EQ(krsystem::FormatIPv4(local.value_or(0)),
            KrString(GetParam().local != nullptr ? GetParam().local : "0.0.0.0"));
}

INSTANTIATE_TEST_SUITE_P(Addresses, NetworkAdapterReach, testing::ValuesIn(kReaches),
                         [](const auto& aInfo) { return aInfo.param.name; });

struct BroadcastRow {
  const char* name;
  std::vector<krsystem::AdapterAddress> addresses;
  bool subnetBroadcast;
  std::vector<std::uint32_t> broadcasts;
};

const BroadcastRow kBroadcasts[] = {
    {"Subnet", {{"192.168.1.10", "255.255.255.0"}}, true, {0xC0A801FF}},
    {"Limited", {{"192.168.1.10", "255.255.255.0"}}, false, {0xFFFFFFFF}},
    {"TwoSubnets", {{"192.168.1.10", "255.255.255.0"}, {"10.0.0.1", "255.0.0.0"}}, true, {0x0AFFFFFF, 0xC0A801FF}},
    {"TwoAddressesOfOneSubnet",
     {{"192.168.1.10", "255.255.255.0"}, {"192.168.1.11", "255.255.255.0"}},
     true,
     {0xC0A801FF}},
    {"Loopback", {{"127.0.0.1", "255.0.0.0"}}, true, {0xFFFFFFFF}},
    {"NoAddress", {{"0.0.0.0", "0.0.0.0"}}, true, {0xFFFFFFFF}},
    {"PointToPoint", {{"10.0.0.1", "255.255.255.255"}}, true, {0xFFFFFFFF}},
};

class NetworkAdapterBroadcast : public testing::TestWithParam<BroadcastRow> {};

TEST_P(NetworkAdapterBroadcast, GetBroadcastAddresses_Adapter_NamesEachOnce) {
  const auto adapter = MakeAdapter("eth0", "", GetParam().addresses);

  EXPECT_EQ(GetBroadcastAddresses(adapter, GetParam().subnetBroadcast), GetParam().broadcasts);
}

INSTANTIATE_TEST_SUITE_P(Adapters, NetworkAdapterBroadcast, testing::ValuesIn(kBroadcasts),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(NetworkAdapters, ListNetworkAdapters_ThisHost_GivesEveryAdapterANameAnIDAndAnAddress) {
  std::vector<NetworkAdapterFields> adapters;

  const KrResult result = ListNetworkAdapters(adapters);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  for (const auto& adapter : adapters) {
    EXPECT_FALSE(adapter.name.IsEmpty());
    EXPECT_FALSE(adapter.uniqueID.IsEmpty());
    EXPECT_FALSE(adapter.addresses.empty());
  }
}

} // namespace
