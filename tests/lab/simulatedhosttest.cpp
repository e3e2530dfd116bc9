#include "labfixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kNetwork = 0x0A000000; // 10.0.0.0

// An adapter that drops what comes from foreign subnets, one without a cable, one that is down, and a USB camera that
// may not be opened.
krtransport::Lab MakeLab() {
  krtransport::LabGEVCamera near;
  near.macAddress = kMonoMAC;
  near.ipAddress = "10.0.0.2";
  krtransport::LabGEVCamera foreign = near;
  foreign.macAddress = kForeignMAC;
  foreign.ipAddress = "192.168.5.5";
  krtransport::LabGEVCamera bare = near;
  bare.macAddress = kColourMAC;
  bare.ipAddress = "0.0.0.0";
  krtransport::LabAdapter strict;
  strict.name = "strict";
  strict.addresses = {{"10.0.0.1", "255.0.0.0"}};
  strict.reversePathFilter = 1;
  strict.usedAddresses = {"10.0.0.7"};
  strict.devices = {near, foreign, bare};
  krtransport::LabAdapter unplugged = strict;
  unplugged.name = "unplugged";
  unplugged.hasCarrier = false;
  krtransport::LabAdapter down = strict;
  down.name = "down";
  down.isUp = false;
  krtransport::LabU3VCamera camera;
  camera.deviceGUID = "guid";
  camera.speed = 3;
  camera.isDriverInstalled = false;
  krtransport::LabController controller;
  controller.name = "usb0";
  controller.devices = {camera};
  return {.adapters = {strict, unplugged, down},
          .controllers = {controller},
          .receiveBufferLimitBytes = 212992,
          .usbMemoryMegabytes = 16};
}

class SimulatedHostTest : public LabTest {
protected:
  SimulatedHostTest() : LabTest(nullptr, MakeLab()) { EXPECT_TRUE(mLab->ListInterfaces(mInterfaces).IsOK()); }

  std::vector<krsystem::InterfaceFields> mInterfaces;
};

} // namespace

TEST_F(SimulatedHostTest, ReadHost_Readings_AreTheLabs) {
  krsystem::HostReadings readings;

  EXPECT_TRUE(mLab->ReadHost(readings).IsOK());

  ASSERT_EQ(readings.adapters.size(), 3u);
  EXPECT_EQ(readings.adapters[0].uniqueID, "/strict");
  EXPECT_EQ(readings.adapters[0].reversePathFilter, 1);
  EXPECT_FALSE(readings.adapters[1].hasCarrier);
  EXPECT_FALSE(readings.adapters[2].isUp);
  EXPECT_EQ(readings.adapters[2].addresses.size(), 1u) << "what it has counts for nothing, and is there";
  ASSERT_EQ(readings.usbDevices.size(), 1u);
  EXPECT_EQ(readings.usbDevices[0].uniqueID, "guid");
  EXPECT_FALSE(readings.usbDevices[0].mayOpen);
  EXPECT_EQ(readings.usbDevices[0].speed, 3);
  EXPECT_EQ(readings.receiveBufferLimitBytes, 212992u);
  EXPECT_EQ(readings.usbMemoryMegabytes, 16u);
  EXPECT_TRUE(readings.hasNetworkTransport);
  EXPECT_TRUE(readings.hasUSBTransport);
}

TEST_F(SimulatedHostTest, ReadHost_LabWithoutLimits_LeavesTheHostsOwn) {
  krtransport::SimulationTransport bare(krtransport::Lab{});
  krsystem::HostReadings readings;
  readings.receiveBufferLimitBytes = 4711;

  EXPECT_TRUE(bare.ReadHost(readings).IsOK());

  EXPECT_EQ(readings.receiveBufferLimitBytes, 4711u);
  EXPECT_FALSE(readings.hasNetworkTransport);
  EXPECT_FALSE(readings.hasUSBTransport);
}

TEST_F(SimulatedHostTest, Find_StrictFilter_DropsForeignAnswersButNotThoseFromNoAddress) {
  FindAll();

  EXPECT_NE(FindInfo(kMonoMAC), nullptr);
  EXPECT_EQ(FindInfo(kForeignMAC), nullptr);
  EXPECT_NE(FindInfo(kColourMAC), nullptr);
  EXPECT_EQ(mSystem.GetInterface(1)->GetDeviceCount(), 0u) << "no cable";
  EXPECT_EQ(mSystem.GetInterface(2)->GetDeviceCount(), 0u) << "down";
}

