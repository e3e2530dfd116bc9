#include "logic/finder/findermodel.h"

#include "findermodelfixture.h"
#include "finderrows.h"
#include "unknownkinds.h"

#include <gmock/gmock.h>

using krgui::FinderModel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

krsystem::TolvanProtocolFields MakeTolvanDevice(const KrString& aMAC) {
  krsystem::TolvanProtocolFields fields;
  fields.uniqueID = "old " + aMAC;
  fields.displayID = "Old " + aMAC;
  fields.macAddress = aMAC;
  return fields;
}

} // namespace

TEST(FinderModel, Building_AppendsListedInterfacesInTheSystemsOrderAndExpandsThem) {
  FinderBench bench({MakeNumberedAdapter(1, "10.0.1.1"), MakeController("usb0"), MakeNumberedAdapter(0, "10.0.0.1")});

  bench.Build();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth1 10.0.1.1 [5]", "Controller usb0 [17]", "eth0 10.0.0.1 [5]"));
  EXPECT_EQ(bench.tree.expandCount, 1);
}

TEST(FinderModel, Building_WithoutNetworkKinds_ListsOnlyControllersButKnowsTheAdapters) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  bench.kinds.gev.listed = false;
  bench.kinds.tolvanProtocol.listed = false;

  bench.Build();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("Controller usb0 [17]"));
  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Refresh);
}

TEST(FinderModel, Building_WithoutUSBKinds_ListsOnlyAdapters) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  bench.kinds.u3v.listed = false;

  bench.Build();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]"));
}

TEST(FinderModel, Building_AdaptersWithOneMACAddress_AreBothListed) {
  krsystem::NetworkAdapterFields tagged = MakeNumberedAdapter(1, "10.0.1.1");
  tagged.macAddress = MakeNumberedAdapter(0).macAddress;
  FinderBench bench({MakeNumberedAdapter(0), tagged});

  bench.Build();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth1 10.0.1.1 [5]"));
}

TEST(FinderModel, Building_InterfacesWhoseKeysCollide_TheFirstHasTheNode) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController(MakeNumberedAdapter(0).macAddress)});

  bench.Build();
  const FinderModel::Next next = bench.model.TakeReport(bench.found.GetInterface(1), nullptr);
  bench.Refresh();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]"));
  EXPECT_EQ(next, FinderModel::Next::Refresh);
}

TEST(FinderModel, Report_UnknownInterfaceAlone_AsksForARebuild) {
  FinderBench bench({MakeNumberedAdapter(0)});

  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Rebuild);
}

TEST(FinderModel, Report_KnownInterfaceAlone_AsksForARefresh) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();

  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Refresh);
}

TEST(FinderModel, Report_InterfaceOfAnUnknownKind_AsksForNothing) {
  FinderBench bench({});
  const UnknownInterface interface;

  EXPECT_EQ(bench.model.TakeReport(&interface, nullptr), FinderModel::Next::Nothing);
}

TEST(FinderModel, Report_NeitherInterfaceNorDevice_AsksForNothing) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();

  EXPECT_EQ(bench.model.TakeReport(nullptr, nullptr), FinderModel::Next::Nothing);
}

TEST(FinderModel, Report_DeviceOfAnUnknownKind_AsksForNothing) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  const UnknownDevice device;

  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), &device), FinderModel::Next::Nothing);
  bench.Refresh(true);

  EXPECT_EQ(bench.tree.items.size(), 1U);
}

TEST(FinderModel, Report_DeviceBehindAnInterfaceWithoutNode_IsKeptUntilThereIsOne) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.found.Find();

  EXPECT_EQ(bench.Report(0), FinderModel::Next::Refresh);
  bench.Refresh();
  EXPECT_THAT(bench.tree.Write(), IsEmpty());

  bench.Build();
  bench.Refresh();
  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth0 10.0.0.1 > Camera cam [1]"));
}

TEST(FinderModel, Report_DeviceWithoutInterface_IsNotShownAndAgesOut) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  const KrDeviceInfoGEV device(MakeCamera("cam"));

  EXPECT_EQ(bench.model.TakeReport(nullptr, &device), FinderModel::Next::Refresh);
  bench.Refresh(true);
  bench.nowMs += 2001;
  bench.Refresh(true);

  EXPECT_EQ(bench.tree.items.size(), 1U);
}

TEST(FinderModel, Report_KindThatIsNotListed_AsksForNothingButRefillsTheInterface) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.kinds.gev.listed = false;
  bench.Build();
  bench.found.GetTransport().interfaces = {MakeNumberedAdapter(0, "10.0.0.77")};
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.found.Find();

  EXPECT_EQ(bench.Report(0), FinderModel::Next::Nothing);
  bench.Refresh(true);

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.77 [5]"));
}

