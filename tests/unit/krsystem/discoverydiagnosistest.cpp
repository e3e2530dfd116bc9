#include "krsystem/discoverydiagnosis.h"

#include <gmock/gmock.h>

using krsystem::AdapterReading;
using krsystem::AnsweredDevice;
using krsystem::FindCauses;
using krsystem::HostReadings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A host on which everything is as it should be.
HostReadings MakeHost() {
  HostReadings readings;
  readings.hasNetworkTransport = true;
  readings.hasUSBTransport = true;
  readings.receiveBufferLimitBytes = 33'554'432;
  readings.usbMemoryMegabytes = 1000;
  readings.adapters = {
      {.uniqueID = "lo", .name = "lo", .isLoopback = true, .addresses = {{"127.0.0.1", "255.0.0.0"}}},
      {.uniqueID = "id0", .name = "eth0", .addresses = {{"10.0.0.1", "255.255.255.0"}}},
      {.uniqueID = "id1", .name = "eth1", .addresses = {{"10.0.1.1", "255.255.255.0"}}},
  };
  readings.usbDevices = {{.uniqueID = "usb", .displayID = "USB camera", .speed = 4}};
  return readings;
}

AdapterReading& GetEth0(HostReadings& aReadings) {
  return aReadings.adapters[1];
}

krsystem::GEVFields MakeGEV(const KrString& aName, const KrString& aMAC, const KrString& aAddress) {
  krsystem::GEVFields fields;
  fields.uniqueID = aMAC;
  fields.displayID = aName;
  fields.macAddress = aMAC;
  fields.ipAddress = aAddress;
  fields.subnetMask = "255.255.0.0";
  return fields;
}

constexpr const char* kMAC = "02:00:00:00:00:01";
constexpr const char* kOtherMAC = "02:00:00:00:00:02";

krsystem::GEVFields MakeForeign(const KrString& aAddress) {
  krsystem::GEVFields fields = MakeGEV("Camera", kMAC, aAddress);
  fields.configurationValid = false;
  return fields;
}

krsystem::U3VFields MakeU3V(std::int32_t aSpeed) {
  krsystem::U3VFields fields;
  fields.uniqueID = "usb";
  fields.displayID = "USB camera";
  fields.speed = aSpeed;
  fields.superSpeedSupported = true;
  return fields;
}

std::vector<KrFindingKind> ListKinds(const std::vector<KrFinding>& aFindings) {
  std::vector<KrFindingKind> kinds;
  for (const KrFinding& finding : aFindings)
    kinds.push_back(finding.kind);
  return kinds;
}

} // namespace

TEST(FindCauses, EverythingIsWell_NothingIsFound) {
  EXPECT_THAT(FindCauses(MakeHost(), {{"id0", MakeGEV("Camera", kMAC, "10.0.0.2")}, {"usb/0", MakeU3V(4)}}), IsEmpty());
}

TEST(FindCauses, NothingInstalled_IsNoTransport) {
  EXPECT_THAT(
      FindCauses({}, {}),
      ElementsAre(KrFinding{KrFindingKind::NoTransport, "", "The program installed nothing that could find a device.",
                            "Its developer calls KrInstallTransports before devices are looked for."}));
}

TEST(FindCauses, AdapterIsSwitchedOff_IsAdapterDownAlone) {
  HostReadings host = MakeHost();
  GetEth0(host) = {.uniqueID = "id0",
                   .name = "eth0",
                   .isUp = false,
                   .hasCarrier = false,
                   .addresses = {{"10.0.1.9", "255.255.255.0"}},
                   .reversePathFilter = 1};

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::AdapterDown, "eth0", "The network adapter eth0 is switched off.",
                                    "Switch it on if a camera is connected to it.\nsudo ip link set eth0 up"}));
}

TEST(FindCauses, AdapterWithoutLink_IsNoCarrierAlone) {
  HostReadings host = MakeHost();
  GetEth0(host).hasCarrier = false;
  GetEth0(host).addresses.clear();

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{
          KrFindingKind::NoCarrier, "eth0",
          "The network adapter eth0 has no link: there is no cable, or nobody at its other end.",
          "Check the cable, and that the camera has power. LOWER_UP shows that there is a link.\nip link show eth0"}));
}

