#include "logic/finder/treeiteminfou3v.h"

#include "finderrows.h"
#include "foundsystem.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoU3V;
using testing::ElementsAre;

namespace {

krsystem::U3VFields MakeFullCamera() {
  krsystem::U3VFields fields = MakeU3VCamera("1234ABCD");
  fields.vendorName = "Maker";
  fields.modelName = "Model";
  fields.version = "1.7";
  fields.manufacturerInfo = "Info";
  fields.serialNumber = "S1";
  fields.userDefinedName = "Left";
  fields.powerMessage = "900 mA";
  fields.genCPVersion = 0x00010002;
  fields.u3vVersion = 0x00010003;
  fields.familyName = "Family";
  fields.u3vSerialNumber = "U1";
  fields.speedMessage = "SuperSpeed";
  fields.maxPowerMilliampere = 896;
  fields.lowSpeedSupported = false;
  fields.fullSpeedSupported = false;
  fields.highSpeedSupported = true;
  fields.superSpeedSupported = true;
  return fields;
}

struct SpeedCase {
  const char* name;
  std::int32_t speed;
  bool isSupported;
  bool hasDriver;
  const char* row;
  int icon;
};

constexpr SpeedCase kSpeeds[] = {
    {"super speed", 4, true, true, "Speed = as told [white]", 21},
    {"high speed", 3, true, true, "Speed = as told [yellow]", 23},
    {"full speed", 2, true, true, "Speed = as told [yellow]", 23},
    {"low speed", 1, true, true, "Speed = as told [yellow]", 23},
    {"no speed known", 0, true, true, "Speed = as told [yellow]", 23},
    {"a speed beyond all", 5, true, true, "Speed = as told [yellow]", 23},
    {"a negative speed", -1, true, true, "Speed = as told [yellow]", 23},
    {"a speed that the device does not support", 3, false, true, "Speed = as told [red]", 23},
    {"super speed that the device does not support", 4, false, true, "Speed = as told [red]", 21},
    {"super speed without driver", 4, true, false, "Speed = as told [white]", 24},
    {"high speed without driver", 3, true, false, "Speed = as told [yellow]", 24},
};

} // namespace

TEST(TreeItemInfoU3V, Rows_StandInTheirOrder) {
  TreeItemInfoU3V node(true, 0);

  node.InitDevice(KrDeviceInfoU3V(MakeFullCamera()), 0);

  EXPECT_THAT(WriteRows(node),
              ElementsAre("Vendor Name = Maker", "Model Name = Model", "Version = 1.7", "Manufacturer Info = Info",
                          "Serial Number = S1", "User Defined Name = Left", "Configuration Valid = True",
                          "Power = 900 mA [white]", "GenCP Version = 1.2", "U3V Version = 1.3",
                          "Device GUID = 1234ABCD", "Family Name = Family", "U3V Serial Number = U1",
                          "Low Speed Supported = False", "Full Speed Supported = False", "High Speed Supported = True",
                          "Super Speed Supported = True", "Speed = SuperSpeed [white]", "Max Power = 896 mA",
                          "Tolvan Driver Installed = True [white]"));
}

TEST(TreeItemInfoU3V, WhatIsWrong_IsSaidInRed) {
  krsystem::U3VFields fields = MakeFullCamera();
  fields.configurationValid = false;
  fields.initializedCapabilities = false;
  fields.driverInstalled = false;
  TreeItemInfoU3V node(true, 0);

  node.InitDevice(KrDeviceInfoU3V(fields), 0);

  EXPECT_EQ(WriteRow(node, "Configuration Valid"), "Configuration Valid = False");
  EXPECT_EQ(WriteRow(node, "Power"), "Power = 900 mA [red]");
  EXPECT_EQ(WriteRow(node, "Tolvan Driver Installed"),
            "Tolvan Driver Installed = Missing driver. See Vesk Player guide [red]");
}

TEST(TreeItemInfoU3V, ConfigurationNotValid_IsReachableAllTheSame) {
  krsystem::U3VFields fields = MakeFullCamera();
  fields.configurationValid = false;
  TreeItemInfoU3V node(true, 0);

  node.InitDevice(KrDeviceInfoU3V(fields), 0);

  EXPECT_TRUE(node.IsReachable());
}

TEST(TreeItemInfoU3V, SpeedAndDriver_AsTheTableSays_DecideRowAndPicture) {
  for (const SpeedCase& row : kSpeeds) {
    SCOPED_TRACE(row.name);
    krsystem::U3VFields fields = MakeFullCamera();
    fields.speed = row.speed;
    fields.speedMessage = "as told";
    fields.currentSpeedSupported = row.isSupported;
    fields.driverInstalled = row.hasDriver;
    TreeItemInfoU3V enabled(true, 0);
    TreeItemInfoU3V disabled(false, 0);

    enabled.InitDevice(KrDeviceInfoU3V(fields), 0);
    disabled.InitDevice(KrDeviceInfoU3V(fields), 0);

    EXPECT_EQ(WriteRow(enabled, "Speed"), row.row);
    EXPECT_EQ(enabled.GetIcon(), row.icon);
    EXPECT_EQ(disabled.GetIcon(), 27);
  }
}

TEST(TreeItemInfoU3V, LargestNumbers_AreWrittenWhole) {
  krsystem::U3VFields fields = MakeFullCamera();
  fields.maxPowerMilliampere = 4294967295U;
  fields.genCPVersion = 0xFFFFFFFF;
  TreeItemInfoU3V node(true, 0);

  node.InitDevice(KrDeviceInfoU3V(fields), 0);

  EXPECT_EQ(WriteRow(node, "Max Power"), "Max Power = 4294967295 mA");
  EXPECT_EQ(WriteRow(node, "GenCP Version"), "GenCP Version = 65535.65535");
}