TEST(FinderModel, Report_EachKindThatIsListed_EntersTheTree) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  krsystem::USBFields usb;
  usb.uniqueID = "port 1";
  usb.displayID = "Port 1";
  bench.SetAnswers({{0, MakeCamera("cam")}, {0, MakeTolvanDevice("00:aa")}, {1, usb}, {1, MakeU3VCamera("z")}});
  bench.Build();

  bench.Round();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "Controller usb0 [17]",
                                              "eth0 10.0.0.1 > Old 00:aa [26]", "eth0 10.0.0.1 > Camera cam [1]",
                                              "Controller usb0 > Port 1 [28]", "Controller usb0 > Camera z [21]"));
}

TEST(FinderModel, Report_InterfaceThatChanged_KeepsItsItemAndShowsTheChange) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  const auto* const item = bench.tree.items.front().get();
  bench.found.GetTransport().interfaces = {MakeNumberedAdapter(0, "0.0.0.0")};
  bench.found.Find();

  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Refresh);
  bench.Refresh();

  EXPECT_EQ(bench.tree.items.front().get(), item);
  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 0.0.0.0 [8]"));
}

TEST(FinderModel, Report_SecondAdapterWithTheSameMACAddress_RebuildsAndListsBoth) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.Build();
  krsystem::NetworkAdapterFields tagged = MakeNumberedAdapter(1, "10.0.1.1");
  tagged.macAddress = MakeNumberedAdapter(0).macAddress;
  bench.found.GetTransport().interfaces = {MakeNumberedAdapter(0), tagged};
  bench.found.Find();

  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Rebuild);
  bench.Rebuild();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth1 10.0.1.1 [5]"));
  EXPECT_EQ(bench.model.TakeReport(bench.found.GetInterface(0), nullptr), FinderModel::Next::Refresh);
  EXPECT_FALSE(bench.model.HasLostInterface());
}

TEST(FinderModel, DevicesWithOneMACAddress_ShareANodeAndTheLastReportWins) {
  FinderBench bench({MakeNumberedAdapter(0)});
  krsystem::GEVFields first = MakeCamera("one");
  krsystem::GEVFields second = MakeCamera("two");
  first.macAddress = second.macAddress = "00:11:22:33:44:55";
  bench.SetAnswers({{0, first}, {0, second}});
  bench.Build();

  bench.Round();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth0 10.0.0.1 > Camera two [1]"));
}

TEST(FinderModel, DevicesOfTwoKindsWithOneMACAddress_HaveANodeEach) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("00:aa")}, {0, MakeTolvanDevice("00:aa")}});
  bench.Build();

  bench.Round();
  bench.Round();

  EXPECT_THAT(bench.tree.Write(),
              ElementsAre("eth0 10.0.0.1 [5]", "eth0 10.0.0.1 > Camera 00:aa [1]", "eth0 10.0.0.1 > Old 00:aa [26]"));
}

TEST(FinderModel, DevicesWithoutMACAddressOrGUID_AreToldApartByTheirUniqueIDs) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  krsystem::GEVFields one = MakeCamera("one");
  krsystem::GEVFields two = MakeCamera("two");
  one.macAddress = two.macAddress = "";
  krsystem::U3VFields three = MakeU3VCamera("three");
  krsystem::U3VFields four = MakeU3VCamera("four");
  three.deviceGUID = four.deviceGUID = "";
  bench.SetAnswers({{0, one}, {0, two}, {1, three}, {1, four}});
  bench.Build();

  bench.Round();

  EXPECT_EQ(bench.tree.items.size(), 6U);
}

TEST(FinderModel, OneDeviceBehindTwoAdapters_HasANodeUnderEach) {
  FinderBench bench({MakeNumberedAdapter(0, "10.0.0.1"), MakeNumberedAdapter(1, "10.0.1.1")});
  bench.SetAnswers({{0, MakeCamera("cam")}, {1, MakeCamera("cam")}});
  bench.Build();

  bench.Round();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth1 10.0.1.1 [5]",
                                              "eth0 10.0.0.1 > Camera cam [1]", "eth1 10.0.1.1 > Camera cam [1]"));
}

TEST(FinderModel, LostInterface_IsOneThatTheSystemDoesNotListAnyMore) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  bench.Build();
  EXPECT_FALSE(bench.model.HasLostInterface());

  bench.found.GetTransport().interfaces = {MakeNumberedAdapter(0, "10.9.9.9"), MakeController("usb0")};
  bench.found.Find();
  EXPECT_FALSE(bench.model.HasLostInterface()) << "another address";

  bench.found.GetTransport().interfaces = {MakeController("usb0"), MakeController("usb1")};
  bench.found.Find();
  EXPECT_TRUE(bench.model.HasLostInterface());

  bench.Rebuild();
  EXPECT_FALSE(bench.model.HasLostInterface());
  EXPECT_THAT(bench.tree.Write(), ElementsAre("Controller usb0 [17]", "Controller usb1 [17]"));
}

