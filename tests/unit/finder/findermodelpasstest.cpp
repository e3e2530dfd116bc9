#include "logic/finder/findermodel.h"

#include "findermodelfixture.h"
#include "finderrows.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kRoot = "eth0 10.0.0.1 [5]";

// One adapter, open, with these devices answering.
struct OpenFinder : FinderBench {
  explicit OpenFinder(const std::vector<krsystem::AnyDeviceFields>& aDevices) : FinderBench({MakeNumberedAdapter(0)}) {
    for (const krsystem::AnyDeviceFields& device : aDevices)
      found.Answer(0, device);
    Build();
  }
};

krsystem::GEVFields MakeRenamed(krsystem::GEVFields aFields, const KrString& aName) {
  aFields.displayID = aName;
  return aFields;
}

struct AgeCase {
  const char* name;
  std::uint32_t reportedAt;
  std::uint32_t passAt;
  bool isShown;
};

constexpr AgeCase kAges[] = {
    {"at once", 5000, 5000, true},
    {"after two seconds", 5000, 7000, true},
    {"after two seconds and a tick", 5000, 7001, false},
    {"across the wrap", 0xFFFFFF00, 100, true},
    {"two seconds across the wrap", 0xFFFFFF00, 0xFFFFFF00U + 2000U, true},
    {"two seconds and a tick across the wrap", 0xFFFFFF00, 0xFFFFFF00U + 2001U, false},
    {"reported at zero", 0, 2000, true},
    {"much later", 5000, 5000U + 0x7FFFFFFFU, false},
};

} // namespace

TEST(FinderPass, NewDevices_AreAppendedInTheOrderOfTheirKeysWithinAPass) {
  OpenFinder finder({MakeCamera("c"), MakeCamera("a"), MakeCamera("b")});

  finder.Round();

  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot, "eth0 10.0.0.1 > Camera a [1]", "eth0 10.0.0.1 > Camera b [1]",
                                               "eth0 10.0.0.1 > Camera c [1]"));
}

TEST(FinderPass, DeviceThatComesLater_IsAppendedBehindTheOthers) {
  OpenFinder finder({MakeCamera("b")});
  finder.Round();
  finder.found.Answer(0, MakeCamera("a"));

  finder.Round();

  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot, "eth0 10.0.0.1 > Camera b [1]", "eth0 10.0.0.1 > Camera a [1]"));
}

TEST(FinderPass, Age_AsTheTableSays_DropsADevice) {
  for (const AgeCase& row : kAges) {
    SCOPED_TRACE(row.name);
    OpenFinder finder({MakeCamera("cam")});
    finder.nowMs = row.reportedAt;
    finder.Round();
    finder.nowMs = row.passAt;

    finder.Refresh();

    EXPECT_EQ(finder.tree.Find("Camera cam") != nullptr, row.isShown);
  }
}

TEST(FinderPass, DeviceThatGrewTooOld_LeavesTheMapAndComesBackAnew) {
  OpenFinder finder({MakeCamera("cam")});
  finder.Round();
  const krgui::TreeItemInfo* const node = finder.tree.Find("Camera cam")->info;
  finder.nowMs += 2001;

  finder.Refresh();
  EXPECT_FALSE(finder.model.FindKey(node).has_value());

  finder.Round();
  EXPECT_NE(finder.tree.Find("Camera cam"), nullptr);
}

TEST(FinderPass, DeviceThatGrewTooOldUnseen_LeavesTheMapToo) {
  OpenFinder finder({MakeUnreachableCamera("cam")});
  finder.Round();
  finder.nowMs += 2001;
  finder.Refresh();

  finder.Refresh(true);

  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot));
  EXPECT_EQ(finder.tree.appendCount, 1);
}

TEST(FinderPass, DeviceThatIsReportedAgainAndAgain_Stays) {
  OpenFinder finder({MakeCamera("cam")});
  for (int round = 0; round < 5; ++round) {
    finder.Round();
    finder.nowMs += 1900;
  }

  EXPECT_EQ(finder.tree.appendCount, 2);
  EXPECT_EQ(finder.tree.deleteCount, 0);
}

TEST(FinderPass, UnreachableDevice_IsShownOnlyOnRequest) {
  OpenFinder finder({MakeUnreachableCamera("cam")});

  finder.Round(false);
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot));

  finder.Refresh(true);
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot, "eth0 10.0.0.1 > Camera cam [3]"));
  EXPECT_EQ(WriteRow(*finder.tree.Find("Camera cam")->info, "IP Configuration"),
            "IP Configuration = Invalid on this interface [red]");

  finder.Refresh(false);
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot));
}

TEST(FinderPass, DeviceThatBecomesUnreachable_Leaves_AndReturnsRepaired) {
  OpenFinder finder({MakeCamera("cam")});
  finder.Round();

  finder.SetAnswers({{0, MakeUnreachableCamera("cam")}});
  finder.Round();
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot));

  finder.SetAnswers({{0, MakeCamera("cam")}});
  finder.Round();
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot, "eth0 10.0.0.1 > Camera cam [1]"));
}

TEST(FinderPass, DeviceThatBecomesUnreachableWhileThoseAreShown_KeepsItsItemWithAnotherPicture) {
  OpenFinder finder({MakeCamera("cam")});
  finder.Round(true);
  const auto* const item = finder.tree.Find("Camera cam");

  finder.SetAnswers({{0, MakeUnreachableCamera("cam")}});
  finder.Round(true);

  EXPECT_EQ(finder.tree.Find("Camera cam"), item);
  EXPECT_EQ(item->icon, 3);
}

