#include "foundlists.h"

#include "faketransport.h"

#include <gmock/gmock.h>

using krsystem::FoundLists;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FoundListsTest : public testing::Test {
protected:
  FoundListsTest() {
    for (KrNetworkAdapter* adapter : {&first, &second})
      lists.Adopt(*adapter);
  }

  KrNetworkAdapter first{MakeAdapter("eth0")};
  KrNetworkAdapter second{MakeAdapter("eth1")};
  KrDeviceInfoGEV a{MakeCamera("a")};
  KrDeviceInfoGEV changedA{MakeCamera("a", "10.0.0.3")};
  KrDeviceInfoGEV otherA{MakeCamera("a")};
  KrDeviceInfoGEV b{MakeCamera("b")};
  KrDeviceInfoGEV loose{MakeCamera("loose")};
  FoundLists lists;
};

std::vector<const KrDeviceInfo*> ListBehind(const KrInterface& aInterface) {
  std::vector<const KrDeviceInfo*> devices;
  for (std::size_t i = 0; i < aInterface.GetDeviceCount(); ++i)
    devices.push_back(aInterface.GetDeviceInfo(i));
  return devices;
}

} // namespace

TEST_F(FoundListsTest, Enter_SameIDOnTheSameInterface_TakesTheFormersPlace) {
  lists.SetInterfaces({&first, &second});
  lists.Enter(&first, &a);
  lists.Enter(&first, &b);
  lists.Enter(&second, &otherA);

  lists.Enter(&first, &changedA);

  EXPECT_THAT(lists.GetDevices(), ElementsAre(&changedA, &b, &otherA));
  EXPECT_THAT(ListBehind(first), ElementsAre(&changedA, &b));
  EXPECT_THAT(ListBehind(second), ElementsAre(&otherA));
}

TEST_F(FoundListsTest, Order_DevicesInAnyOrder_StandAsTheirInterfacesDo) {
  lists.SetInterfaces({&first, &second});
  lists.Enter(nullptr, &loose);
  lists.Enter(&second, &otherA);
  lists.Enter(&first, &b);
  lists.Enter(&first, &a);

  lists.Order();

  EXPECT_THAT(lists.GetDevices(), ElementsAre(&b, &a, &otherA, &loose));
}

TEST_F(FoundListsTest, SetInterfaces_OneIsGone_ItsDevicesAreToo) {
  lists.SetInterfaces({&first, &second});
  lists.Enter(&first, &a);
  lists.Enter(&second, &b);

  lists.SetInterfaces({&second});

  EXPECT_THAT(lists.GetInterfaces(), ElementsAre(&second));
  EXPECT_THAT(lists.GetDevices(), ElementsAre(&b));
  EXPECT_THAT(ListBehind(first), IsEmpty());
}

TEST_F(FoundListsTest, SetDevices_OthersAreListed_ReplacesThem) {
  lists.SetInterfaces({&first, &second});
  lists.Enter(&first, &a);
  lists.Enter(nullptr, &loose);

  lists.SetDevices({{&second, &b}, {&first, &changedA}});

  EXPECT_THAT(lists.GetDevices(), ElementsAre(&changedA, &b));
  EXPECT_THAT(ListBehind(first), ElementsAre(&changedA));
  EXPECT_THAT(ListBehind(second), ElementsAre(&b));
}

TEST_F(FoundListsTest, Remove_ListedOrNot_LeavesTheOthers) {
  lists.SetInterfaces({&first, &second});
  lists.Enter(&first, &a);
  lists.Enter(&second, &otherA);
  lists.Enter(&first, &b);

  lists.Remove(&first, "a");
  lists.Remove(&second, "b");

  EXPECT_THAT(lists.GetDevices(), testing::UnorderedElementsAre(&otherA, &b));
  EXPECT_THAT(ListBehind(first), ElementsAre(&b));
  EXPECT_THAT(ListBehind(second), ElementsAre(&otherA));
}

TEST_F(FoundListsTest, Getters_BeyondTheLists_GiveNull) {
  EXPECT_EQ(lists.GetInterface(0), nullptr);
  EXPECT_EQ(lists.GetDevice(0), nullptr);
  EXPECT_EQ(first.GetDeviceInfo(0), nullptr);
}
