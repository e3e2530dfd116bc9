#include "logic/finder/treeiteminfogev.h"

#include "finderrows.h"
#include "foundsystem.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoGEV;
using testing::ElementsAre;

namespace {

krsystem::GEVFields MakeFullCamera() {
  krsystem::GEVFields fields = MakeCamera("00:11:22:33:44:55", "10.0.0.2");
  fields.subnetMask = "255.255.255.0";
  fields.defaultGateway = "10.0.0.254";
  fields.vendorName = "Maker";
  fields.modelName = "Model";
  fields.manufacturerInfo = "Info";
  fields.version = "1.7";
  fields.serialNumber = "S1";
  fields.userDefinedName = "Left";
  fields.gevVersion = 0x00020001;
  fields.ipConfigOptions = 7;
  fields.ipConfigCurrent = 4;
  return fields;
}

TreeItemInfoGEV& Fill(TreeItemInfoGEV& aNode, const krsystem::GEVFields& aFields) {
  aNode.InitDevice(KrDeviceInfoGEV(aFields), 0);
  return aNode;
}

struct ConfigurationCase {
  const char* name;
  bool isValid;
  const char* address;
  const char* row;
};

constexpr ConfigurationCase kConfigurations[] = {
    {"valid", true, "10.0.0.2", "IP Configuration = Valid [white]"},
    {"valid without an address", true, "0.0.0.0", "IP Configuration = Valid [white]"},
    {"without an address", false, "0.0.0.0", "IP Configuration = Invalid [red]"},
    {"on a foreign subnet", false, "172.16.0.9", "IP Configuration = Invalid on this interface [red]"},
    {"with a text that is no address", false, "", "IP Configuration = Invalid on this interface [red]"},
};

struct ClassCase {
  std::uint32_t deviceMode;
  const char* row;
};

constexpr ClassCase kClasses[] = {
    {0, "Device Class = Transmitter"},      {1, "Device Class = Receiver"}, {2, "Device Class = Transceiver"},
    {3, "Device Class = Peripheral"},       {4, "Device Class = Unknown"},  {0xFFFFFFFF, "Device Class = Unknown"},
    {0x7FFFFFFF, "Device Class = Unknown"},
};

struct AccessCase {
  std::int32_t access;
  const char* row;
};

constexpr AccessCase kAccesses[] = {
    {0, "Access Status = Unknown [white]"},         {1, "Access Status = Open [white]"},
    {2, "Access Status = Control [yellow]"},        {3, "Access Status = Exclusive [yellow]"},
    {4, "Access Status = Read-Only [white]"},       {5, "Access Status = Unknown [white]"},
    {-1, "Access Status = Unknown [white]"},        {INT32_MAX, "Access Status = Unknown [white]"},
    {INT32_MIN, "Access Status = Unknown [white]"},
};

struct MaskCase {
  const char* name;
  const char* mask;
  const char* row;
};

constexpr MaskCase kMasks[] = {
    {"the adapter's first", "255.255.255.0", "Subnet Mask = 255.255.255.0 [white]"},
    {"the adapter's second", "255.255.0.0", "Subnet Mask = 255.255.0.0 [white]"},
    {"none of the adapter's", "255.0.0.0", "Subnet Mask = 255.0.0.0 [yellow]"},
    {"none, as the adapter's third is", "0.0.0.0", "Subnet Mask = 0.0.0.0 [yellow]"},
};

} // namespace

TEST(TreeItemInfoGEV, Rows_StandInTheirOrder) {
  FoundSystem found({MakeNumberedAdapter(0)});
  found.Answer(0, MakeFullCamera());
  found.Find();
  TreeItemInfoGEV node(true, 0);

  node.InitDevice(*found.GetDevice(0), 0);

  EXPECT_THAT(
      WriteRows(node),
      ElementsAre(
          "MAC = 00:11:22:33:44:55", "IP = 10.0.0.2 [white]", "Subnet Mask = 255.255.255.0 [white]",
          "Default Gateway = 10.0.0.254", "Vendor = Maker", "Model = Model", "Access Status = Unknown",
          "Manufacturer Info = Info", "Version = 1.7", "Serial Number = S1", "User Defined Name = Left",
          "Protocol Version = 2.1", "IP Configuration = Valid [white]", "Device Class = Transmitter",
          "IP Config Options = " + std::string(KrDeviceInfoGEV(MakeFullCamera()).GetIPConfigOptionsString().ToUtf8()),
          "Current IP Config = " + std::string(KrDeviceInfoGEV(MakeFullCamera()).GetIPConfigCurrentString().ToUtf8())));
  EXPECT_TRUE(node.IsReachable());
}