TEST(FindCauses, AdapterWithoutAddress_IsNoAddress) {
  for (const std::vector<krsystem::AdapterAddress>& none :
       {std::vector<krsystem::AdapterAddress>{}, std::vector<krsystem::AdapterAddress>{{"0.0.0.0", "0.0.0.0"}}}) {
    HostReadings host = MakeHost();
    GetEth0(host).addresses = none;

    EXPECT_THAT(
        FindCauses(host, {}),
        ElementsAre(KrFinding{
            KrFindingKind::NoAddress, "eth0",
            "The network adapter eth0 has no IPv4 address, so no camera can be reached behind it.",
            "Give it one in the subnet of the camera, in the system's network settings or until the next start; a "
            "camera that was never given an address mostly has one of 169.254.0.0/16.\n"
            "sudo ip address add 169.254.1.1/16 dev eth0"}));
  }
}

TEST(FindCauses, LoopbackInAnyState_IsNotTalkedOf) {
  HostReadings host = MakeHost();
  host.adapters[0] = {.uniqueID = "lo", .name = "lo", .isLoopback = true, .addresses = {}, .reversePathFilter = 1};
  host.adapters.push_back({.uniqueID = "lo2", .name = "lo2", .isLoopback = true, .isUp = false, .addresses = {}});

  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
}

TEST(FindCauses, DeviceOfAnotherSubnet_IsForeignSubnet) {
  EXPECT_THAT(
      FindCauses(MakeHost(), {{"id0", MakeForeign("172.16.0.5")}}),
      ElementsAre(KrFinding{KrFindingKind::ForeignSubnet, "Camera",
                            "Camera answered on eth0 with the address 172.16.0.5 (mask 255.255.0.0), which is of "
                            "another subnet than the adapter's, so it cannot be opened.",
                            "Give it a free address in the subnet of eth0 (10.0.0.1, mask 255.255.255.0), by \"Set IP "
                            "Address...\" in the device finder or by a command.\n"
                            "krtool ip 02:00:00:00:00:01 --set ADDRESS --mask 255.255.255.0"}));
}

TEST(FindCauses, DeviceWithoutAddress_IsForeignSubnetInOtherWords) {
  const std::vector<KrFinding> findings = FindCauses(MakeHost(), {{"id0", MakeForeign("0.0.0.0")}});

  ASSERT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::ForeignSubnet));
  EXPECT_EQ(findings[0].text, "Camera answered on eth0, but has no IP address, so it cannot be opened.");
}

TEST(FindCauses, DeviceBehindAnAdapterWithoutAddress_IsForeignSubnetMendedAtTheAdapter) {
  HostReadings host = MakeHost();
  GetEth0(host).addresses.clear();

  const std::vector<KrFinding> findings = FindCauses(host, {{"id0", MakeForeign("172.16.0.5")}});

  ASSERT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::ForeignSubnet, KrFindingKind::NoAddress));
  EXPECT_EQ(findings[0].text, "Camera answered on eth0 with the address 172.16.0.5 (mask 255.255.0.0), but the adapter "
                              "has none, so it cannot be opened.");
  EXPECT_EQ(findings[0].remedy,
            "Give the network adapter eth0 an address of that subnet, in the system's network settings.");
}

TEST(FindCauses, TolvanDeviceOfAnotherSubnet_IsForeignSubnet) {
  krsystem::TolvanProtocolFields fields;
  fields.uniqueID = "t";
  fields.ipAddress = "172.16.0.5";
  fields.configurationValid = false;

  const std::vector<KrFinding> findings = FindCauses(MakeHost(), {{"unknown adapter", fields}});

  ASSERT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::ForeignSubnet));
  EXPECT_EQ(findings[0].subject, "t") << "where the device has no text";
  EXPECT_EQ(findings[0].remedy, "Give it a free address in the subnet of unknown adapter, by \"Set IP Address...\" in "
                                "the device finder or by a command.\nkrtool ip DEVICE --set ADDRESS --mask MASK");
}

TEST(FindCauses, StrictReversePathFilter_IsReversePathFilter) {
  HostReadings host = MakeHost();
  GetEth0(host).reversePathFilter = 1;

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{KrFindingKind::ReversePathFilter, "eth0",
                            "The kernel drops what comes to eth0 from addresses of other subnets (strict reverse-path "
                            "filter), so a camera with such an address may not be seen.",
                            "Make the filter loose. Where the host has no default route, switch it off for the adapter "
                            "and for all.\n"
                            "sudo sysctl -w net.ipv4.conf.eth0.rp_filter=2\n"
                            "sudo sysctl -w net.ipv4.conf.all.rp_filter=0 net.ipv4.conf.eth0.rp_filter=0"}));
}

TEST(FindCauses, LooseReversePathFilter_IsWell) {
  HostReadings host = MakeHost();
  GetEth0(host).reversePathFilter = 2;

  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
}

