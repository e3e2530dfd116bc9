#include "logic/finder/treeiteminfonetworkadapter.h"

#include "finderrows.h"
#include "foundsystem.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoNetworkAdapter;
using krsystem::AdapterAddress;
using testing::Contains;
using testing::ElementsAre;

namespace {

constexpr const char* kMask = "255.255.255.0";

// The node of the first of the adapters given.
struct AdapterNode {
  explicit AdapterNode(std::vector<krsystem::NetworkAdapterFields> aAdapters) {
    for (krsystem::NetworkAdapterFields& fields : aAdapters)
      adapters.push_back(std::make_unique<KrNetworkAdapter>(std::move(fields)));
    std::vector<const KrInterface*> all;
    for (const auto& adapter : adapters)
      all.push_back(adapter.get());
    node.InitInterface(all, *adapters.front());
  }

  std::vector<std::unique_ptr<KrNetworkAdapter>> adapters;
  TreeItemInfoNetworkAdapter node;
};

krsystem::NetworkAdapterFields MakeAdapterWith(std::vector<AdapterAddress> aAddresses) {
  krsystem::NetworkAdapterFields fields = MakeNumberedAdapter(0);
  fields.description = "Fast port";
  fields.defaultGateway = "192.168.1.254";
  fields.addresses = std::move(aAddresses);
  return fields;
}

struct IconCase {
  const char* name;
  std::vector<AdapterAddress> addresses;
  int withoutDriver;
  int withDriver;
};

const IconCase kIcons[] = {
    {"addresses good", {{"192.168.1.1", kMask}}, 5, 7},
    {"two good addresses", {{"192.168.1.1", kMask}, {"192.168.2.1", kMask}}, 5, 7},
    {"no address", {{"0.0.0.0", "0.0.0.0"}}, 8, 10},
    {"no address but a mask", {{"0.0.0.0", kMask}}, 8, 10},
    {"first address missing, second set", {{"0.0.0.0", kMask}, {"192.168.2.1", kMask}}, 8, 10},
    {"first address set, second missing", {{"192.168.1.1", kMask}, {"0.0.0.0", "0.0.0.0"}}, 5, 7},
    {"no mask", {{"192.168.1.1", "0.0.0.0"}}, 9, 11},
    {"first mask missing, second set", {{"192.168.1.1", "0.0.0.0"}, {"192.168.2.1", kMask}}, 9, 11},
    {"first mask set, second missing", {{"192.168.1.1", kMask}, {"192.168.2.1", "0.0.0.0"}}, 5, 7},
    {"two addresses in one subnet", {{"192.168.1.1", kMask}, {"192.168.1.2", kMask}}, 9, 11},
    {"no address and no unique subnet", {{"0.0.0.0", kMask}, {"0.0.0.7", kMask}}, 8, 10},
    {"an address that is none", {{"nowhere", kMask}}, 5, 7},
};

} // namespace

TEST(TreeItemInfoNetworkAdapter, OneAddress_CaptionsHaveNoNumber) {
  const AdapterNode adapter({MakeAdapterWith({{"192.168.1.1", kMask}})});

  EXPECT_THAT(WriteRows(adapter.node),
              ElementsAre("Description = Fast port", "MAC = 02:00:00:00:00:00", "IP Address = 192.168.1.1 [white]",
                          "Subnet Mask = 255.255.255.0 [white]", "Default Gateway = 192.168.1.254"));
}

TEST(TreeItemInfoNetworkAdapter, TwoAddresses_CaptionsAreNumberedFromZero) {
  const AdapterNode adapter({MakeAdapterWith({{"192.168.1.1", kMask}, {"10.0.0.1", "255.0.0.0"}})});

  EXPECT_THAT(WriteRows(adapter.node),
              ElementsAre("Description = Fast port", "MAC = 02:00:00:00:00:00", "IP Address 0 = 192.168.1.1 [white]",
                          "Subnet Mask 0 = 255.255.255.0 [white]", "IP Address 1 = 10.0.0.1 [white]",
                          "Subnet Mask 1 = 255.0.0.0 [white]", "Default Gateway = 192.168.1.254"));
}