TEST(TreeItemInfoGEV, Mask_AsTheTableSays_IsComparedWithAllMasksOfTheAdapter) {
  krsystem::NetworkAdapterFields adapter = MakeNumberedAdapter(0);
  adapter.addresses = {{"10.0.0.1", "255.255.255.0"}, {"10.1.0.1", "255.255.0.0"}, {"0.0.0.0", "0.0.0.0"}};
  for (const MaskCase& row : kMasks) {
    SCOPED_TRACE(row.name);
    FoundSystem found({adapter});
    krsystem::GEVFields camera = MakeFullCamera();
    camera.subnetMask = row.mask;
    found.Answer(0, camera);
    found.Find();
    TreeItemInfoGEV node(true, 0);

    node.InitDevice(*found.GetDevice(0), 0);

    EXPECT_EQ(WriteRow(node, "Subnet Mask"), row.row);
  }
}

TEST(TreeItemInfoGEV, Mask_WithoutAnAdapter_IsSuspicious) {
  TreeItemInfoGEV node(true, 0);

  Fill(node, MakeFullCamera());

  EXPECT_EQ(WriteRow(node, "Subnet Mask"), "Subnet Mask = 255.255.255.0 [yellow]");
}

TEST(TreeItemInfoGEV, Mask_BehindAController_IsSuspicious) {
  FoundSystem found({MakeController("usb0")});
  found.Answer(0, MakeFullCamera());
  found.Find();
  TreeItemInfoGEV node(true, 0);

  node.InitDevice(*found.GetDevice(0), 0);

  EXPECT_EQ(WriteRow(node, "Subnet Mask"), "Subnet Mask = 255.255.255.0 [yellow]");
}

TEST(TreeItemInfoGEV, NoAddress_IsSuspicious) {
  krsystem::GEVFields camera = MakeFullCamera();
  camera.ipAddress = "0.0.0.0";
  TreeItemInfoGEV node(true, 0);

  Fill(node, camera);

  EXPECT_EQ(WriteRow(node, "IP"), "IP = 0.0.0.0 [yellow]");
}

TEST(TreeItemInfoGEV, Configuration_AsTheTableSays_IsNamedColouredAndDecidesReachability) {
  for (const ConfigurationCase& row : kConfigurations) {
    SCOPED_TRACE(row.name);
    krsystem::GEVFields camera = MakeFullCamera();
    camera.configurationValid = row.isValid;
    camera.ipAddress = row.address;
    TreeItemInfoGEV node(true, 0);

    Fill(node, camera);

    EXPECT_EQ(WriteRow(node, "IP Configuration"), row.row);
    EXPECT_EQ(node.IsReachable(), row.isValid);
  }
}

TEST(TreeItemInfoGEV, DeviceClass_AsTheTableSays_IsNamed) {
  for (const ClassCase& row : kClasses) {
    SCOPED_TRACE(row.row);
    krsystem::GEVFields camera = MakeFullCamera();
    camera.deviceClass = row.deviceMode;
    TreeItemInfoGEV node(true, 0);

    EXPECT_EQ(WriteRow(Fill(node, camera), "Device Class"), row.row);
  }
}

TEST(TreeItemInfoGEV, ProtocolVersion_LargestNumbers_KeepsBothHalves) {
  krsystem::GEVFields camera = MakeFullCamera();
  camera.gevVersion = 0xFFFF8000;
  TreeItemInfoGEV node(true, 0);

  EXPECT_EQ(WriteRow(Fill(node, camera), "Protocol Version"), "Protocol Version = 65535.32768");
}

