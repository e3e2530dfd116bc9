#include "usb3vision/usbfields.h"

#include "usb3vision/usbidentity.h"
#include "usbtesttree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace krtransport;
using testing::ElementsAre;

const std::vector<std::string> kTexts = {"F05500A01234", "Example Optics GmbH", "EO-2048M", "EO",
                                         "1.4.2",        "made for tests",      "A0001234", "top left"};
const KrResult kDenied(KrResult::Code::AccessDenied, "denied");

UsbDevice GetDevice(const char* aTree, const std::string& aPort) {
  const UsbTestTree tree(aTree);
  for (const UsbDevice& device : ReadUsbDevices(tree.GetRoots()))
    if (device.port == aPort)
      return device;
  throw std::runtime_error("There is no device at " + aPort);
}

TEST(UsbFields, Camera_WithPermission_TellsWhatItSaysOfItself) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("superspeed", "2-1"), "id", {}, kTexts);

  EXPECT_EQ(fields.uniqueID, KrString("id"));
  EXPECT_EQ(fields.displayID, KrString("EO-2048M (A0001234)"));
  EXPECT_EQ(fields.deviceGUID, KrString("F05500A01234"));
  EXPECT_EQ(fields.vendorName, KrString("Example Optics GmbH"));
  EXPECT_EQ(fields.modelName, KrString("EO-2048M"));
  EXPECT_EQ(fields.familyName, KrString("EO"));
  EXPECT_EQ(fields.version, KrString("1.4.2"));
  EXPECT_EQ(fields.manufacturerInfo, KrString("made for tests"));
  EXPECT_EQ(fields.serialNumber, KrString("A0001234"));
  EXPECT_EQ(fields.u3vSerialNumber, KrString("A0001234"));
  EXPECT_EQ(fields.userDefinedName, KrString("top left"));
  EXPECT_EQ(fields.genCPVersion, 0x00010001u);
  EXPECT_EQ(fields.u3vVersion, 0x00010002u);
  EXPECT_TRUE(fields.driverInstalled);
  EXPECT_TRUE(fields.configurationValid);
}

TEST(UsbFields, Camera_AtSuperSpeed_TellsSpeedAndPower) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("superspeed", "2-1"), "id", {}, kTexts);

  EXPECT_EQ(fields.speed, 4);
  EXPECT_EQ(fields.speedMessage, KrString("Super Speed (5 Gbit/s)"));
  EXPECT_FALSE(fields.lowSpeedSupported);
  EXPECT_FALSE(fields.fullSpeedSupported);
  EXPECT_TRUE(fields.highSpeedSupported);
  EXPECT_TRUE(fields.superSpeedSupported);
  EXPECT_TRUE(fields.currentSpeedSupported);
  EXPECT_EQ(fields.maxPowerMilliampere, 896u);
  EXPECT_EQ(fields.powerMessage, KrString("Configured, 896 mA"));
  EXPECT_TRUE(fields.initializedCapabilities);
}

TEST(UsbFields, Camera_WithoutPermission_TellsWhatTheKernelKnows) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("superspeed", "2-1"), "id", kDenied, {});

  EXPECT_FALSE(fields.driverInstalled);
  EXPECT_EQ(fields.displayID, KrString("EO-2048 (A0001234)"));
  EXPECT_EQ(fields.deviceGUID, KrString("(F0550301-A0001234, derived)"));
  EXPECT_EQ(fields.vendorName, KrString("Example Optics"));
  EXPECT_EQ(fields.modelName, KrString("EO-2048"));
  EXPECT_EQ(fields.version, KrString("1.04"));
  EXPECT_EQ(fields.serialNumber, KrString("A0001234"));
  EXPECT_EQ(fields.u3vSerialNumber, KrString(""));
  EXPECT_EQ(fields.u3vVersion, 0x00010002u);
  EXPECT_TRUE(fields.initializedCapabilities);
}

TEST(UsbFields, Camera_AtHighSpeed_IsSlowButSupported) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("highspeed", "1-1"), "id", {}, kTexts);

  EXPECT_EQ(fields.speed, 3);
  EXPECT_EQ(fields.speedMessage, KrString("High Speed (480 Mbit/s)"));
  EXPECT_TRUE(fields.currentSpeedSupported);
  EXPECT_EQ(fields.powerMessage, KrString("Configured, 500 mA"));
}

TEST(UsbFields, Camera_AtASpeedThatItDoesNotName_IsNotSupported) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("highspeed", "1-2"), "id", {}, kTexts);

  EXPECT_EQ(fields.speed, 3);
  EXPECT_FALSE(fields.highSpeedSupported);
  EXPECT_FALSE(fields.currentSpeedSupported);
}

TEST(UsbFields, Camera_PowerMissingInTheKernelsFiles_ComesFromTheDescriptor) {
  UsbDevice superSpeed = GetDevice("superspeed", "2-1");
  UsbDevice highSpeed = GetDevice("highspeed", "1-1");
  superSpeed.maxPowerMilliampere = 0;
  highSpeed.maxPowerMilliampere = 0;

  EXPECT_EQ(MakeCameraFields(superSpeed, "id", {}, {}).maxPowerMilliampere, 112u * 8u);
  EXPECT_EQ(MakeCameraFields(highSpeed, "id", {}, {}).maxPowerMilliampere, 250u * 2u);
}

