// What the kernel's tables say of adapters of every kind that a namespace allows, and what is made of it.

#include "gigevision/linkquery.h"
#include "gigevision/networkadapters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using namespace krtransport;
using krsystem::AdapterAddress;
using krsystem::AdapterReading;
using krsystem::NetworkAdapterFields;
using testing::ElementsAre;

/// Runs `ip` with arguments; false where it fails, as for a kind that this kernel does not have.
bool RunIp(const std::string& aArguments) {
  return std::system(("ip " + aArguments).c_str()) == 0;
}

/// The adapters of a test are gone after it.
class AdapterTables : public testing::Test {
protected:
  void TearDown() override {
    for (const auto& name : mNames)
      static_cast<void>(RunIp("link delete " + name)); // One that hung on another is gone with it.
  }

  void Add(const std::string& aName, const std::string& aLink) {
    mNames.insert(mNames.begin(), aName);
    ASSERT_TRUE(RunIp("link add " + aLink));
  }

  static NetworkAdapterFields Find(const char* aName) {
    std::vector<NetworkAdapterFields> adapters;
    const KrResult result = ListNetworkAdapters(adapters);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    const auto found = std::ranges::find(adapters, KrString(aName), &NetworkAdapterFields::name);
    EXPECT_NE(found, adapters.end()) << aName << " is not listed";
    return found != adapters.end() ? *found : NetworkAdapterFields();
  }

  static AdapterReading FindReading(const char* aName) {
    std::vector<AdapterReading> readings;
    const KrResult result = ReadNetworkAdapters(readings);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    const auto found = std::ranges::find(readings, KrString(aName), &AdapterReading::name);
    EXPECT_NE(found, readings.end()) << aName << " is not read";
    return found != readings.end() ? *found : AdapterReading();
  }

private:
  std::vector<std::string> mNames;
};

/// Whether every kernel that tests run on has a kind of link.
enum class Presence { Always, PerKernel };

struct KindRow {
  const char* kind;
  const char* link; ///< As `ip link add` wants it, for a link named "probe" on an adapter "eth0".
  const char* description;
  Presence presence = Presence::PerKernel;
};

constexpr KindRow kKinds[] = {
    {"veth", "probe type veth peer name far", "Virtual cable (veth)", Presence::Always},
    {"vlan", "link eth0 name probe type vlan id 7", "VLAN"},
    {"bridge", "probe type bridge", "Bridge", Presence::Always},
    {"macvlan", "link eth0 name probe type macvlan mode bridge", "Virtual adapter (macvlan)", Presence::Always},
    {"bond", "probe type bond", "Bond"},
    {"dummy", "probe type dummy", "Dummy adapter"},
};

TEST_F(AdapterTables, VirtualKinds_AreListedByTheirWords) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  for (const KindRow& row : kKinds) {
    SCOPED_TRACE(row.kind);
    if (!RunIp("link add " + std::string(row.link))) {
      EXPECT_EQ(row.presence, Presence::PerKernel) << "this kernel cannot make it";
      continue;
    }

    const NetworkAdapterFields adapter = Find("probe");

    EXPECT_EQ(adapter.description, row.description);
    EXPECT_FALSE(adapter.isLoopback);
    EXPECT_TRUE(adapter.tolvanDriverInstalled);
    EXPECT_TRUE(RunIp("link delete probe"));
  }
}

TEST_F(AdapterTables, AdaptersThatShareAMac_HaveIDsOfTheirOwn) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0 address 02:00:00:00:00:07"));
  ASSERT_NO_FATAL_FAILURE(Add("eth0m", "link eth0 name eth0m type macvlan mode passthru"));

  EXPECT_EQ(Find("eth0").macAddress, "02:00:00:00:00:07");
  EXPECT_EQ(Find("eth0").uniqueID, "02:00:00:00:00:07/eth0");
  EXPECT_EQ(Find("eth0m").macAddress, "02:00:00:00:00:07");
  EXPECT_EQ(Find("eth0m").uniqueID, "02:00:00:00:00:07/eth0m");
}

TEST_F(AdapterTables, Addresses_SecondaryLabelledAndPointToPoint_ComeInTheKernelsOrder) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0 up"));
  ASSERT_TRUE(RunIp("address add 192.168.1.10/24 dev eth0"));
  ASSERT_TRUE(RunIp("address add 192.168.1.11/24 dev eth0 label eth0:1"));
  ASSERT_TRUE(RunIp("address add 10.0.0.1 peer 10.0.0.2/32 dev eth0"));

  const NetworkAdapterFields adapter = Find("eth0");

  // The kernel keeps secondary addresses behind the first ones of all subnets.
  EXPECT_THAT(adapter.addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"},
                                             AdapterAddress{"10.0.0.1", "255.255.255.255"},
                                             AdapterAddress{"192.168.1.11", "255.255.255.0"}));
  EXPECT_EQ(adapter.displayID, "eth0 192.168.1.10");
}

