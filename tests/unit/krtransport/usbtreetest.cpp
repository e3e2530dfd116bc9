#include "usb3vision/usbtree.h"

#include "usb3vision/usbspeed.h"
#include "usbtesttree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace krtransport;
using testing::ElementsAre;

TEST(UsbTree, Controllers_OfPci_HaveItsNumbersAndBothBuses) {
  const UsbTestTree tree("superspeed");

  const auto controllers = ReadUsbControllers(tree.GetRoots());

  ASSERT_EQ(controllers.size(), 1u);
  EXPECT_EQ(controllers[0].key, "0000:00:14.0");
  EXPECT_EQ(controllers[0].product, "xHCI Host Controller");
  EXPECT_EQ(controllers[0].vendorID, 0x1b36);
  EXPECT_EQ(controllers[0].deviceID, 0x000d);
  EXPECT_EQ(controllers[0].subsystemVendorID, 0x1af4);
  EXPECT_EQ(controllers[0].subsystemDeviceID, 0x1100);
  EXPECT_EQ(controllers[0].revision, 1);
  EXPECT_EQ(controllers[0].speedKbit, 5000000u);
  EXPECT_THAT(controllers[0].buses, ElementsAre(1u, 2u));
}

TEST(UsbTree, Controllers_OfThePlatform_AreNamedAfterWhatStaysTheSame) {
  const UsbTestTree tree("platform");

  const auto controllers = ReadUsbControllers(tree.GetRoots());

  ASSERT_EQ(controllers.size(), 1u);
  EXPECT_EQ(controllers[0].key, "fe800000.usb");
  EXPECT_EQ(controllers[0].vendorID, 0);
  EXPECT_EQ(controllers[0].revision, 0);
}

TEST(UsbTree, HostWithoutUsb_HasNeitherControllersNorDevices) {
  const UsbTestTree tree("");

  EXPECT_TRUE(ReadUsbControllers(tree.GetRoots()).empty());
  EXPECT_TRUE(ReadUsbDevices(tree.GetRoots()).empty());
}

TEST(UsbTree, Devices_Camera_HasAllThatTheKernelSays) {
  const UsbTestTree tree("superspeed");

  const auto devices = ReadUsbDevices(tree.GetRoots());

  ASSERT_EQ(devices.size(), 1u);
  const UsbDevice& camera = devices[0];
  EXPECT_EQ(camera.port, "2-1");
  EXPECT_EQ(camera.bus, 2u);
  EXPECT_EQ(camera.address, 5u);
  EXPECT_EQ(camera.vendorID, 0xF055);
  EXPECT_EQ(camera.productID, 0x0301);
  EXPECT_EQ(camera.manufacturer, "Example Optics");
  EXPECT_EQ(camera.product, "EO-2048");
  EXPECT_EQ(camera.serial, "A0001234");
  EXPECT_EQ(camera.version, "3.20");
  EXPECT_EQ(camera.speedKbit, 5000000u);
  EXPECT_EQ(camera.maxPowerMilliampere, 896u);
  EXPECT_EQ(camera.configuration, 1u);
  EXPECT_EQ(camera.attributes, 0x80u);
  EXPECT_TRUE(camera.isAuthorized);
  ASSERT_EQ(camera.interfaces.size(), 3u);
  EXPECT_EQ(camera.interfaces[0].usbClass, kControlInterface);
  EXPECT_EQ(camera.interfaces[1].usbClass, kEventInterface);
  EXPECT_EQ(camera.interfaces[2].usbClass, kStreamInterface);
  EXPECT_EQ(camera.interfaces[0].driver, "");
  EXPECT_TRUE(camera.descriptors.has_value());
}

TEST(UsbTree, Devices_ClaimedCamera_NamesTheDriver) {
  const UsbTestTree tree("platform");

  const auto devices = ReadUsbDevices(tree.GetRoots());

  ASSERT_EQ(devices.size(), 1u);
  EXPECT_EQ(devices[0].interfaces.at(0).driver, "usbfs");
}