TEST(UsbFields, Camera_WithoutUsableDescriptors_SaysThatCapabilitiesAreMissing) {
  const krsystem::U3VFields fields = MakeCameraFields(GetDevice("garbage", "2-3"), "id", {}, {});

  EXPECT_FALSE(fields.initializedCapabilities);
  EXPECT_EQ(fields.powerMessage, KrString("Configured; the device does not describe its capabilities"));
  EXPECT_EQ(fields.displayID, KrString("USB3 Vision device (port 2-3)"));
  EXPECT_EQ(fields.speedMessage, KrString("Unknown speed"));
  EXPECT_EQ(fields.deviceGUID, KrString("(00000000, derived)"));
}

TEST(UsbFields, Kinds_CamerasAreToldFromUnusedOnesAndOtherDevices) {
  EXPECT_EQ(GetUsbKind(GetDevice("hubs", "2-2.4")), UsbKind::Camera);
  EXPECT_EQ(GetUsbKind(GetDevice("hubs", "1-4.1")), UsbKind::Unused);
  EXPECT_EQ(GetUsbKind(GetDevice("hubs", "1-5")), UsbKind::Unused);
  EXPECT_EQ(GetUsbKind(GetDevice("hubs", "1-3")), UsbKind::Other);
  EXPECT_EQ(GetUsbKind(GetDevice("hubs", "2-2")), UsbKind::Other);
}

TEST(UsbFields, Unused_BehindAHubWithoutSupply_LacksPower) {
  const UsbDevice hub = GetDevice("hubs", "1-4");

  const krsystem::USBFields fields = MakeUnusedFields(GetDevice("hubs", "1-4.1"), "id", &hub);

  EXPECT_EQ(fields.status, 4);
  EXPECT_EQ(fields.displayID, KrString("EO-2048 (A0001237)"));
  EXPECT_FALSE(fields.configurationValid);
}

TEST(UsbFields, Unused_ForAnyOtherReason_IsAGeneralFailure) {
  const UsbDevice supplied = GetDevice("hubs", "2-2");

  EXPECT_EQ(MakeUnusedFields(GetDevice("hubs", "1-4.1"), "id", &supplied).status, 2);
  EXPECT_EQ(MakeUnusedFields(GetDevice("hubs", "1-5"), "id", nullptr).status, 2);
}

TEST(UsbFields, Controller_TellsNumbersSpeedAndName) {
  const UsbTestTree tree("superspeed");

  const auto fields = MakeControllerFields(ReadUsbControllers(tree.GetRoots()).at(0));

  EXPECT_EQ(fields.uniqueID, KrString("usb/0000:00:14.0"));
  EXPECT_EQ(fields.displayID, KrString("xHCI Host Controller (0000:00:14.0)"));
  EXPECT_EQ(fields.vendorID, 0x1b36);
  EXPECT_EQ(fields.subsystemID, 0x11001af4u);
  EXPECT_EQ(fields.revision, 1);
  EXPECT_EQ(fields.speed, 4);
}

TEST(UsbIdentity, UniqueIDs_OfTwins_AreToldApartByPort) {
  const UsbTestTree twins("twins");
  const UsbTestTree single("superspeed");

  EXPECT_THAT(MakeUniqueIDs(ReadUsbDevices(twins.GetRoots())),
              ElementsAre("f055:0301:A0001234@2-1", "f055:0301:A0001234@2-2"));
  EXPECT_THAT(MakeUniqueIDs(ReadUsbDevices(single.GetRoots())), ElementsAre("f055:0301:A0001234"));
}

TEST(UsbIdentity, UniqueID_WithoutSerialNumber_NamesThePort) {
  UsbDevice device = GetDevice("superspeed", "2-1");
  device.serial.clear();

  EXPECT_THAT(MakeUniqueIDs(std::vector{device}), ElementsAre("f055:0301:@2-1"));
}

TEST(UsbIdentity, Find_AfterATwinLeft_StillKnowsTheID) {
  const UsbTestTree tree("superspeed");
  const auto devices = ReadUsbDevices(tree.GetRoots());

  EXPECT_EQ(FindByUniqueID(devices, "f055:0301:A0001234@2-1"), &devices[0]);
  EXPECT_EQ(FindByUniqueID(devices, "f055:0301:A0001234"), &devices[0]);
  EXPECT_EQ(FindByUniqueID(devices, "f055:0301:A0001235"), nullptr);
}

TEST(UsbIdentity, Find_OneOfTwinsByNumbersAlone_IsNone) {
  const UsbTestTree tree("twins");

  EXPECT_EQ(FindByUniqueID(ReadUsbDevices(tree.GetRoots()), "f055:0301:A0001234"), nullptr);
}

TEST(UsbIdentity, SameDevice_IsKnownByItsSerialNumberOrElseItsPort) {
  const UsbDevice known = GetDevice("superspeed", "2-1");
  UsbDevice moved = known;
  moved.port = "2-3";
  UsbDevice unnumbered = known;
  unnumbered.serial.clear();
  UsbDevice unnumberedElsewhere = unnumbered;
  unnumberedElsewhere.port = "2-3";

  EXPECT_TRUE(IsSameDevice(known, moved));
  EXPECT_FALSE(IsSameDevice(known, unnumbered));
  EXPECT_TRUE(IsSameDevice(unnumbered, unnumbered));
  EXPECT_FALSE(IsSameDevice(unnumbered, unnumberedElsewhere));
}

} // namespace