TEST(TreeItemInfoGEV, Access_AsTheTableSays_IsNamedAndColouredOnceAsked) {
  for (const AccessCase& row : kAccesses) {
    SCOPED_TRACE(row.access);
    TreeItemInfoGEV node(true, 0);
    Fill(node, MakeFullCamera());

    node.RefreshInfo([&](const KrString&) { return row.access; });

    EXPECT_EQ(WriteRow(node, "Access Status"), row.row);
    EXPECT_EQ(node.GetRows()[6].caption, KrString("Access Status"));
  }
}

TEST(TreeItemInfoGEV, Access_AskedTwice_AsksTheDeviceOnceUntilTheNextReport) {
  std::vector<KrString> asked;
  const auto query = [&](const KrString& aAddress) {
    asked.push_back(aAddress);
    return 1;
  };
  TreeItemInfoGEV node(true, 0);
  Fill(node, MakeFullCamera());

  node.RefreshInfo(query);
  node.RefreshInfo(query);
  EXPECT_THAT(asked, ElementsAre(KrString("10.0.0.2")));

  Fill(node, MakeFullCamera());
  EXPECT_EQ(WriteRow(node, "Access Status"), "Access Status = Unknown");
  node.RefreshInfo(query);
  EXPECT_EQ(asked.size(), 2U);
}

TEST(TreeItemInfoGEV, Access_OfADeviceThatCannotBeReached_IsNotAsked) {
  krsystem::GEVFields camera = MakeFullCamera();
  camera.configurationValid = false;
  TreeItemInfoGEV node(true, 0);
  Fill(node, camera);
  bool isAsked = false;

  node.RefreshInfo([&](const KrString&) {
    isAsked = true;
    return 1;
  });

  EXPECT_FALSE(isAsked);
  EXPECT_EQ(WriteRow(node, "Access Status"), "Access Status = Unknown");
}

TEST(TreeItemInfoGEV, Access_OfADeviceThatBecameUnreachable_IsNotAskedAtItsFormerAddress) {
  TreeItemInfoGEV node(true, 0);
  Fill(node, MakeFullCamera());
  krsystem::GEVFields lost = MakeFullCamera();
  lost.configurationValid = false;
  Fill(node, lost);
  bool isAsked = false;

  node.RefreshInfo([&](const KrString&) {
    isAsked = true;
    return 1;
  });

  EXPECT_FALSE(isAsked);
}

TEST(TreeItemInfoGEV, Picture_FollowsKindAndConfiguration) {
  krsystem::GEVFields valid = MakeFullCamera();
  krsystem::GEVFields invalid = MakeFullCamera();
  invalid.configurationValid = false;
  TreeItemInfoGEV enabled(true, 0);
  TreeItemInfoGEV disabled(false, 0);

  EXPECT_EQ(Fill(enabled, valid).GetIcon(), 1);
  EXPECT_EQ(Fill(enabled, invalid).GetIcon(), 3);
  EXPECT_EQ(Fill(disabled, valid).GetIcon(), 25);
  EXPECT_EQ(Fill(disabled, invalid).GetIcon(), 25);
}

TEST(TreeItemInfoGEV, ForeignTexts_AreKeptAsTheyAre) {
  krsystem::GEVFields camera = MakeFullCamera();
  camera.userDefinedName = "<b>links</b> & \xF0\x9F\x93\xB7";
  camera.displayID = "<img src=x>";
  TreeItemInfoGEV node(true, 0);

  Fill(node, camera);

  EXPECT_EQ(WriteRow(node, "User Defined Name"), "User Defined Name = <b>links</b> & \xF0\x9F\x93\xB7");
  EXPECT_EQ(node.GetDisplayName(), KrString("<img src=x>"));
}

TEST(TreeItemInfoGEV, DeviceOfAnotherKind_LeavesNoRowsAndIsNotAsked) {
  TreeItemInfoGEV node(true, 0);
  Fill(node, MakeFullCamera());

  node.InitDevice(KrDeviceInfoU3V(MakeU3VCamera("1")), 0);
  node.RefreshInfo([](const KrString&) { return 1; });

  EXPECT_TRUE(node.GetRows().empty());
}
