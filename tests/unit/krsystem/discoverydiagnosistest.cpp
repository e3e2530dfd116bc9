#include "diagnosisreadings.h"

#include <fstream>
#include <string>

using krsystem::AnsweredDevice;
using krsystem::FindCauses;
using krsystem::HostReadings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The line that counts of the rule that is installed.
std::string ReadInstalledRule() {
  std::ifstream file(KR_USB_RULE_FILE);
  std::string line;
  while (std::getline(file, line) && line.starts_with('#')) {
  }
  EXPECT_FALSE(line.empty()) << KR_USB_RULE_FILE;
  return line;
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

TEST(FindCauses, NobodyAnswersOnAHostThatIsWell_IsNoAnswer) {
  HostReadings host = MakeHost();
  host.usbDevices.clear();

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{
          KrFindingKind::NoAnswer, "", "No device answered.",
          "Check that the camera has power and has ended its start. On the network: check that its cable is plugged in "
          "at both ends with the lamps lit, that no router lies between it and this computer, and that no firewall or "
          "switch drops UDP port 3956. On USB: check that its cable is one for USB 3.0 and plugged in at both ends, "
          "and "
          "try another port without a hub."}));
}

TEST(FindCauses, NoAnswer_SpeaksOfTheConnectionsThatAreLookedOn) {
  const auto getRemedy = [](const HostReadings& aHost) {
    const std::vector<KrFinding> findings = FindCauses(aHost, {});
    EXPECT_THAT(ListKinds(findings), ElementsAre(KrFindingKind::NoAnswer));
    return findings.empty() ? std::string() : findings[0].remedy.ToUtf8();
  };
  HostReadings network = MakeHost();
  network.usbDevices.clear();
  network.hasUSBTransport = false;
  HostReadings usb;
  usb.hasUSBTransport = true;
  HostReadings other;
  other.hasOtherTransport = true;

  EXPECT_THAT(getRemedy(network), testing::Not(testing::HasSubstr("USB")));
  EXPECT_THAT(getRemedy(usb), testing::Not(testing::HasSubstr("network")));
  EXPECT_EQ(getRemedy(other), "Check that the camera has power and has ended its start.");
}

TEST(FindCauses, NobodyAnswersAndFramesWouldBeSpoiled_IsNoAnswerBesidesAsTheLast) {
  HostReadings host = MakeHost();
  host.usbDevices.clear();
  host.receiveBufferLimitBytes = 1;

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::ReceiveBufferLimit, KrFindingKind::NoAnswer));
}

TEST(FindCauses, NobodyAnswersForAReasonThatIsFound_IsThatAlone) {
  HostReadings host = MakeHost();
  host.usbDevices.clear();
  GetEth0(host).isUp = false;

  EXPECT_THAT(ListKinds(FindCauses(host, {})), ElementsAre(KrFindingKind::AdapterDown));
}

TEST(FindCauses, AnyDeviceThatAnsweredOrIsOnTheBus_IsNoNoAnswer) {
  HostReadings host = MakeHost();
  EXPECT_THAT(FindCauses(host, {}), IsEmpty()) << "on the bus";
  host.usbDevices.clear();

  EXPECT_THAT(FindCauses(host, {{"id0", MakeGEV("Camera", kMAC, "10.0.0.2")}}), IsEmpty()) << "answered";
}

TEST(FindCauses, DeviceOfAnotherSubnet_IsForeignSubnet) {
  EXPECT_THAT(
      FindCauses(MakeHost(), {{"id0", MakeForeign("172.16.0.5")}}),
      ElementsAre(KrFinding{KrFindingKind::ForeignSubnet, "Camera",
                            "Camera answered on eth0 with the address 172.16.0.5 (mask 255.255.0.0), which is of "
                            "another subnet than the adapter's, so it cannot be opened.",
                            "Give it a free address in the subnet of eth0 (10.0.0.1, mask 255.255.255.0), by \"Set IP "
                            "Address...\" in the device finder or by a command.\n"
                            "krtool ip 02:00:00:00:00:01 --set auto"}));
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

TEST(FindCauses, DeviceThatAnotherAdapterReaches_IsNoForeignSubnet) {
  krsystem::GEVFields other = MakeForeign("10.0.1.7");
  other.macAddress = kOtherMAC;
  krsystem::GEVFields twin = MakeForeign("172.16.0.5");
  const std::vector<AnsweredDevice> same = {{"id0", MakeForeign("10.0.1.2")},
                                            {"id1", MakeGEV("Camera", kMAC, "10.0.1.2")}};

  EXPECT_THAT(FindCauses(MakeHost(), same), IsEmpty());
  EXPECT_THAT(ListKinds(FindCauses(MakeHost(), {same[0], {"id1", other}})),
              ElementsAre(KrFindingKind::ForeignSubnet, KrFindingKind::ForeignSubnet))
      << "nobody reaches them";
  EXPECT_THAT(ListKinds(FindCauses(MakeHost(), {{"id0", twin}, same[1]})),
              ElementsAre(KrFindingKind::SharedMAC, KrFindingKind::ForeignSubnet))
      << "another device with its MAC address";
}

TEST(FindCauses, AdapterWhoseUniqueIDChanged_IsKnownByItsName) {
  const std::vector<KrFinding> findings = FindCauses(
      MakeHost(), {{"former id", MakeForeign("172.16.0.5"), "eth0"}, {"gone id", MakeForeign("0.0.0.0"), "eth7"}});

  ASSERT_EQ(findings.size(), 2u);
  EXPECT_THAT(findings[0].remedy.ToUtf8(),
              testing::StartsWith("Give it a free address in the subnet of eth0 (10.0.0.1, mask 255.255.255.0), by"));
  EXPECT_EQ(findings[1].text, "Camera answered on eth7, but has no IP address, so it cannot be opened.");
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

TEST(FindCauses, USBDeviceThatMayNotBeOpened_IsUSBPermission) {
  HostReadings host = MakeHost();
  host.usbDevices[0].mayOpen = false;

  EXPECT_THAT(
      FindCauses(host, {}),
      ElementsAre(KrFinding{KrFindingKind::USBPermission, "USB camera",
                            "USB camera may not be opened: its device file may be read and written by others "
                            "only.",
                            "Add the udev rule for USB3 Vision cameras, then plug the camera in again.\necho '" +
                                ReadInstalledRule() +
                                "' | sudo tee /etc/udev/rules.d/70-krgui-usb3vision.rules\n"
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

  EXPECT_THAT(FindCauses(host, {{"id0", MakeGEV("Camera", kMAC, "10.0.0.2")}}), IsEmpty()) << "no USB device";
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
                                    "command.\nkrtool ip 02:00:00:00:00:02 --set auto"}));
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