// What a device of a foreign subnet says comes through as it does on real networks.
struct LabFilterCase {
  const char* name;
  std::int32_t filter;
  const char* gateway;
  const char* gatewayElsewhere;
  bool isHeard;
};

constexpr LabFilterCase kLabFilters[] = {
    {"Off", 0, "0.0.0.0", "0.0.0.0", true},
    {"StrictWithoutRoute", 1, "0.0.0.0", "0.0.0.0", false},
    {"StrictWithARouteElsewhere", 1, "0.0.0.0", "172.16.0.254", false},
    {"StrictWithTheRoute", 1, "10.0.0.254", "0.0.0.0", true},
    {"LooseWithoutRoute", 2, "0.0.0.0", "0.0.0.0", false},
    {"LooseWithARouteElsewhere", 2, "0.0.0.0", "172.16.0.254", true},
    {"LooseWithTheRoute", 2, "10.0.0.254", "0.0.0.0", true},
};

class SimulatedFilters : public testing::TestWithParam<LabFilterCase> {};

TEST_P(SimulatedFilters, Filter_DropsForeignAnswersToWhichThereIsNoWayBack) {
  krtransport::Lab lab = MakeLab();
  lab.controllers.clear();
  lab.adapters.resize(2);
  lab.adapters[0].reversePathFilter = GetParam().filter;
  lab.adapters[0].defaultGateway = GetParam().gateway;
  lab.adapters[1].name = "elsewhere";
  lab.adapters[1].hasCarrier = true;
  lab.adapters[1].addresses = {{"172.16.0.1", "255.255.0.0"}};
  lab.adapters[1].defaultGateway = GetParam().gatewayElsewhere;
  lab.adapters[1].devices.clear();
  krtransport::SimulationTransport transport(lab);
  std::vector<krsystem::InterfaceFields> interfaces;
  EXPECT_TRUE(transport.ListInterfaces(interfaces).IsOK());
  std::vector<KrString> heard;

  EXPECT_TRUE(transport
                  .Discover(interfaces, {.timeoutMs = 100, .subnetBroadcast = false, .cancel = {}},
                            [&heard](std::size_t, const krsystem::AnyDeviceFields& aDevice) {
                              heard.push_back(std::get<krsystem::GEVFields>(aDevice).macAddress);
                            })
                  .IsOK());
  krsystem::HostReadings readings;
  EXPECT_TRUE(transport.ReadHost(readings).IsOK());

  EXPECT_THAT(heard, testing::IsSupersetOf({KrString(kMonoMAC), KrString(kColourMAC)}));
  EXPECT_EQ(std::ranges::find(heard, KrString(kForeignMAC)) != heard.end(), GetParam().isHeard);
  ASSERT_EQ(readings.adapters.size(), 2u);
  EXPECT_EQ(readings.adapters[0].hasDefaultRoute, GetParam().gateway != std::string("0.0.0.0"));
}

INSTANTIATE_TEST_SUITE_P(Filters, SimulatedFilters, testing::ValuesIn(kLabFilters),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(SimulatedHostTest, FindUsedAddresses_AdapterDevicesAndOthers_AreUsed) {
  std::vector<std::uint32_t> used;

  EXPECT_TRUE(
      mLab->FindUsedAddresses(mInterfaces[0], {kNetwork + 1, kNetwork + 2, kNetwork + 3, kNetwork + 7}, 100, {}, used)
          .IsOK());

  EXPECT_THAT(used, ElementsAre(kNetwork + 1, kNetwork + 2, kNetwork + 7));
}

TEST_F(SimulatedHostTest, FindUsedAddresses_InterfaceWithoutNetwork_IsNotSupported) {
  std::vector<std::uint32_t> used;

  for (std::size_t i = 1; i < mInterfaces.size(); ++i)
    EXPECT_TRUE(mLab->FindUsedAddresses(mInterfaces[i], {kNetwork + 2}, 100, {}, used) == KrResult::Code::NotSupported)
        << i;

  EXPECT_THAT(used, IsEmpty());
}

TEST_F(SimulatedHostTest, FindUsedAddresses_Cancelled_IsAborted) {
  std::stop_source stop;
  stop.request_stop();
  std::vector<std::uint32_t> used;

  EXPECT_TRUE(mLab->FindUsedAddresses(mInterfaces[0], {kNetwork + 2}, 100, stop.get_token(), used) ==
              KrResult::Code::Aborted);
}
