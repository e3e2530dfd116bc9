// What the lab does as a network does: who is heard, who is told a new address, and what adapters are called.

#include "labfixture.h"

#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

using krtransport::Lab;
using krtransport::LabAdapter;
using krtransport::LabGEVCamera;
using krtransport::SimulationTransport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kBroadcastMAC = "02:00:00:00:00:ff";

LabGEVCamera MakeCamera(const char* aMAC, const char* aAddress) {
  LabGEVCamera camera;
  camera.macAddress = aMAC;
  camera.ipAddress = aAddress;
  return camera;
}

LabAdapter MakeAdapter(const char* aName, const char* aAddress) {
  LabAdapter adapter;
  adapter.name = aName;
  if (*aAddress != '\0')
    adapter.addresses = {{aAddress, "255.255.255.0"}};
  return adapter;
}

std::vector<std::string> ListHeard(SimulationTransport& aLab, bool aSubnetBroadcast) {
  std::vector<krsystem::InterfaceFields> interfaces;
  EXPECT_TRUE(aLab.ListInterfaces(interfaces).IsOK());
  std::vector<std::string> heard;
  krsystem::DiscoveryRequest request;
  request.subnetBroadcast = aSubnetBroadcast;
  EXPECT_TRUE(aLab.Discover(interfaces, request,
                            [&](std::size_t aIndex, const krsystem::AnyDeviceFields& aDevice) {
                              const auto& fields = std::get<krsystem::GEVFields>(aDevice);
                              heard.push_back(std::to_string(aIndex) + " " + fields.ipAddress.ToUtf8() +
                                              (fields.configurationValid ? "" : " unreachable"));
                            })
                  .IsOK());
  return heard;
}

struct FilterRow {
  const char* name;
  std::int32_t filter;
  const char* gatewayHere;
  const char* gatewayElsewhere;
  bool isForeignHeard;
  bool isOtherSubnetsHeard; // The device's address is one of the other adapter's subnet.
};

void PrintTo(const FilterRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

constexpr const char* kNone = "0.0.0.0";

constexpr FilterRow kFilters[] = {
    {"off", 0, kNone, kNone, true, true},
    {"loose", 2, kNone, kNone, false, true},
    {"loose with a default route here", 2, "10.0.0.254", kNone, true, true},
    {"loose with a default route elsewhere", 2, kNone, "10.0.1.254", true, true},
    {"strict", 1, kNone, kNone, false, false},
    {"strict with a default route here", 1, "10.0.0.254", kNone, true, true},
    {"strict with a default route elsewhere", 1, kNone, "10.0.1.254", false, false},
};

class ReversePathFilterRows : public testing::TestWithParam<FilterRow> {};

} // namespace

TEST_P(ReversePathFilterRows, Discover_ForeignDevices_AreHeardAsTheKernelLetsThem) {
  LabAdapter here = MakeAdapter("here", "10.0.0.1");
  here.reversePathFilter = GetParam().filter;
  here.defaultGateway = GetParam().gatewayHere;
  here.devices = {MakeCamera(kMonoMAC, "10.0.0.2"), MakeCamera(kForeignMAC, "172.16.0.9"),
                  MakeCamera(kColourMAC, "10.0.1.9"), MakeCamera(kRangeMAC, "0.0.0.0")};
  LabAdapter elsewhere = MakeAdapter("elsewhere", "10.0.1.1");
  elsewhere.defaultGateway = GetParam().gatewayElsewhere;
  SimulationTransport lab({.adapters = {here, elsewhere}});

  const std::vector<std::string> heard = ListHeard(lab, false);

  std::vector<std::string> expected = {"0 10.0.0.2"};
  if (GetParam().isForeignHeard)
    expected.push_back("0 172.16.0.9 unreachable");
  if (GetParam().isOtherSubnetsHeard)
    expected.push_back("0 10.0.1.9 unreachable");
  expected.push_back("0 0.0.0.0 unreachable");
  EXPECT_EQ(heard, expected);
}

INSTANTIATE_TEST_SUITE_P(Filters, ReversePathFilterRows, testing::ValuesIn(kFilters));

TEST(SimulatedNetwork, Discover_AdapterWithoutAddress_HearsItsDevicesAsUnreachable) {
  LabAdapter bare = MakeAdapter("bare", "");
  bare.devices = {MakeCamera(kMonoMAC, "10.0.0.2"), MakeCamera(kColourMAC, "0.0.0.0")};
  SimulationTransport lab({.adapters = {bare}});

  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 10.0.0.2 unreachable", "0 0.0.0.0 unreachable"));
  EXPECT_THAT(ListHeard(lab, true), ElementsAre("0 10.0.0.2 unreachable", "0 0.0.0.0 unreachable"))
      << "without a subnet there is but one broadcast";
}

TEST(SimulatedNetwork, ConfigureIP_DeviceBehindAnAdapterWithoutAddress_TakesIt) {
  LabAdapter bare = MakeAdapter("bare", "");
  bare.devices = {MakeCamera(kMonoMAC, "10.0.0.2")};
  SimulationTransport lab({.adapters = {bare}});

  EXPECT_TRUE(lab.ConfigureIP(kMonoMAC, "10.0.0.3", "255.255.255.0", kNone).IsOK());

  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 10.0.0.3 unreachable"));
}