TEST(FinderModel, LostInterface_OfAKindThatIsNotListed_CountsToo) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  bench.kinds.u3v.listed = false;
  bench.Build();
  bench.found.GetTransport().interfaces = {MakeNumberedAdapter(0)};
  bench.found.Find();

  EXPECT_TRUE(bench.model.HasLostInterface());
}

TEST(FinderModel, Clear_EmptiesMapsAndTreeAndEndsTheSelectionFirst) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.Build();
  bench.Round();
  bench.tree.Select(bench.tree.Find("Camera cam"));
  const krgui::TreeItemInfo* const node = bench.tree.GetSelected();
  bool isAliveAtTheChange = false;
  bench.tree.onSelectionChange = [&] { isAliveAtTheChange = bench.model.FindKey(node).has_value(); };

  bench.model.Clear(bench.tree);

  EXPECT_TRUE(isAliveAtTheChange);
  EXPECT_EQ(bench.tree.GetSelected(), nullptr);
  EXPECT_THAT(bench.tree.Write(), IsEmpty());
  EXPECT_FALSE(bench.model.FindKey(node).has_value());
  EXPECT_FALSE(bench.model.HasLostInterface());
}

TEST(FinderModel, Rebuild_ReplaysTheDevicesThatTheSystemKnows) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.Build();
  bench.Round();

  bench.Rebuild();
  bench.Refresh();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("eth0 10.0.0.1 [5]", "eth0 10.0.0.1 > Camera cam [1]"));
}

TEST(FinderModel, Rebuild_UnderTheDataLock_MayTakeItAgain) {
  FinderBench bench({MakeNumberedAdapter(0)});
  const std::lock_guard lock(bench.model.GetDataLock());

  bench.Rebuild();
  bench.Refresh();

  EXPECT_EQ(bench.tree.items.size(), 1U);
}

TEST(FinderModel, InterfaceOfADevice_IsTheOneItWasLastReportedBehind) {
  FinderBench bench({MakeNumberedAdapter(0), MakeController("usb0")});
  bench.SetAnswers({{0, MakeCamera("cam")}, {1, MakeU3VCamera("1")}});
  bench.Build();
  bench.Round();
  const auto& camera = dynamic_cast<krgui::TreeItemInfoDevice&>(*bench.tree.Find("Camera cam")->info);
  const auto& usbCamera = dynamic_cast<krgui::TreeItemInfoDevice&>(*bench.tree.Find("Camera 1")->info);

  EXPECT_EQ(bench.model.FindInterfaceOf(camera), bench.tree.items[0]->info);
  EXPECT_EQ(bench.model.FindInterfaceOf(usbCamera), bench.tree.items[1]->info);
}

TEST(FinderModel, FindKey_KnowsItsNodesAndNoOthers) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.Build();
  bench.Round();
  const KrDeviceInfoGEV stranger{krsystem::GEVFields()};
  const auto other = krgui::CreateDeviceInfo(stranger, true, true, true, 0);

  EXPECT_TRUE(bench.model.FindKey(bench.tree.items[0]->info).has_value());
  EXPECT_TRUE(bench.model.FindKey(bench.tree.items[1]->info).has_value());
  EXPECT_FALSE(bench.model.FindKey(other.get()).has_value());
  EXPECT_FALSE(bench.model.FindKey(nullptr).has_value());
}

TEST(FinderModel, KeysOfNodes_FindWhatStandsForTheSameAfterARebuild) {
  FinderBench bench({MakeNumberedAdapter(0)});
  bench.SetAnswers({{0, MakeCamera("cam")}});
  bench.Build();
  bench.Round();
  const auto interfaceKey = bench.model.FindKey(bench.tree.items[0]->info);
  const auto deviceKey = bench.model.FindKey(bench.tree.items[1]->info);
  ASSERT_TRUE(interfaceKey && deviceKey);

  bench.model.Clear(bench.tree);
  EXPECT_EQ(bench.model.FindNode(*interfaceKey), nullptr);
  EXPECT_EQ(bench.model.FindNode(*deviceKey), nullptr);

  bench.Rebuild();
  bench.Refresh();

  EXPECT_EQ(bench.model.FindNode(*interfaceKey), bench.tree.items[0]->info);
  EXPECT_EQ(bench.model.FindNode(*deviceKey), bench.tree.items[1]->info);
}

TEST(FinderModel, HiddenDevices_AreThoseWithoutAnItemThatCannotBeReached) {
  FinderBench bench({MakeNumberedAdapter(0), MakeNumberedAdapter(1)});
  bench.SetAnswers({{0, MakeCamera("cam")},
                    {0, MakeUnreachableCamera("far")},
                    {1, MakeUnreachableCamera("far")},
                    {1, MakeUnreachableCamera("farther")}});
  bench.Build();

  bench.Round();
  EXPECT_EQ(bench.model.CountHidden(), 2U);

  bench.Refresh(true);
  EXPECT_EQ(bench.model.CountHidden(), 0U);
}