TEST(UsbTree, Devices_BehindHubs_HaveTheirOwnInterfacesAndParent) {
  const UsbTestTree tree("hubs");

  const auto devices = ReadUsbDevices(tree.GetRoots());

  std::vector<std::string> ports;
  for (const UsbDevice& device : devices)
    ports.push_back(device.port);
  ASSERT_THAT(ports, ElementsAre("1-3", "1-4", "1-4.1", "1-5", "2-2", "2-2.4"));
  EXPECT_EQ(devices[4].interfaces.size(), 1u);
  EXPECT_EQ(devices[5].interfaces.size(), 3u);
  EXPECT_EQ(GetParentPort("2-2.4"), "2-2");
  EXPECT_EQ(GetParentPort("2-2.4.1"), "2-2.4");
  EXPECT_EQ(GetParentPort("2-2"), "");
  EXPECT_EQ(devices[2].configuration, 0u);
  EXPECT_FALSE(devices[2].attributes.has_value());
  EXPECT_FALSE(devices[3].isAuthorized);
}

TEST(UsbTree, Devices_AttributesWithoutSense_CountAsMissing) {
  const UsbTestTree tree("garbage");

  const auto devices = ReadUsbDevices(tree.GetRoots());

  // Of the four, two have no address and so cannot be reached.
  ASSERT_EQ(devices.size(), 2u);
  EXPECT_EQ(devices[0].port, "2-1");
  EXPECT_EQ(devices[0].vendorID, 0);
  EXPECT_EQ(devices[0].productID, 0);
  EXPECT_EQ(devices[0].speedKbit, 0u);
  EXPECT_EQ(devices[0].maxPowerMilliampere, 0u);
  EXPECT_EQ(devices[0].serial, "");
  EXPECT_TRUE(devices[0].product.starts_with("EO\xEF\xBF\xBD\xEF\xBF\xBD[31m"));
  EXPECT_LE(devices[0].product.size(), 384u);
  EXPECT_EQ(devices[1].port, "2-3");
  EXPECT_FALSE(devices[1].descriptors.has_value());
}

TEST(UsbTree, Address_OfADeviceThatVanishes_IsNothing) {
  UsbTestTree tree("superspeed");
  const auto before = ReadUsbAddress(tree.GetRoots(), "2-1");

  tree.Unplug("2-1");

  EXPECT_EQ(before, 5u);
  EXPECT_FALSE(ReadUsbAddress(tree.GetRoots(), "2-1").has_value());
}

TEST(UsbTree, Devices_Cancelled_ListEndsEarly) {
  const UsbTestTree tree("superspeed");
  std::stop_source stop;
  stop.request_stop();

  EXPECT_TRUE(ReadUsbDevices(tree.GetRoots(), stop.get_token()).empty());
}

TEST(UsbTree, DeviceFile_IsNamedByBusAndAddress) {
  EXPECT_EQ(GetDeviceFile({}, 2, 5), "/dev/bus/usb/002/005");
}

struct SpeedRow {
  const char* name;
  const char* sysfsText;
  std::int32_t speedClass;
  const char* description;
};

const SpeedRow kSpeeds[] = {
    {"Low", "1.5", 1, "Low Speed (1.5 Mbit/s)"},
    {"Full", "12", 2, "Full Speed (12 Mbit/s)"},
    {"High", "480", 3, "High Speed (480 Mbit/s)"},
    {"Super", "5000", 4, "Super Speed (5 Gbit/s)"},
    {"SuperPlus", "10000", 4, "Super Speed Plus (10 Gbit/s)"},
    {"TwoLanes", "20000", 4, "Super Speed Plus (20 Gbit/s)"},
    {"Unknown", "fast", 0, "Unknown speed"},
    {"Missing", "", 0, "Unknown speed"},
};

class UsbSpeed : public testing::TestWithParam<SpeedRow> {};

TEST_P(UsbSpeed, KernelText_IsClassedAndDescribed) {
  const std::uint32_t speedKbit = ParseUsbSpeed(GetParam().sysfsText);

  EXPECT_EQ(GetUsbSpeedClass(speedKbit), GetParam().speedClass);
  EXPECT_EQ(DescribeUsbSpeed(speedKbit), GetParam().description);
}

INSTANTIATE_TEST_SUITE_P(Speeds, UsbSpeed, testing::ValuesIn(kSpeeds),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace
