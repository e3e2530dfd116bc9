#include "gigevision/devicefields.h"

#include <gtest/gtest.h>

namespace {

using namespace krtransport;

krsystem::NetworkAdapterFields MakeAdapter() {
  krsystem::NetworkAdapterFields adapter;
  adapter.addresses = {{"192.168.1.10", "255.255.255.0"}};
  return adapter;
}

DiscoveryPayload MakePayload() {
  DiscoveryPayload payload;
  payload.mac = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
  payload.address = 0xC0A80114;
  payload.manufacturer = "Maker";
  payload.model = "Model";
  payload.serialNumber = "SN42";
  payload.deviceMode = 0xA0000001;
  return payload;
}

TEST(DeviceFields, DeviceWithMac_IsNamedByItAndReachable) {
  const auto fields = MakeDeviceFields(MakePayload(), MakeAdapter());

  EXPECT_EQ(fields.uniqueID, KrString("00:1a:2b:3c:4d:5e"));
  EXPECT_EQ(fields.displayID, KrString("Model (192.168.1.20)"));
  EXPECT_EQ(fields.deviceClass, 2u);
  EXPECT_TRUE(fields.configurationValid);
}

TEST(DeviceFields, DeviceWithoutMac_IsNamedByAddressAndSerialNumber) {
  DiscoveryPayload payload = MakePayload();
  payload.mac = {};

  const auto fields = MakeDeviceFields(payload, MakeAdapter());

  EXPECT_EQ(fields.uniqueID, KrString("192.168.1.20/SN42"));
}

TEST(DeviceFields, AddressOfAnotherSubnetOrNone_IsNotReachable) {
  DiscoveryPayload foreign = MakePayload();
  foreign.address = 0xC0A80214;
  DiscoveryPayload unset = MakePayload();
  unset.address = 0;

  EXPECT_FALSE(MakeDeviceFields(foreign, MakeAdapter()).configurationValid);
  EXPECT_FALSE(MakeDeviceFields(unset, MakeAdapter()).configurationValid);
}

struct NameRow {
  const char* name;
  const char* model;
  const char* manufacturer;
  const char* serialNumber;
  const char* displayID;
};

const NameRow kNames[] = {
    {"Model", "Model", "Maker", "SN42", "Model (192.168.1.20)"},
    {"ManufacturerAlone", "", "Maker", "SN42", "Maker (192.168.1.20)"},
    {"SerialNumberAlone", "", "", "SN42", "SN42 (192.168.1.20)"},
    {"Nothing", "", "", "", "GigE Vision device (192.168.1.20)"},
};

class DeviceNames : public testing::TestWithParam<NameRow> {};

TEST_P(DeviceNames, DisplayID_TextsThatTheDeviceHas_NamesTheBest) {
  DiscoveryPayload payload = MakePayload();
  payload.model = GetParam().model;
  payload.manufacturer = GetParam().manufacturer;
  payload.serialNumber = GetParam().serialNumber;

  EXPECT_EQ(MakeDeviceFields(payload, MakeAdapter()).displayID, KrString(GetParam().displayID));
}

INSTANTIATE_TEST_SUITE_P(Texts, DeviceNames, testing::ValuesIn(kNames),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace
