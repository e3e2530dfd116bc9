#include "krsystem/krinterface.h"

#include <gmock/gmock.h>

TEST(KrNetworkAdapter, Construction_WithoutAddress_ReportsOneOfZeros) {
  krsystem::NetworkAdapterFields fields;
  fields.addresses.clear();

  const KrNetworkAdapter adapter(fields);

  ASSERT_EQ(adapter.GetIPAddressCount(), 1u);
  EXPECT_EQ(adapter.GetIPAddress(0), "0.0.0.0");
  EXPECT_EQ(adapter.GetSubnetMask(0), "0.0.0.0");
}

TEST(KrNetworkAdapter, GetIPAddress_BeyondCount_IsZeros) {
  krsystem::NetworkAdapterFields fields;
  fields.addresses = {{"10.0.0.1", "255.0.0.0"}, {"10.1.0.1", "255.255.0.0"}};

  const KrNetworkAdapter adapter(fields);

  EXPECT_EQ(adapter.GetIPAddress(1), "10.1.0.1");
  EXPECT_EQ(adapter.GetSubnetMask(1), "255.255.0.0");
  EXPECT_EQ(adapter.GetIPAddress(2), "0.0.0.0");
  EXPECT_EQ(adapter.GetSubnetMask(2), "0.0.0.0");
}

TEST(KrInterface, GetDeviceInfo_WithoutDevices_IsNull) {
  const KrUSBHostController controller({.uniqueID = "usb1", .displayID = "Controller"});

  EXPECT_EQ(controller.GetDeviceCount(), 0u);
  EXPECT_EQ(controller.GetDeviceInfo(0), nullptr);
  EXPECT_EQ(controller.GetUniqueID(), "usb1");
  EXPECT_EQ(controller.GetDisplayID(), "Controller");
}