TEST(FindCauses, ReversePathFilterOfAVLAN_IsNamedAsTheKernelHasIt) {
  HostReadings host = MakeHost();
  GetEth0(host).name = "eth0.5";
  GetEth0(host).reversePathFilter = 1;

  const std::vector<KrFinding> findings = FindCauses(host, {});

  ASSERT_EQ(findings.size(), 1u);
  EXPECT_THAT(findings[0].remedy.ToUtf8(), testing::HasSubstr("sysctl -w net.ipv4.conf.eth0/5.rp_filter=2"));
}

TEST(FindCauses, ReceiveBufferLimit_BelowTwoFrames_IsFound) {
  HostReadings host = MakeHost();
  host.receiveBufferLimitBytes = 212'992;

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::ReceiveBufferLimit, "",
                                    "A socket is given 212992 bytes for what it receives (net.core.rmem_max), and two "
                                    "frames of a usual camera take 8388608: frames will be incomplete.",
                                    "Raise the limit; a file in /etc/sysctl.d keeps it.\n"
                                    "sudo sysctl -w net.core.rmem_max=33554432"}));
  host.receiveBufferLimitBytes = 8'388'608;
  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
  host.receiveBufferLimitBytes.reset();
  EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << "nobody could read it";
}

TEST(FindCauses, USBDeviceThatMayNotBeOpened_IsUSBPermission) {
  HostReadings host = MakeHost();
  host.usbDevices[0].mayOpen = false;

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::USBPermission, "USB camera",
                                    "USB camera may not be opened: its device file may be read and written by others "
                                    "only.",
                                    "Install the udev rule that comes with the library, then plug the camera in "
                                    "again.\nsudo cp 70-krgui-usb3vision.rules /etc/udev/rules.d/\n"
                                    "sudo udevadm control --reload"}));
}

TEST(FindCauses, USBDeviceThatOnlyAnswered_CountsAsOneThatWasRead) {
  HostReadings host = MakeHost();
  host.usbDevices.clear();
  host.usbMemoryMegabytes = 16;
  krsystem::U3VFields fields = MakeU3V(3);
  fields.driverInstalled = false;

  EXPECT_THAT(ListKinds(FindCauses(host, {{"usb/0", fields}, {"usb/0", fields}})),
              ElementsAre(KrFindingKind::USBPermission, KrFindingKind::USBSpeed, KrFindingKind::USBMemory));
}

TEST(FindCauses, USBMemory_TooSmallForADevice_IsFound) {
  HostReadings host = MakeHost();
  host.usbMemoryMegabytes = 16;

  EXPECT_THAT(FindCauses(host, {}),
              ElementsAre(KrFinding{KrFindingKind::USBMemory, "",
                                    "All USB transfers together are given 16 MB of memory (usbfs_memory_mb), and large "
                                    "frames take 128: such a stream will not start.",
                                    "Raise the limit; usbcore.usbfs_memory_mb=1000 on the kernel's command line keeps "
                                    "it.\necho 1000 | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb"}));
}

TEST(FindCauses, USBMemory_EnoughOrWithoutLimitOrNotNeeded_IsWell) {
  HostReadings host = MakeHost();
  for (const std::uint64_t megabytes : {128, 0}) {
    host.usbMemoryMegabytes = megabytes;
    EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << megabytes;
  }
  host.usbMemoryMegabytes = 16;
  host.usbDevices.clear();

  EXPECT_THAT(FindCauses(host, {}), IsEmpty());
}

TEST(FindCauses, USBDeviceOnASlowPort_IsUSBSpeed) {
  HostReadings host = MakeHost();
  host.usbDevices[0].speed = 3;

  EXPECT_THAT(FindCauses(host, {{"usb/0", MakeU3V(3)}}),
              ElementsAre(KrFinding{KrFindingKind::USBSpeed, "USB camera",
                                    "USB camera is connected at High Speed (480 Mbit/s), and cameras need Super Speed.",
                                    "Connect it to a USB 3.0 (SuperSpeed) port, with a cable for USB 3.0 and without a "
                                    "slower hub in between."}));
}

TEST(FindCauses, USBSpeed_UnknownOrAllThatTheDeviceCan_IsWell) {
  HostReadings host = MakeHost();
  for (const std::int32_t speed : {-1, 0, 4, 5}) {
    host.usbDevices[0].speed = speed;
    EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << speed;
  }
  host.usbDevices[0].speed = 3;
  krsystem::U3VFields fields = MakeU3V(3);
  fields.superSpeedSupported = false;

  EXPECT_THAT(FindCauses(host, {{"usb/0", fields}}), IsEmpty());
}