TEST_F(AdapterTables, AdapterSetDown_LosesWhatTheKernelKeeps) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0far up"));
  ASSERT_TRUE(RunIp("link set eth0 up"));
  ASSERT_TRUE(RunIp("address add 192.168.1.10/24 dev eth0"));
  const NetworkAdapterFields up = Find("eth0");

  ASSERT_TRUE(RunIp("link set eth0 down"));

  const NetworkAdapterFields down = Find("eth0");
  const AdapterReading reading = FindReading("eth0");
  EXPECT_THAT(up.addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}));
  EXPECT_THAT(down.addresses, ElementsAre(AdapterAddress{}));
  EXPECT_EQ(down.uniqueID, up.uniqueID);
  EXPECT_FALSE(reading.isUp);
  EXPECT_THAT(reading.addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}));
}

TEST_F(AdapterTables, AdapterWithoutCarrier_KeepsItsAddresses) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0 up"));
  ASSERT_TRUE(RunIp("address add 192.168.1.10/24 dev eth0"));

  const AdapterReading unplugged = FindReading("eth0");
  ASSERT_TRUE(RunIp("link set eth0far up"));
  const AdapterReading plugged = FindReading("eth0");

  EXPECT_TRUE(unplugged.isUp);
  EXPECT_FALSE(unplugged.hasCarrier);
  EXPECT_TRUE(plugged.hasCarrier);
  EXPECT_THAT(Find("eth0").addresses, ElementsAre(AdapterAddress{"192.168.1.10", "255.255.255.0"}));
}

TEST_F(AdapterTables, DefaultRoutes_OfTheMainTable_TheSmallestMetricCounts) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0far up"));
  ASSERT_TRUE(RunIp("link set eth0 up"));
  ASSERT_TRUE(RunIp("address add 192.168.1.10/24 dev eth0"));
  EXPECT_EQ(Find("eth0").defaultGateway, "0.0.0.0");

  ASSERT_TRUE(RunIp("route add default via 192.168.1.2 metric 200"));
  ASSERT_TRUE(RunIp("route add default via 192.168.1.1 metric 100"));
  ASSERT_TRUE(RunIp("route add default via 192.168.1.3 table 77"));

  EXPECT_EQ(Find("eth0").defaultGateway, "192.168.1.1");
}

TEST_F(AdapterTables, DefaultRoute_OfSeveralWays_CountsForEachAdapter) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_NO_FATAL_FAILURE(Add("eth1", "eth1 type veth peer name eth1far"));
  for (const char* name : {"eth0", "eth0far", "eth1", "eth1far"})
    ASSERT_TRUE(RunIp("link set " + std::string(name) + " up"));
  ASSERT_TRUE(RunIp("address add 192.168.1.10/24 dev eth0"));
  ASSERT_TRUE(RunIp("address add 10.0.0.10/8 dev eth1"));

  ASSERT_TRUE(RunIp("route add default nexthop via 192.168.1.1 dev eth0 nexthop via 10.0.0.1 dev eth1"));

  EXPECT_EQ(Find("eth0").defaultGateway, "192.168.1.1");
  EXPECT_EQ(Find("eth1").defaultGateway, "10.0.0.1");
}

TEST_F(AdapterTables, ReversePathFilter_IsReadOfTheAdapter) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  const std::int32_t before = FindReading("eth0").reversePathFilter;

  ASSERT_EQ(std::system("echo 2 > /proc/sys/net/ipv4/conf/eth0/rp_filter"), 0);

  EXPECT_LE(before, 2);
  EXPECT_EQ(FindReading("eth0").reversePathFilter, 2);
}

TEST_F(AdapterTables, Loopback_IsSaidToBeOne) {
  const NetworkAdapterFields loopback = Find("lo");

  EXPECT_TRUE(loopback.isLoopback);
  EXPECT_EQ(loopback.uniqueID, "/lo");
  EXPECT_EQ(loopback.displayID, "lo 127.0.0.1");
  EXPECT_EQ(loopback.description, "Loopback");
}

TEST_F(AdapterTables, LinkQuestions_ToADriverInThisNamespace_AreAnswered) {
  ASSERT_NO_FATAL_FAILURE(Add("eth0", "eth0 type veth peer name eth0far"));
  ASSERT_TRUE(RunIp("link set eth0 mtu 9000"));

  EXPECT_EQ(GetDriverName("eth0"), "veth");
  EXPECT_EQ(GetMtu("eth0"), 9000u);
  // What a virtual cable says of itself.
  EXPECT_EQ(GetLinkSpeed("eth0"), 10000000000u);
}

TEST_F(AdapterTables, ManyAdapters_AreAllListed) {
  constexpr int kPairs = 100;
  ASSERT_NO_FATAL_FAILURE(Add("br0", "br0 type bridge"));
  for (int i = 0; i < kPairs; ++i) {
    const std::string name = "port" + std::to_string(i);
    ASSERT_NO_FATAL_FAILURE(Add(name, name + " type veth peer name f" + std::to_string(i)));
  }
  std::vector<NetworkAdapterFields> adapters;

  const KrResult result = ListNetworkAdapters(adapters);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(
      std::ranges::count_if(adapters, [](const auto& aAdapter) { return aAdapter.name.ToUtf8().starts_with("port"); }),
      kPairs);
}

} // namespace
