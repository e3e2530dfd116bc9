#include "gigevision/adapterfields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <linux/if.h>
#include <linux/if_arp.h>
#include <optional>

namespace {

using namespace krtransport;
using krsystem::AdapterAddress;
using krsystem::AdapterBasis;
using krsystem::AdapterReading;
using krsystem::NetworkAdapterFields;
using testing::ElementsAre;

constexpr std::uint32_t kUp = IFF_UP | IFF_LOWER_UP;
constexpr std::uint32_t kAddress = 0xC0A8010A; // 192.168.1.10

KernelLink MakeLink(int aIndex, const char* aName, std::uint8_t aLastMacByte, std::uint32_t aFlags = kUp) {
  KernelLink link;
  link.index = aIndex;
  link.name = aName;
  link.flags = aFlags;
  link.hardwareType = ARPHRD_ETHER;
  if (aLastMacByte != 0)
    link.mac = {0x00, 0x11, 0x22, 0x33, 0x44, aLastMacByte};
  return link;
}

KernelTables MakeTables(std::vector<KernelLink> aLinks, std::vector<KernelAddress> aAddresses = {},
                        std::vector<KernelRoute> aRoutes = {}) {
  return {std::move(aLinks), std::move(aAddresses), std::move(aRoutes)};
}

std::vector<NetworkAdapterFields> MakeFields(const KernelTables& aTables) {
  return MakeAdapterFields(
      aTables, [](const std::string& aName) { return "driver of " + aName; }, true);
}

std::vector<std::string> GetNames(const KernelTables& aTables) {
  std::vector<std::string> names;
  for (const auto& adapter : MakeFields(aTables))
    names.push_back(adapter.name.ToUtf8());
  return names;
}

TEST(AdapterFields, EthernetWithAddresses_SaysAllOfThemInTheirOrder) {
  const auto adapters = MakeFields(MakeTables({MakeLink(2, "eth0", 0x55)},
                                              {{2, kAddress, 24, 0}, {3, 0x0A000001, 8, 0}, {2, 0x0A000002, 8, 0}},
                                              {{2, 0xC0A80101, 100}}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_EQ(adapters[0].name, "eth0");
  EXPECT_EQ(adapters[0].uniqueID, "00:11:22:33:44:55");
  EXPECT_EQ(adapters[0].macAddress, "00:11:22:33:44:55");
  EXPECT_EQ(adapters[0].displayID, "eth0 192.168.1.10");
  EXPECT_EQ(adapters[0].description, "driver of eth0");
  EXPECT_EQ(adapters[0].defaultGateway, "192.168.1.1");
  EXPECT_THAT(adapters[0].addresses,
              ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}, AdapterAddress{"10.0.0.2", "255.0.0.0"}));
  EXPECT_TRUE(adapters[0].tolvanDriverInstalled);
  EXPECT_FALSE(adapters[0].isLoopback);
}

TEST(AdapterFields, AdapterWithoutAddress_ReportsOneOfZeros) {
  const auto adapters = MakeFields(MakeTables({MakeLink(2, "eth0", 0x55)}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_THAT(adapters[0].addresses, ElementsAre(AdapterAddress{}));
  EXPECT_EQ(adapters[0].defaultGateway, "0.0.0.0");
}

TEST(AdapterFields, AdapterThatIsDown_StaysWithZerosThoughTheKernelKeepsItsAddresses) {
  const auto adapters =
      MakeFields(MakeTables({MakeLink(2, "eth0", 0x55, 0)}, {{2, kAddress, 24, 0}}, {{2, 0xC0A80101, 100}}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_THAT(adapters[0].addresses, ElementsAre(AdapterAddress{}));
  EXPECT_EQ(adapters[0].defaultGateway, "0.0.0.0");
  EXPECT_EQ(adapters[0].displayID, "eth0 0.0.0.0");
  EXPECT_EQ(adapters[0].uniqueID, "00:11:22:33:44:55");
}

TEST(AdapterFields, AdapterWithoutCarrier_KeepsItsAddresses) {
  const auto adapters = MakeFields(MakeTables({MakeLink(2, "eth0", 0x55, IFF_UP)}, {{2, kAddress, 24, 0}}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_THAT(adapters[0].addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}));
}

TEST(AdapterFields, SharedAndMissingMacs_AreToldApartByName) {
  const auto adapters = MakeFields(MakeTables(
      {MakeLink(2, "eth0", 0x55), MakeLink(3, "bond0", 0x66), MakeLink(4, "eth1", 0x66), MakeLink(5, "none0", 0)}));

  ASSERT_EQ(adapters.size(), 4u);
  EXPECT_EQ(adapters[0].uniqueID, "00:11:22:33:44:55");
  EXPECT_EQ(adapters[1].uniqueID, "00:11:22:33:44:66/bond0");
  EXPECT_EQ(adapters[2].uniqueID, "00:11:22:33:44:66/eth1");
  EXPECT_EQ(adapters[2].macAddress, "00:11:22:33:44:66");
  EXPECT_EQ(adapters[3].uniqueID, "/none0");
  EXPECT_EQ(adapters[3].macAddress, "");
}

TEST(AdapterFields, OtherThanEthernet_IsListedWithAnAddressAlone) {
  KernelLink withAddress = MakeLink(2, "wg0", 0);
  KernelLink without = MakeLink(3, "sit0", 0);
  withAddress.hardwareType = ARPHRD_NONE;
  without.hardwareType = ARPHRD_SIT;

  EXPECT_THAT(GetNames(MakeTables({withAddress, without}, {{2, kAddress, 24, 0}})), ElementsAre("wg0"));
}

TEST(AdapterFields, Loopback_IsListedWhileItIsUp) {
  KernelLink loopback = MakeLink(1, "lo", 0, kUp | IFF_LOOPBACK);
  loopback.hardwareType = ARPHRD_LOOPBACK;

  const auto up = MakeFields(MakeTables({loopback}, {{1, 0x7F000001, 8, 0}}));
  loopback.flags = IFF_LOOPBACK;
  const auto down = MakeFields(MakeTables({loopback}, {{1, 0x7F000001, 8, 0}}));

  ASSERT_EQ(up.size(), 1u);
  EXPECT_TRUE(up[0].isLoopback);
  EXPECT_EQ(up[0].description, "Loopback");
  EXPECT_TRUE(down.empty());
}

TEST(AdapterFields, SeveralDefaultRoutes_TheOneOfTheSmallestMetricCountsForEachAdapter) {
  const auto adapters =
      MakeFields(MakeTables({MakeLink(2, "eth0", 0x55), MakeLink(3, "eth1", 0x66)}, {},
                            {{2, 0xC0A80102, 200}, {3, 0x0A000001, 300}, {2, 0xC0A80101, 100}, {2, 0xC0A80103, 100}}));

  EXPECT_EQ(adapters[0].defaultGateway, "192.168.1.1");
  EXPECT_EQ(adapters[1].defaultGateway, "10.0.0.1");
}

struct MaskRow {
  const char* what;
  KernelAddress address;
  const char* mask;
};

const MaskRow kMasks[] = {
    {"NoPrefix", {2, kAddress, 0, 0}, "0.0.0.0"},
    {"OneBit", {2, kAddress, 1, 0}, "128.0.0.0"},
    {"TwentyThree", {2, kAddress, 23, 0}, "255.255.254.0"},
    {"Whole", {2, kAddress, 32, 0}, "255.255.255.255"},
    {"PeerAlone", {2, kAddress, 32, 0xC0A8010B}, "255.255.255.255"},
    {"PeerInTheSameSubnet", {2, kAddress, 24, 0xC0A8010B}, "255.255.255.0"},
    {"PeerOfAnotherSubnet", {2, kAddress, 24, 0x0A00000B}, "255.255.255.255"},
};

class AdapterMask : public testing::TestWithParam<MaskRow> {};

TEST_P(AdapterMask, Prefix_BecomesAMaskThatClaimsNoForeignSubnet) {
  const auto adapters = MakeFields(MakeTables({MakeLink(2, "eth0", 0x55)}, {GetParam().address}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_THAT(adapters[0].addresses, ElementsAre(AdapterAddress{"192.168.1.10", GetParam().mask}));
}

INSTANTIATE_TEST_SUITE_P(Prefixes, AdapterMask, testing::ValuesIn(kMasks),
                         [](const auto& aInfo) { return aInfo.param.what; });

struct KindRow {
  const char* what;
  const char* kind;
  const char* driver;
  const char* description;
};

constexpr KindRow kKinds[] = {
    {"Hardware", "", "e1000e", "e1000e"},
    {"HardwareThatSaysNothing", "", "", "Network adapter"},
    {"VirtualCable", "veth", "veth", "Virtual cable (veth)"},
    {"Vlan", "vlan", "802.1Q VLAN Support", "VLAN"},
    {"Bridge", "bridge", "bridge", "Bridge"},
    {"UnheardOf", "warp", "warpdrive", "warp"},
};

class AdapterDescription : public testing::TestWithParam<KindRow> {};

TEST_P(AdapterDescription, KindAndDriver_BecomeWords) {
  KernelLink link = MakeLink(2, "eth0", 0x55);
  link.kind = GetParam().kind;

  const auto adapters = MakeAdapterFields(
      MakeTables({link}), [](const std::string&) { return std::string(GetParam().driver); }, false);

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_EQ(adapters[0].description, GetParam().description);
  EXPECT_FALSE(adapters[0].tolvanDriverInstalled);
}

INSTANTIATE_TEST_SUITE_P(Kinds, AdapterDescription, testing::ValuesIn(kKinds),
                         [](const auto& aInfo) { return aInfo.param.what; });

std::optional<std::int32_t> ReadNoFilter(const std::string&) {
  return std::nullopt;
}

TEST(AdapterReadings, AdapterThatIsDown_IsReadWithTheAddressesThatTheKernelKeeps) {
  const auto tables =
      MakeTables({MakeLink(2, "eth0", 0x55, 0), MakeLink(3, "eth1", 0x66, IFF_UP)}, {{2, kAddress, 24, 0}});

  const auto readings = MakeAdapterReadings(tables, ReadNoFilter);

  ASSERT_EQ(readings.size(), 2u);
  EXPECT_EQ(readings[0].uniqueID, "00:11:22:33:44:55");
  EXPECT_EQ(readings[0].name, "eth0");
  EXPECT_FALSE(readings[0].isUp);
  EXPECT_TRUE(readings[0].hasCarrier);
  EXPECT_THAT(readings[0].addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}));
  EXPECT_TRUE(readings[1].isUp);
  EXPECT_FALSE(readings[1].hasCarrier);
  EXPECT_TRUE(readings[1].addresses.empty());
}

// eth0 hangs on what a row says of it, besides a bridge (4), a VRF (5) and a macvlan (6).
struct BasisRow {
  const char* what;
  const char* kind;
  int master;
  int lower;
  AdapterBasis basis;
  bool isPort;
};

const BasisRow kBases[] = {
    {"Hardware", "", 0, 0, AdapterBasis::Plug, false},
    {"PortOfABridge", "", 4, 0, AdapterBasis::Plug, true},
    {"PortOfABridgeThatNobodyLists", "", 9, 0, AdapterBasis::Plug, true},
    {"MemberOfAVrf", "", 5, 0, AdapterBasis::Plug, false},
    {"VirtualCable", "veth", 4, 0, AdapterBasis::VirtualCable, true},
    {"Vlan", "vlan", 0, 3, AdapterBasis::Adapter, false},
    {"MacvlanOfAnotherNamespace", "macvlan", 0, 0, AdapterBasis::Adapter, false},
    {"UnheardOfOnAnother", "warp", 0, 3, AdapterBasis::Adapter, false},
    {"BridgeWithoutPorts", "bridge", 0, 0, AdapterBasis::Nothing, false},
    {"Tunnel", "tun", 0, 0, AdapterBasis::Nothing, false},
};

class AdapterBases : public testing::TestWithParam<BasisRow> {};

TEST_P(AdapterBases, Link_IsReadWithWhatItConsistsOf) {
  KernelLink link = MakeLink(2, "eth0", 0x55);
  link.kind = GetParam().kind;
  link.master = GetParam().master;
  link.lower = GetParam().lower;
  KernelLink bridge = MakeLink(4, "br0", 0x66);
  bridge.kind = "bridge";
  KernelLink vrf = MakeLink(5, "vrf0", 0x77);
  vrf.kind = "vrf";

  const auto readings = MakeAdapterReadings(MakeTables({link, bridge, vrf}), ReadNoFilter);

  ASSERT_EQ(readings.size(), 3u);
  EXPECT_EQ(readings[0].basis, GetParam().basis);
  EXPECT_EQ(readings[0].isPort, GetParam().isPort);
  EXPECT_EQ(readings[1].basis, GetParam().master == 4 ? AdapterBasis::Ports : AdapterBasis::Nothing);
}

INSTANTIATE_TEST_SUITE_P(Bases, AdapterBases, testing::ValuesIn(kBases),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(AdapterReadings, AdapterThatAnotherStandsOn_HasOthersOn) {
  KernelLink macvlan = MakeLink(3, "mv0", 0x66);
  macvlan.kind = "macvlan";
  macvlan.lower = 2;

  const auto readings = MakeAdapterReadings(MakeTables({MakeLink(2, "eth0", 0x55), macvlan}), ReadNoFilter);

  ASSERT_EQ(readings.size(), 2u);
  EXPECT_TRUE(readings[0].hasOthersOn);
  EXPECT_FALSE(readings[1].hasOthersOn);
}

struct RouteRow {
  const char* what;
  std::vector<KernelRoute> routes;
  std::uint32_t flagsOfEth0;
  std::vector<bool> haveDefaultRoute; ///< eth0 and eth1.
};

const RouteRow kRoutes[] = {
    {"None", {}, kUp, {false, false}},
    {"ByAGateway", {{2, 0xC0A80101, 100}}, kUp, {true, false}},
    {"StraightOntoTheLink", {{2, 0, 100}}, kUp, {true, false}},
    {"SmallerMetricElsewhere", {{2, 0xC0A80101, 100}, {3, 0x0A000001, 50}}, kUp, {false, true}},
    {"SeveralWays", {{2, 0xC0A80101, 100}, {3, 0x0A000001, 100}}, kUp, {true, true}},
    {"OfAnAdapterThatIsDown", {{2, 0xC0A80101, 100}}, 0, {false, false}},
};

class AdapterRoutes : public testing::TestWithParam<RouteRow> {};

TEST_P(AdapterRoutes, DefaultRoutes_CountForTheAdapterThatIsUsed) {
  const auto tables =
      MakeTables({MakeLink(2, "eth0", 0x55, GetParam().flagsOfEth0), MakeLink(3, "eth1", 0x66)}, {}, GetParam().routes);

  const auto readings = MakeAdapterReadings(tables, ReadNoFilter);

  std::vector<bool> have;
  for (const AdapterReading& reading : readings)
    have.push_back(reading.hasDefaultRoute);
  EXPECT_EQ(have, GetParam().haveDefaultRoute);
}

INSTANTIATE_TEST_SUITE_P(Routes, AdapterRoutes, testing::ValuesIn(kRoutes),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(AdapterFields, DefaultRouteWithoutGateway_IsNoGateway) {
  const auto adapters = MakeFields(MakeTables({MakeLink(2, "eth0", 0x55)}, {}, {{2, 0, 50}, {2, 0xC0A80101, 100}}));

  ASSERT_EQ(adapters.size(), 1u);
  EXPECT_EQ(adapters[0].defaultGateway, "192.168.1.1");
}

struct FilterRow {
  const char* what;
  std::optional<std::int32_t> all;
  std::optional<std::int32_t> own;
  std::int32_t reading;
};

const FilterRow kFilters[] = {
    {"OwnIsLarger", 0, 1, 1},
    {"AllIsLarger", 2, 1, 2},
    {"Unreadable", std::nullopt, std::nullopt, 0},
    {"OwnAlone", std::nullopt, 2, 2},
};

class AdapterFilter : public testing::TestWithParam<FilterRow> {};

TEST_P(AdapterFilter, FiltersOfAllAndOfTheAdapter_TheLargerCounts) {
  const auto readings = MakeAdapterReadings(MakeTables({MakeLink(2, "eth0", 0x55)}), [](const std::string& aName) {
    return aName == "all" ? GetParam().all : GetParam().own;
  });

  ASSERT_EQ(readings.size(), 1u);
  EXPECT_EQ(readings[0].reversePathFilter, GetParam().reading);
}

INSTANTIATE_TEST_SUITE_P(Filters, AdapterFilter, testing::ValuesIn(kFilters),
                         [](const auto& aInfo) { return aInfo.param.what; });

} // namespace
