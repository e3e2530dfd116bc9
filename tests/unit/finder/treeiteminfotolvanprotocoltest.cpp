#include "logic/finder/treeiteminfotolvanprotocol.h"

#include "finderrows.h"
#include "foundsystem.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoTolvanProtocol;
using testing::ElementsAre;

namespace {

krsystem::TolvanProtocolFields MakeDevice() {
  krsystem::TolvanProtocolFields fields;
  fields.uniqueID = "old";
  fields.macAddress = "00:11:22:33:44:55";
  fields.ipAddress = "10.0.0.2";
  fields.subnetMask = "255.255.255.0";
  fields.defaultGateway = "10.0.0.254";
  fields.deviceID = 0x0A;
  fields.moduleID = 0xFF;
  fields.subID = 0;
  fields.vendorID = 0x1B;
  fields.softwareMajor = 3;
  fields.softwareMinor = 255;
  return fields;
}

} // namespace

TEST(TreeItemInfoTolvanProtocol, Rows_StandInTheirOrder) {
  FoundSystem found({MakeNumberedAdapter(0)});
  found.Answer(0, MakeDevice());
  found.Find();
  TreeItemInfoTolvanProtocol node(true, 0);

  node.InitDevice(*found.GetDevice(0), 0);

  EXPECT_THAT(WriteRows(node),
              ElementsAre("MAC = 00:11:22:33:44:55", "IP = 10.0.0.2 [white]", "Subnet Mask = 255.255.255.0 [white]",
                          "Default Gateway = 10.0.0.254", "Device ID = 0x0A", "Module ID = 0xFF", "Sub ID = 0x00",
                          "Vendor ID = 0x1B", "Software Major = 3", "Software Minor = 255"));
}

TEST(TreeItemInfoTolvanProtocol, NoAddressAndAForeignMask_AreSuspicious) {
  krsystem::TolvanProtocolFields fields = MakeDevice();
  fields.ipAddress = "0.0.0.0";
  TreeItemInfoTolvanProtocol node(true, 0);

  node.InitDevice(KrDeviceInfoTolvanProtocol(fields), 0);

  EXPECT_EQ(WriteRow(node, "IP"), "IP = 0.0.0.0 [yellow]");
  EXPECT_EQ(WriteRow(node, "Subnet Mask"), "Subnet Mask = 255.255.255.0 [yellow]");
}

TEST(TreeItemInfoTolvanProtocol, PictureAndReachability_FollowKindAndConfiguration) {
  for (const bool isEnabled : {true, false}) {
    for (const bool isValid : {true, false}) {
      krsystem::TolvanProtocolFields fields = MakeDevice();
      fields.configurationValid = isValid;
      TreeItemInfoTolvanProtocol node(isEnabled, 0);

      node.InitDevice(KrDeviceInfoTolvanProtocol(fields), 0);

      EXPECT_EQ(node.IsReachable(), isValid);
      EXPECT_EQ(node.GetIcon(), !isEnabled ? 26 : isValid ? 0 : 2);
    }
  }
}
