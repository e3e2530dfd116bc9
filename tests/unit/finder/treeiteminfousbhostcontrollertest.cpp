#include "logic/finder/treeiteminfousbhostcontroller.h"

#include "finderrows.h"
#include "foundsystem.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoUSBHostController;
using testing::ElementsAre;

namespace {

struct SpeedCase {
  std::int32_t speed;
  const char* row;
};

constexpr SpeedCase kSpeeds[] = {
    {1, "Speed = Low [yellow]"},
    {2, "Speed = Full [yellow]"},
    {3, "Speed = High [yellow]"},
    {4, "Speed = Super [white]"},
    {0, "Speed = Unknown [yellow]"},
    {5, "Speed = Unknown [yellow]"},
    {-1, "Speed = Unknown [yellow]"},
    {INT32_MAX, "Speed = Unknown [yellow]"},
    {INT32_MIN, "Speed = Unknown [yellow]"},
};

} // namespace

TEST(TreeItemInfoUSBHostController, Rows_ShowNumbersWithAllTheirDigits) {
  krsystem::USBHostControllerFields fields = MakeController("usb0");
  fields.vendorID = 0x1A;
  fields.deviceID = 0xBEEF;
  fields.subsystemID = 0xC0FFEE;
  fields.revision = -3;
  const KrUSBHostController controller(fields);
  TreeItemInfoUSBHostController node;

  node.InitInterface({}, controller);

  EXPECT_THAT(WriteRows(node), ElementsAre("Description = Controller usb0", "Vendor ID = 0x001A", "Device ID = 0xBEEF",
                                           "Subsystem ID = 0x00C0FFEE", "Revision = -3", "Speed = Super [white]"));
  EXPECT_EQ(node.GetIcon(), 17);
}

TEST(TreeItemInfoUSBHostController, LargestAndSmallestNumbers_AreWrittenWhole) {
  krsystem::USBHostControllerFields fields = MakeController("usb0");
  fields.vendorID = 0;
  fields.subsystemID = 0xFFFFFFFF;
  const KrUSBHostController controller(fields);
  TreeItemInfoUSBHostController node;

  node.InitInterface({}, controller);

  EXPECT_EQ(WriteRow(node, "Vendor ID"), "Vendor ID = 0x0000");
  EXPECT_EQ(WriteRow(node, "Subsystem ID"), "Subsystem ID = 0xFFFFFFFF");
}

TEST(TreeItemInfoUSBHostController, Speed_AsTheTableSays_IsNamedAndColoured) {
  for (const SpeedCase& row : kSpeeds) {
    SCOPED_TRACE(row.speed);
    krsystem::USBHostControllerFields fields = MakeController("usb0");
    fields.speed = row.speed;
    const KrUSBHostController controller(fields);
    TreeItemInfoUSBHostController node;

    node.InitInterface({}, controller);

    EXPECT_EQ(WriteRow(node, "Speed"), row.row);
  }
}