TEST(FindCauses, TwoDevicesWithOneAddress_IsAddressConflict) {
  EXPECT_THAT(FindCauses(MakeHost(), {{"id0", MakeGEV("First", kMAC, "10.0.0.2")},
                                      {"id0", MakeGEV("Second", kOtherMAC, "10.0.0.2")}}),
              ElementsAre(KrFinding{KrFindingKind::AddressConflict, "Second",
                                    "Second (02:00:00:00:00:02) and First (02:00:00:00:00:01) on eth0 have one "
                                    "address, 10.0.0.2.",
                                    "Give it another address, by \"Set IP Address...\" in the device finder or by a "
                                    "command.\nkrtool ip 02:00:00:00:00:02 --set ADDRESS --mask 255.255.255.0"}));
}

TEST(FindCauses, DeviceWithAnAddressOfTheHost_IsAddressConflict) {
  const std::vector<KrFinding> findings = FindCauses(MakeHost(), {{"id0", MakeGEV("Camera", kMAC, "10.0.1.1")}});

  ASSERT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::AddressConflict));
  EXPECT_EQ(findings[0].text, "Camera on eth0 has the address 10.0.1.1, which is this host's own on eth1.");
}

TEST(FindCauses, AddressesThatAreNoConflict_AreWell) {
  const HostReadings host = MakeHost();

  EXPECT_THAT(FindCauses(host, {{"id0", MakeGEV("A", kMAC, "0.0.0.0")}, {"id0", MakeGEV("B", kOtherMAC, "0.0.0.0")}}),
              IsEmpty())
      << "none has an address";
  EXPECT_THAT(FindCauses(host, {{"id0", MakeGEV("A", kMAC, "10.0.0.2")}, {"id1", MakeGEV("B", kOtherMAC, "10.0.0.2")}}),
              IsEmpty())
      << "in two networks";
  EXPECT_THAT(FindCauses(host, {{"lo", MakeGEV("A", kMAC, "127.0.0.1")}}), IsEmpty()) << "a program of the host";
  EXPECT_THAT(FindCauses(host, {{"id0", MakeGEV("A", "", "10.0.0.1")}}), IsEmpty()) << "a program of the host";
}

TEST(FindCauses, TwoDevicesWithOneMACAddress_IsSharedMAC) {
  const std::vector<AnsweredDevice> answered = {{"id0", MakeGEV("First", kMAC, "10.0.0.2")},
                                                {"id0", MakeGEV("Second", kMAC, "10.0.0.3")},
                                                {"id1", MakeGEV("Third", kMAC, "10.0.1.3")}};

  EXPECT_THAT(
      FindCauses(MakeHost(), answered),
      ElementsAre(KrFinding{KrFindingKind::SharedMAC, "Second",
                            "First on eth0 and Second on eth0 state one MAC address, 02:00:00:00:00:01, so they cannot "
                            "be told apart.",
                            "Connect only one of them to this host, and ask its maker: no two devices may have one MAC "
                            "address."}));
}

TEST(FindCauses, DevicesWithOneMACAddressOnTwoAdapters_AreSharedMACOnlyWhereTheyAreTwo) {
  EXPECT_THAT(ListKinds(FindCauses(MakeHost(), {{"id0", MakeGEV("First", kMAC, "10.0.0.2")},
                                                {"id1", MakeGEV("Second", kMAC, "10.0.1.2")}})),
              ElementsAre(KrFindingKind::SharedMAC));
  EXPECT_THAT(FindCauses(MakeHost(),
                         {{"id0", MakeGEV("Camera", kMAC, "10.0.0.2")}, {"id1", MakeGEV("Camera", kMAC, "10.0.0.2")}}),
              IsEmpty())
      << "one that both adapters reach";
  EXPECT_THAT(FindCauses(MakeHost(), {{"id0", MakeGEV("A", "00:00:00:00:00:00", "10.0.0.2")},
                                      {"id0", MakeGEV("B", "00:00:00:00:00:00", "10.0.0.3")}}),
              IsEmpty())
      << "none is stated";
}

TEST(FindCauses, TwoAdaptersInOneSubnet_IsSubnetNotUnique) {
  HostReadings host = MakeHost();
  host.adapters[2].addresses = {{"10.0.2.1", "255.255.255.0"}, {"10.0.0.77", "255.255.255.128"}};

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{KrFindingKind::SubnetNotUnique, "eth1",
                            "The network adapter eth1 has the address 10.0.0.77 (mask 255.255.255.128), which lies in "
                            "one subnet with eth0: the kernel sends by one of them only, and cameras behind the other "
                            "one cannot be reached.",
                            "Give one of the two, and the cameras behind it, addresses of another subnet, in the "
                            "system's network settings or until the next start.\n"
                            "sudo ip address del 10.0.0.77/25 dev eth1\n"
                            "sudo ip address add ADDRESS/PREFIX dev eth1"}));
}

