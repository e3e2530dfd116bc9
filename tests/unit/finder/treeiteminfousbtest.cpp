#include "logic/finder/treeiteminfousb.h"

#include "finderrows.h"

#include <gmock/gmock.h>

using krgui::TreeItemInfoUSB;
using testing::ElementsAre;

namespace {

struct StatusCase {
  std::int32_t status;
  const char* row;
};

constexpr StatusCase kStatuses[] = {
    {0, "Status = Connected"},
    {1, "Status = Failed Enumeration"},
    {2, "Status = General Failure"},
    {3, "Status = Caused Overcurrent"},
    {4, "Status = Not Enough Power"},
    {5, "Status = Not Enough Bandwidth"},
    {6, "Status = Hub Nested Too Deeply"},
    {7, "Status = Legacy Hub"},
    {8, "Status = Enumerating"},
    {9, "Status = Reset"},
    {10, "Status = Unknown"},
    {-1, "Status = Unknown"},
    {INT32_MAX, "Status = Unknown"},
    {INT32_MIN, "Status = Unknown"},
};

} // namespace

TEST(TreeItemInfoUSB, Status_AsTheTableSays_IsTheOnlyRow) {
  for (const StatusCase& row : kStatuses) {
    SCOPED_TRACE(row.row);
    krsystem::USBFields fields;
    fields.status = row.status;
    fields.configurationValid = false;
    TreeItemInfoUSB node(false, 0);

    node.InitDevice(KrDeviceInfoUSB(fields), 0);

    EXPECT_THAT(WriteRows(node), ElementsAre(row.row));
    EXPECT_TRUE(node.IsReachable());
  }
}

TEST(TreeItemInfoUSB, Picture_FollowsTheFlag) {
  TreeItemInfoUSB enabled(true, 0);
  TreeItemInfoUSB disabled(false, 0);

  enabled.InitDevice(KrDeviceInfoUSB({}), 0);
  disabled.InitDevice(KrDeviceInfoUSB({}), 0);

  EXPECT_EQ(enabled.GetIcon(), 17);
  EXPECT_EQ(disabled.GetIcon(), 28);
}