TEST(FinderPass, NameThatChanges_IsShown) {
  OpenFinder finder({MakeCamera("cam")});
  finder.Round();

  finder.SetAnswers({{0, MakeRenamed(MakeCamera("cam"), "<b>\xF0\x9F\x93\xB7</b>")}});
  finder.Round();

  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot, "eth0 10.0.0.1 > <b>\xF0\x9F\x93\xB7</b> [1]"));
}

TEST(FinderPass, NothingChanged_AsksTheTreeForNothing) {
  OpenFinder finder({MakeCamera("a"), MakeCamera("b")});
  finder.Round();

  finder.Round();
  finder.Refresh();

  EXPECT_EQ(finder.tree.syncCount, 0);
  EXPECT_EQ(finder.tree.appendCount, 3);
  EXPECT_EQ(finder.tree.deleteCount, 0);
}

TEST(FinderPass, EveryPass_ExpandsTheRoots) {
  OpenFinder finder({});

  finder.Refresh();
  finder.Refresh();

  EXPECT_EQ(finder.tree.expandCount, 3) << "one for building";
}

TEST(FinderPass, SelectedNode_HasItsListsBroughtUpToDate) {
  OpenFinder finder({MakeCamera("a"), MakeCamera("b")});
  finder.Round();

  finder.Refresh();
  EXPECT_THAT(finder.tree.updatedLists, IsEmpty()) << "nothing selected";

  finder.tree.Select(finder.tree.Find("Camera b"));
  finder.Refresh();
  EXPECT_THAT(finder.tree.updatedLists, ElementsAre("Camera b"));

  finder.tree.Select(finder.tree.items.front().get());
  finder.Refresh();
  EXPECT_THAT(finder.tree.updatedLists, ElementsAre("Camera b", "eth0 10.0.0.1"));
}

TEST(FinderPass, SelectedDeviceThatGrewTooOld_LivesWhileTheTreeTellsTheChange) {
  OpenFinder finder({MakeCamera("cam")});
  finder.Round();
  finder.tree.Select(finder.tree.Find("Camera cam"));
  const krgui::TreeItemInfo* const node = finder.tree.GetSelected();
  int changeCount = 0;
  finder.tree.onSelectionChange = [&] {
    ++changeCount;
    EXPECT_TRUE(finder.model.FindKey(node).has_value());
    EXPECT_EQ(finder.tree.GetSelected(), nullptr);
  };
  finder.nowMs += 2001;

  finder.Refresh();

  EXPECT_EQ(changeCount, 1);
  EXPECT_FALSE(finder.model.FindKey(node).has_value());
}

TEST(FinderPass, DeviceCarriedToAnotherController_MovesOnceTheFormerIsSilent) {
  FinderBench bench({MakeController("usb0"), MakeController("usb1")});
  bench.SetAnswers({{0, MakeU3VCamera("1")}});
  bench.Build();
  bench.Round();

  bench.SetAnswers({{1, MakeU3VCamera("1")}});
  bench.nowMs += 1000;
  bench.Round();
  EXPECT_EQ(bench.tree.Write().back(), "Controller usb0 > Camera 1 [21]");

  bench.nowMs += 1001;
  bench.Round();
  EXPECT_EQ(bench.tree.Write().back(), "Controller usb1 > Camera 1 [21]");
  EXPECT_EQ(bench.tree.deleteCount, 1);
}

TEST(FinderPass, DevicesWithOneGUIDOnTwoControllers_StayUnderOneItem) {
  FinderBench bench({MakeController("usb0"), MakeController("usb1")});
  bench.SetAnswers({{0, MakeU3VCamera("1")}, {1, MakeU3VCamera("1")}});
  bench.Build();

  for (int round = 0; round < 10; ++round) {
    bench.Round();
    bench.nowMs += 1000;
  }

  EXPECT_EQ(bench.tree.appendCount, 3);
  EXPECT_EQ(bench.tree.deleteCount, 0);
}

TEST(FinderPass, DeviceCarriedToAControllerThatIsNotListed_Leaves) {
  FinderBench bench({MakeController("usb0")});
  bench.SetAnswers({{0, MakeU3VCamera("1")}});
  bench.Build();
  bench.Round();
  bench.found.GetTransport().interfaces.push_back(MakeController("usb1"));
  bench.SetAnswers({{1, MakeU3VCamera("1")}});
  bench.nowMs += 1500;
  bench.Round();

  bench.nowMs += 501;
  bench.Round();

  EXPECT_THAT(bench.tree.Write(), ElementsAre("Controller usb0 [17]"));
}

TEST(FinderPass, AThousandDevices_AppearChangeAndLeave) {
  constexpr int kCount = 1000;
  OpenFinder finder({});
  for (int i = 0; i < kCount; ++i)
    finder.found.Answer(0, MakeCamera(KrString(std::to_string(i))));

  finder.Round();
  EXPECT_EQ(finder.tree.items.size(), kCount + 1U);

  finder.Round();
  EXPECT_EQ(finder.tree.syncCount, 0);

  finder.nowMs += 2001;
  finder.Refresh();
  EXPECT_THAT(finder.tree.Write(), ElementsAre(kRoot));
}
