#include "findermodelfixture.h"

#include <gtest/gtest.h>

using krgui::FinderSelection;
using krgui::FindSelection;

namespace {

// Two adapters with a camera each, open.
struct OpenFinder : FinderBench {
  OpenFinder() : FinderBench({MakeNumberedAdapter(0, "10.0.0.1"), MakeNumberedAdapter(1, "10.0.1.1")}) {
    SetAnswers({{0, MakeCamera("a")}, {1, MakeCamera("b")}});
    Build();
    Round();
  }
  FinderSelection FindSelectionOf(const KrString& aText) {
    return FindSelection(found.Get(), model, *tree.Find(aText)->info);
  }
};

} // namespace

TEST(FinderSelection, Device_IsFoundWithItsInterface) {
  OpenFinder finder;

  const FinderSelection selection = finder.FindSelectionOf("Camera b");

  EXPECT_EQ(selection.interface, finder.found.GetInterface(1));
  EXPECT_EQ(selection.device, finder.found.GetDevice(1));
}

TEST(FinderSelection, Interface_IsFoundWithoutADevice) {
  OpenFinder finder;

  const FinderSelection selection = finder.FindSelectionOf("eth1 10.0.1.1");

  EXPECT_EQ(selection.interface, finder.found.GetInterface(1));
  EXPECT_EQ(selection.device, nullptr);
}

TEST(FinderSelection, DeviceThatTheLastRoundDidNotFind_IsNoSelection) {
  OpenFinder finder;
  finder.SetAnswers({{0, MakeCamera("a")}});
  finder.found.Find();

  const FinderSelection selection = finder.FindSelectionOf("Camera b");

  EXPECT_EQ(selection.interface, nullptr);
  EXPECT_EQ(selection.device, nullptr);
}

TEST(FinderSelection, InterfaceThatIsGone_IsNoSelectionNorAreItsDevices) {
  OpenFinder finder;
  finder.found.GetTransport().interfaces.pop_back();
  finder.SetAnswers({{0, MakeCamera("a")}});
  finder.found.Find();

  EXPECT_EQ(finder.FindSelectionOf("eth1 10.0.1.1").interface, nullptr);
  EXPECT_EQ(finder.FindSelectionOf("Camera b").interface, nullptr);
}

TEST(FinderSelection, DeviceThatAnsweredAnew_IsFoundAsItIsNow) {
  OpenFinder finder;
  finder.SetAnswers({{0, MakeCamera("a", "10.0.0.99")}, {1, MakeCamera("b")}});
  finder.found.Find();

  const FinderSelection selection = finder.FindSelectionOf("Camera a");

  ASSERT_NE(selection.device, nullptr);
  EXPECT_EQ(dynamic_cast<const KrDeviceInfoGEV&>(*selection.device).GetIPAddress(), KrString("10.0.0.99"));
}

TEST(FinderSelection, InterfaceThatChanged_IsFoundAsItIsNow) {
  OpenFinder finder;
  finder.found.GetTransport().interfaces[1] = MakeNumberedAdapter(1, "10.0.7.7");
  finder.found.Find();

  const FinderSelection selection = finder.FindSelectionOf("Camera b");

  EXPECT_EQ(selection.interface, finder.found.GetInterface(1));
  EXPECT_EQ(selection.device, finder.found.GetDevice(1));
}

TEST(FinderSelection, DevicesOfTwoKindsWithOneUniqueID_AreToldApart) {
  FinderBench bench({MakeNumberedAdapter(0)});
  krsystem::TolvanProtocolFields old;
  old.uniqueID = "a";
  old.displayID = "Old a";
  old.macAddress = "a";
  bench.SetAnswers({{0, old}});
  bench.Build();
  bench.Round();
  bench.SetAnswers({{0, MakeCamera("a")}});
  bench.found.Find();

  EXPECT_EQ(FindSelection(bench.found.Get(), bench.model, *bench.tree.Find("Old a")->info).device, nullptr);
}

TEST(FinderSelection, DeviceWithoutInterface_IsNoSelection) {
  OpenFinder finder;
  const KrDeviceInfoGEV device(MakeCamera("a"));
  const auto node = krgui::CreateDeviceInfo(device, true, true, true, 0);
  node->InitDevice(device, 0);

  EXPECT_EQ(FindSelection(finder.found.Get(), finder.model, *node).device, nullptr);
}