TEST(SimulatedNetwork, Discover_SubnetsOwnAddresses_AreUnreachable) {
  LabAdapter adapter = MakeAdapter("a", "10.0.0.1");
  adapter.devices = {MakeCamera(kMonoMAC, "10.0.0.0"), MakeCamera(kBroadcastMAC, "10.0.0.255"),
                     MakeCamera(kColourMAC, "10.0.0.1")};
  SimulationTransport lab({.adapters = {adapter}});

  EXPECT_THAT(ListHeard(lab, false),
              ElementsAre("0 10.0.0.0 unreachable", "0 10.0.0.255 unreachable", "0 10.0.0.1 unreachable"));
  EXPECT_THAT(ListHeard(lab, true), IsEmpty());
}

TEST(SimulatedNetwork, ConfigureIP_OneMACOnTwoAdapters_TellsTheOneWithTheSubnet) {
  LabAdapter first = MakeAdapter("first", "10.0.0.1");
  first.devices = {MakeCamera(kMonoMAC, "10.0.0.2")};
  LabAdapter second = MakeAdapter("second", "10.0.1.1");
  second.devices = {MakeCamera(kMonoMAC, "10.0.1.2")};
  SimulationTransport lab({.adapters = {first, second}});

  EXPECT_TRUE(lab.ConfigureIP(kMonoMAC, "10.0.1.7", "255.255.255.0", kNone).IsOK());
  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 10.0.0.2", "1 10.0.1.7"));

  EXPECT_TRUE(lab.ConfigureIP(kMonoMAC, "172.16.0.7", "255.255.255.0", kNone).IsOK());
  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 172.16.0.7 unreachable", "1 10.0.1.7"))
      << "the first that answers where no adapter has the subnet";
}

TEST(SimulatedNetwork, Open_DeviceThatWasGivenAnotherAddressSince_IsNotFoundAtTheFormerOne) {
  krtransport::SimulationTransport lab(krtransport::GetBuiltInLab());
  krsystem::InterfaceFields adapter;
  krsystem::AnyDeviceFields device;
  std::unique_ptr<krsystem::IDeviceLink> link;
  ASSERT_TRUE(lab.FindAddress(0xC0A84D0A, 1000, adapter, device).IsOK());

  ASSERT_TRUE(lab.ConfigureIP(kMonoMAC, "192.168.77.99", "255.255.255.0", kNone).IsOK());

  EXPECT_EQ(lab.Open(adapter, device, krsystem::DeviceAccess::Control, link), KrResult::Code::NotFound);
  ASSERT_TRUE(lab.FindAddress(0xC0A84D63, 1000, adapter, device).IsOK());
  EXPECT_TRUE(lab.Open(adapter, device, krsystem::DeviceAccess::Control, link).IsOK());
}

TEST(SimulatedNetwork, ConfigureIP_DeviceThatIsNotHeard_IsToldAllTheSame) {
  LabAdapter strict = MakeAdapter("strict", "10.0.0.1");
  strict.reversePathFilter = 1;
  strict.devices = {MakeCamera(kMonoMAC, "172.16.0.9")};
  SimulationTransport lab({.adapters = {strict}});
  ASSERT_THAT(ListHeard(lab, false), IsEmpty());

  EXPECT_TRUE(lab.ConfigureIP(kMonoMAC, "10.0.0.9", "255.255.255.0", kNone).IsOK());

  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 10.0.0.9"));
}

TEST(SimulatedNetwork, ConfigureIP_OneOfTwoWithTheMACIsBusy_IsDoneByTheOther) {
  LabGEVCamera busy = MakeCamera(kMonoMAC, "10.0.0.2");
  busy.foreignControl = krsystem::AccessType::Control;
  LabAdapter adapter = MakeAdapter("a", "10.0.0.1");
  adapter.devices = {busy, MakeCamera(kMonoMAC, "10.0.0.3")};
  SimulationTransport lab({.adapters = {adapter}});

  EXPECT_TRUE(lab.ConfigureIP(kMonoMAC, "10.0.0.9", "255.255.255.0", kNone).IsOK());

  EXPECT_THAT(ListHeard(lab, false), ElementsAre("0 10.0.0.2", "0 10.0.0.9"));
}

TEST(SimulatedNetwork, ListInterfaces_UniqueIDs_AreMACsWithNamesWhereTheyAreShared) {
  LabAdapter own = MakeAdapter("own", "");
  own.macAddress = "02:00:00:00:00:01";
  LabAdapter shared = MakeAdapter("bond", "");
  shared.macAddress = "02:00:00:00:00:02";
  LabAdapter sharing = MakeAdapter("port", "10.0.0.1");
  sharing.macAddress = shared.macAddress;
  sharing.devices = {MakeCamera(kMonoMAC, "10.0.0.2")};
  SimulationTransport lab({.adapters = {own, shared, sharing, MakeAdapter("none", "")}});
  std::vector<krsystem::InterfaceFields> interfaces;
  ASSERT_TRUE(lab.ListInterfaces(interfaces).IsOK());
  krsystem::HostReadings readings;
  ASSERT_TRUE(lab.ReadHost(readings).IsOK());

  std::vector<std::string> ids;
  for (const krsystem::InterfaceFields& fields : interfaces)
    ids.push_back(std::get<krsystem::NetworkAdapterFields>(fields).uniqueID.ToUtf8());

  EXPECT_THAT(ids, ElementsAre("02:00:00:00:00:01", "02:00:00:00:00:02/bond", "02:00:00:00:00:02/port", "/none"));
  EXPECT_EQ(readings.adapters[2].uniqueID, "02:00:00:00:00:02/port");
  EXPECT_THAT(ListHeard(lab, true), ElementsAre("2 10.0.0.2")) << "each is found by its ID";
}