TEST(TreeItemInfoNetworkAdapter, NoAddress_BothRowsAreRedWhateverTheMask) {
  for (const char* mask : {"0.0.0.0", "255.255.255.0", "nonsense"}) {
    const AdapterNode adapter({MakeAdapterWith({{"0.0.0.0", mask}})});

    EXPECT_EQ(WriteRow(adapter.node, "IP Address"), "IP Address = 0.0.0.0 [red]");
    EXPECT_EQ(WriteRow(adapter.node, "Subnet Mask"), std::string("Subnet Mask = ") + mask + " [red]");
  }
}

TEST(TreeItemInfoNetworkAdapter, NoMask_RowIsWhiteAsItsAddressIs) {
  const AdapterNode adapter({MakeAdapterWith({{"192.168.1.1", "0.0.0.0"}})});

  EXPECT_EQ(WriteRow(adapter.node, "Subnet Mask"), "Subnet Mask = 0.0.0.0 [white]");
}

TEST(TreeItemInfoNetworkAdapter, TwoAdaptersInOneSubnet_BothSaySoInYellowWithTheDoubtfulPicture) {
  const krsystem::NetworkAdapterFields first = MakeNumberedAdapter(0, "192.168.1.1");
  const krsystem::NetworkAdapterFields second = MakeNumberedAdapter(1, "192.168.1.2");
  const AdapterNode ofFirst({first, second});
  const AdapterNode ofSecond({second, first});

  EXPECT_EQ(WriteRow(ofFirst.node, "IP Address"), "IP Address = 192.168.1.1: subnet not unique [yellow]");
  EXPECT_EQ(WriteRow(ofFirst.node, "Subnet Mask"), "Subnet Mask = 255.255.255.0 [yellow]");
  EXPECT_EQ(WriteRow(ofSecond.node, "IP Address"), "IP Address = 192.168.1.2: subnet not unique [yellow]");
  EXPECT_EQ(ofFirst.node.GetIcon(), 9);
  EXPECT_EQ(ofSecond.node.GetIcon(), 9);
}

TEST(TreeItemInfoNetworkAdapter, TwoAdaptersInOneSubnetWithDriver_HaveTheDoubtfulPictureWithDriver) {
  krsystem::NetworkAdapterFields first = MakeNumberedAdapter(0, "192.168.1.1");
  first.tolvanDriverInstalled = true;
  const AdapterNode adapter({first, MakeNumberedAdapter(1, "192.168.1.2")});

  EXPECT_EQ(adapter.node.GetIcon(), 11);
}

TEST(TreeItemInfoNetworkAdapter, Addresses_AsTheTableSays_DecideThePicture) {
  for (const IconCase& row : kIcons) {
    SCOPED_TRACE(row.name);
    krsystem::NetworkAdapterFields fields = MakeAdapterWith(row.addresses);
    const AdapterNode withoutDriver({fields});
    fields.tolvanDriverInstalled = true;
    const AdapterNode withDriver({fields});

    EXPECT_EQ(withoutDriver.node.GetIcon(), row.withoutDriver);
    EXPECT_EQ(withDriver.node.GetIcon(), row.withDriver);
  }
}

TEST(TreeItemInfoNetworkAdapter, SubnetNotUniqueAndNoAddress_SaysSoInRed) {
  const AdapterNode adapter({MakeAdapterWith({{"0.0.0.0", kMask}, {"0.0.0.7", kMask}})});

  EXPECT_THAT(WriteRows(adapter.node), Contains("IP Address 0 = 0.0.0.0: subnet not unique [red]"));
  EXPECT_THAT(WriteRows(adapter.node), Contains("IP Address 1 = 0.0.0.7: subnet not unique [yellow]"));
}

TEST(TreeItemInfoNetworkAdapter, FilledAgain_ShowsOnlyTheNewRows) {
  AdapterNode adapter({MakeAdapterWith({{"192.168.1.1", kMask}, {"10.0.0.1", kMask}})});
  const KrNetworkAdapter changed(MakeAdapterWith({{"192.168.7.1", kMask}}));
  const KrInterface* const all[] = {&changed};

  adapter.node.InitInterface(all, changed);

  EXPECT_EQ(adapter.node.GetRows().size(), 5U);
  EXPECT_EQ(WriteRow(adapter.node, "IP Address"), "IP Address = 192.168.7.1 [white]");
}

TEST(TreeItemInfoNetworkAdapter, InterfaceOfAnotherKind_LeavesNoRows) {
  const KrUSBHostController controller(MakeController("usb0"));
  TreeItemInfoNetworkAdapter node;

  node.InitInterface({}, controller);

  EXPECT_TRUE(node.GetRows().empty());
}
