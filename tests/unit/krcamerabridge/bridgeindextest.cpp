// The index of the bridges that were saved.

#include "saved/bridgeindex.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace krcamerabridge {

TEST(CameraBridgeIndex, Ports_AreTheValuesInTheirOrder) {
  const std::array ports = {KrDeviceSerial::Serial0, KrDeviceSerial::Bulk7};

  std::vector<std::string> values;
  for (const KrProperty& property : MakeBridgeIndex(ports))
    values.push_back(property.GetValue().ToUtf8());

  EXPECT_THAT(values, testing::ElementsAre("Serial0", "Bulk7"));
  EXPECT_STREQ(kBridgeIndex, "CameraBridgeIndex");
}

TEST(CameraBridgeIndex, NoPorts_AreAnEmptyList) {
  EXPECT_TRUE(MakeBridgeIndex({}).IsEmpty());
}

TEST(CameraBridgeIndex, MissingPort_IsNamed) {
  EXPECT_STREQ(FormatMissingPort("Bulk3").CStr(),
               "Could not load camera bridge for port Bulk3 as the serial port does not exist for the device.");
}

} // namespace krcamerabridge