TEST(FindCauses, ManyAdaptersInOneSubnet_AreToldOfOnceEach) {
  HostReadings host = MakeHost();
  host.adapters.clear();
  for (int i = 0; i < 4; ++i) {
    const KrString name = "eth" + KrString(std::to_string(i));
    host.adapters.push_back({.uniqueID = name, .name = name, .addresses = {{"169.254.1.1", "255.255.0.0"}}});
  }
  host.adapters[3].isUp = false;

  EXPECT_THAT(ListKinds(FindCauses(host, {})),
              ElementsAre(KrFindingKind::AdapterDown, KrFindingKind::SubnetNotUnique, KrFindingKind::SubnetNotUnique));
}

TEST(FindCauses, AdapterThatTwoTransportsRead_IsToldOfOnce) {
  HostReadings host = MakeHost();
  GetEth0(host).reversePathFilter = 1;
  host.adapters.push_back(GetEth0(host));

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::ReversePathFilter));
}

TEST(FindCauses, NamesThatAShellMightObey_AreInNoCommand) {
  for (const char* name : {"eth0;reboot", "$(reboot)", "`reboot`", "-delete", "a b", "a'b", "a\nb", "a|b", "ä"}) {
    HostReadings host = MakeHost();
    GetEth0(host).name = name;
    GetEth0(host).isUp = false;

    const std::vector<KrFinding> findings = FindCauses(host, {});

    ASSERT_EQ(findings.size(), 1u) << name;
    EXPECT_EQ(findings[0].subject, name);
    EXPECT_EQ(findings[0].remedy, "Switch it on if a camera is connected to it.") << name;
  }
}

TEST(FindCauses, ForeignTexts_AreTakenAsTheyAreAndIntoNoCommand) {
  krsystem::GEVFields fields = MakeForeign("172.16.0.5");
  fields.displayID = "<b>%s</b> \xF0\x9F\x93\xB7";
  fields.macAddress = "; reboot";

  const std::vector<KrFinding> findings = FindCauses(MakeHost(), {{"id0", fields}});

  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].subject, "<b>%s</b> \xF0\x9F\x93\xB7");
  EXPECT_THAT(findings[0].text.ToUtf8(), testing::StartsWith("<b>%s</b> \xF0\x9F\x93\xB7 answered on eth0"));
  EXPECT_THAT(findings[0].remedy.ToUtf8(), testing::HasSubstr("\nkrtool ip DEVICE --set"));
}

TEST(FindCauses, EverythingIsWrong_TheGravestComesFirst) {
  HostReadings host;
  host.hasNetworkTransport = true;
  host.receiveBufferLimitBytes = 1;
  host.usbMemoryMegabytes = 1;
  host.usbDevices = {{.uniqueID = "usb", .displayID = "USB camera", .mayOpen = false, .speed = 3}};
  host.adapters = {
      {.uniqueID = "down", .name = "down", .isUp = false, .addresses = {}},
      {.uniqueID = "loose", .name = "loose", .hasCarrier = false, .addresses = {}},
      {.uniqueID = "bare", .name = "bare", .addresses = {}, .reversePathFilter = 1},
      {.uniqueID = "id0", .name = "eth0", .addresses = {{"10.0.0.1", "255.255.255.0"}}},
      {.uniqueID = "id1", .name = "eth1", .addresses = {{"10.0.0.3", "255.255.255.0"}}},
  };
  const std::vector<AnsweredDevice> answered = {{"id0", MakeForeign("172.16.0.5")},
                                                {"id0", MakeGEV("Own", kOtherMAC, "10.0.0.3")},
                                                {"id0", MakeGEV("Copy", kOtherMAC, "10.0.0.4")}};

  EXPECT_THAT(ListKinds(FindCauses(host, answered)),
              ElementsAre(KrFindingKind::USBPermission, KrFindingKind::AddressConflict, KrFindingKind::SharedMAC,
                          KrFindingKind::ForeignSubnet, KrFindingKind::USBSpeed, KrFindingKind::NoAddress,
                          KrFindingKind::AdapterDown, KrFindingKind::NoCarrier, KrFindingKind::SubnetNotUnique,
                          KrFindingKind::ReversePathFilter, KrFindingKind::ReceiveBufferLimit,
                          KrFindingKind::USBMemory));
}
