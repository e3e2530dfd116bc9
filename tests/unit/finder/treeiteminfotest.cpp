#include "logic/finder/treeiteminfo.h"

#include "foundsystem.h"
#include "logic/finder/treeiteminfogev.h"
#include "logic/finder/treeiteminfonetworkadapter.h"
#include "logic/finder/treeiteminfotolvanprotocol.h"
#include "logic/finder/treeiteminfou3v.h"
#include "logic/finder/treeiteminfousb.h"
#include "logic/finder/treeiteminfousbhostcontroller.h"
#include "unknownkinds.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

template <typename Kind, typename Node>
bool Is(const std::unique_ptr<Node>& aNode) {
  return dynamic_cast<const Kind*>(aNode.get()) != nullptr;
}

} // namespace

TEST(TreeItemInfo, InterfaceFactory_KnowsBothKinds) {
  EXPECT_TRUE(Is<TreeItemInfoUSBHostController>(CreateInterfaceInfo(KrUSBHostController(MakeController("usb0")))));
  EXPECT_TRUE(Is<TreeItemInfoNetworkAdapter>(CreateInterfaceInfo(KrNetworkAdapter(MakeAdapter("eth0")))));
}

TEST(TreeItemInfo, InterfaceFactory_UnknownKind_GivesNull) {
  EXPECT_EQ(CreateInterfaceInfo(UnknownInterface()), nullptr);
}

TEST(TreeItemInfo, DeviceFactory_EachKind_HasItsClassAndItsOwnFlag) {
  struct {
    const char* name;
    bool gev, u3v, tolvan;
    bool isGEVEnabled, isTolvanEnabled, isU3VEnabled;
  } const kRows[] = {
      {"none", false, false, false, false, false, false},
      {"GigE Vision", true, false, false, true, false, false},
      {"USB3 Vision", false, true, false, false, false, true},
      {"older protocol", false, false, true, false, true, false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const auto create = [&](const KrDeviceInfo& aDevice) {
      return CreateDeviceInfo(aDevice, row.gev, row.u3v, row.tolvan, 0);
    };
    const auto gev = create(KrDeviceInfoGEV({}));
    const auto tolvan = create(KrDeviceInfoTolvanProtocol({}));
    const auto usb = create(KrDeviceInfoUSB({}));
    const auto u3v = create(KrDeviceInfoU3V({}));

    EXPECT_TRUE(Is<TreeItemInfoGEV>(gev) && gev->IsEnabled() == row.isGEVEnabled);
    EXPECT_TRUE(Is<TreeItemInfoTolvanProtocol>(tolvan) && tolvan->IsEnabled() == row.isTolvanEnabled);
    EXPECT_TRUE(Is<TreeItemInfoUSB>(usb) && !usb->IsEnabled());
    EXPECT_TRUE(Is<TreeItemInfoU3V>(u3v) && u3v->IsEnabled() == row.isU3VEnabled);
  }
}

TEST(TreeItemInfo, PlainUSB_WithEveryKindSelectable_IsGreyedOut) {
  const auto usb = CreateDeviceInfo(KrDeviceInfoUSB({}), true, true, true, 0);

  usb->InitDevice(KrDeviceInfoUSB({}), 0);

  EXPECT_FALSE(usb->IsEnabled());
  EXPECT_EQ(usb->GetIcon(), 28);
}

TEST(TreeItemInfo, DeviceFactory_UnknownKind_GivesNull) {
  EXPECT_EQ(CreateDeviceInfo(UnknownDevice(), true, true, true, 0), nullptr);
}

TEST(TreeItemInfo, NewNode_IsNotShownAndEmpty) {
  const auto node = CreateDeviceInfo(KrDeviceInfoGEV({}), true, true, true, 77);

  EXPECT_EQ(node->GetTreeItem(), nullptr);
  EXPECT_EQ(node->GetIcon(), 0);
  EXPECT_TRUE(node->GetRows().empty());
  EXPECT_TRUE(node->GetInterfaceKey().empty());
  EXPECT_TRUE(node->IsReachable());
  EXPECT_EQ(node->GetLastUpdate(), 77U);
}

TEST(TreeItemInfo, InitInterface_TakesNameIDAndKind) {
  const KrNetworkAdapter adapter(MakeAdapter("eth0"));
  const auto node = CreateInterfaceInfo(adapter);

  node->InitInterface({}, adapter);

  EXPECT_EQ(node->GetDisplayName(), KrString("eth0 10.0.0.1"));
  EXPECT_EQ(node->GetUniqueID(), KrString("eth0"));
  EXPECT_EQ(node->GetType(), KrInterfaceType::NetworkAdapter);
  EXPECT_TRUE(node->IsInterface());
  EXPECT_FALSE(node->IsDevice());
}

TEST(TreeItemInfo, InitDevice_TakesNameIDKindAndTime) {
  const KrDeviceInfoU3V device(MakeU3VCamera("1"));
  const auto node = CreateDeviceInfo(device, true, true, true, 5);

  node->InitDevice(device, 1234);

  EXPECT_EQ(node->GetDisplayName(), KrString("Camera 1"));
  EXPECT_EQ(node->GetUniqueID(), KrString("usb camera 1"));
  EXPECT_EQ(node->GetType(), KrDeviceInfoType::U3V);
  EXPECT_EQ(node->GetLastUpdate(), 1234U);
  EXPECT_TRUE(node->IsDevice());
  EXPECT_FALSE(node->IsInterface());
}

TEST(TreeItemInfo, InitDevice_ASecondTime_KeepsItemAndInterface) {
  const KrDeviceInfoU3V device(MakeU3VCamera("1"));
  const auto node = CreateDeviceInfo(device, true, true, true, 0);
  node->InitDevice(device, 0);
  const std::size_t rowCount = node->GetRows().size();
  int item = 0;
  node->SetTreeItem(&item);
  node->SetInterfaceKey("usb0");

  node->InitDevice(device, 100);

  EXPECT_EQ(node->GetTreeItem(), &item);
  EXPECT_EQ(node->GetInterfaceKey(), "usb0");
  EXPECT_EQ(node->GetRows().size(), rowCount);
}
