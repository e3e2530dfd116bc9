#include "anydevicefields.h"

#include "faketransport.h"

#include <gmock/gmock.h>

using krsystem::AnyDeviceFields;
using krsystem::AreTwoDevices;
using krsystem::GEVFields;

namespace {

struct PairRow {
  const char* name;
  void (*change)(GEVFields& aSecond);
  bool areTwo;
};

constexpr PairRow kPairs[] = {
    {"the same answer", [](GEVFields&) {}, false},
    {"another serial number", [](GEVFields& aSecond) { aSecond.serialNumber = "2"; }, true},
    {"another model", [](GEVFields& aSecond) { aSecond.modelName = "other"; }, true},
    {"another vendor", [](GEVFields& aSecond) { aSecond.vendorName = "other"; }, true},
    {"another address", [](GEVFields& aSecond) { aSecond.ipAddress = "10.0.0.9"; }, true},
    {"an address that is still to come", [](GEVFields& aSecond) { aSecond.ipAddress = "0.0.0.0"; }, false},
    {"a serial number that one does not state", [](GEVFields& aSecond) { aSecond.serialNumber = ""; }, false},
    {"another name, given by a user meanwhile", [](GEVFields& aSecond) { aSecond.userDefinedName = "n"; }, false},
};

GEVFields MakeFirst() {
  GEVFields fields = MakeCamera("a");
  fields.serialNumber = "1";
  fields.modelName = "model";
  fields.vendorName = "vendor";
  return fields;
}

} // namespace

TEST(AnyDeviceFields, AreTwoDevices_OneMACAddress_IsDecidedByWhatNeverChanges) {
  for (const PairRow& row : kPairs) {
    SCOPED_TRACE(row.name);
    GEVFields second = MakeFirst();
    row.change(second);

    EXPECT_EQ(AreTwoDevices(MakeFirst(), second), row.areTwo);
    EXPECT_EQ(AreTwoDevices(second, MakeFirst()), row.areTwo);
  }
}

TEST(AnyDeviceFields, AreTwoDevices_OneThatSpeaksBothProtocols_IsOne) {
  krsystem::TolvanProtocolFields tolvan;
  tolvan.ipAddress = "10.0.0.9";

  EXPECT_FALSE(AreTwoDevices(MakeFirst(), tolvan));
}

TEST(AnyDeviceFields, AreTwoDevices_OnAUSBBus_AreNeverTwo) {
  krsystem::U3VFields first;
  krsystem::U3VFields second;
  first.serialNumber = "1";
  second.serialNumber = "2";

  EXPECT_FALSE(AreTwoDevices(first, second));
}

TEST(AnyDeviceFields, GetNetworkFields_ByKind_AreThoseOfTheNetworkAlone) {
  const AnyDeviceFields gev = MakeCamera("a");
  const AnyDeviceFields usb = krsystem::USBFields{};

  ASSERT_NE(krsystem::GetNetworkFields(gev), nullptr);
  EXPECT_EQ(krsystem::GetNetworkFields(gev)->macAddress, "a");
  EXPECT_EQ(krsystem::GetDeviceFields(gev).uniqueID, "a");
  EXPECT_EQ(krsystem::GetNetworkFields(usb), nullptr);
}
