#include "logic/finder/finderkinds.h"

#include <gtest/gtest.h>

using krgui::FinderActions;
using krgui::FinderKinds;
using krgui::GetFinderActions;

namespace {

constexpr KrDeviceInfoType kAllKinds[] = {KrDeviceInfoType::GEV, KrDeviceInfoType::TolvanProtocol,
                                          KrDeviceInfoType::USB, KrDeviceInfoType::U3V};
constexpr auto kUnknownKind = static_cast<KrDeviceInfoType>(7);

struct ActionCase {
  const char* name;
  KrDeviceInfoType kind;
  bool accept;
  bool setIPAddress;
};

void ExpectActions(const FinderKinds& aKinds, const ActionCase& aRow) {
  SCOPED_TRACE(aRow.name);

  const FinderActions actions = GetFinderActions(aKinds, aRow.kind);

  EXPECT_EQ(actions.accept, aRow.accept);
  EXPECT_EQ(actions.setIPAddress, aRow.setIPAddress);
  EXPECT_EQ(actions.showMenu, aRow.setIPAddress);
}

void SetSelectable(FinderKinds& aKinds, bool aIsSelectable) {
  aKinds.gev.selectable = aIsSelectable;
  aKinds.u3v.selectable = aIsSelectable;
  aKinds.tolvanProtocol.selectable = aIsSelectable;
}

} // namespace

TEST(FinderKinds, FromTheStart_EverythingIsListedAndAllButTheOlderProtocolSelectable) {
  const FinderKinds kinds;

  for (const KrDeviceInfoType kind : kAllKinds)
    EXPECT_TRUE(kinds.IsListed(kind));
  EXPECT_TRUE(kinds.IsSelectable(KrDeviceInfoType::GEV));
  EXPECT_TRUE(kinds.IsSelectable(KrDeviceInfoType::U3V));
  EXPECT_FALSE(kinds.IsSelectable(KrDeviceInfoType::TolvanProtocol));
  EXPECT_FALSE(kinds.IsSelectable(KrDeviceInfoType::USB));
}

TEST(FinderKinds, UnknownKind_IsNeitherListedNorSelectable) {
  const FinderKinds kinds;

  EXPECT_FALSE(kinds.IsListed(kUnknownKind));
  EXPECT_FALSE(kinds.IsSelectable(kUnknownKind));
  EXPECT_FALSE(GetFinderActions(kinds, kUnknownKind).accept);
}

TEST(FinderKinds, ListedInterfaces_FollowTheKindsBehindThem) {
  struct {
    const char* name;
    bool gev, u3v, tolvan;
    bool areAdaptersListed;
  } const kRows[] = {
      {"nothing", false, false, false, false},
      {"GigE Vision alone", true, false, false, true},
      {"the older protocol alone", false, false, true, true},
      {"both", true, true, true, true},
      {"USB3 Vision alone", false, true, false, false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    FinderKinds kinds;
    kinds.gev.listed = row.gev;
    kinds.u3v.listed = row.u3v;
    kinds.tolvanProtocol.listed = row.tolvan;

    EXPECT_EQ(kinds.IsListed(KrInterfaceType::NetworkAdapter), row.areAdaptersListed);
    EXPECT_EQ(kinds.IsNetworkListed(), row.areAdaptersListed);
    EXPECT_EQ(kinds.IsListed(KrInterfaceType::USBHostController), row.u3v);
    EXPECT_EQ(kinds.IsListed(KrDeviceInfoType::GEV), row.gev);
    EXPECT_EQ(kinds.IsListed(KrDeviceInfoType::TolvanProtocol), row.tolvan);
    EXPECT_EQ(kinds.IsListed(KrDeviceInfoType::U3V), row.u3v);
    EXPECT_EQ(kinds.IsListed(KrDeviceInfoType::USB), row.u3v);
  }
}

TEST(FinderKinds, Actions_OnSelectableKinds_AddressesAreOnlySetOnTheNetwork) {
  FinderKinds kinds;
  SetSelectable(kinds, true);
  const ActionCase kRows[] = {{"GigE Vision", KrDeviceInfoType::GEV, true, true},
                              {"older protocol", KrDeviceInfoType::TolvanProtocol, true, true},
                              {"USB3 Vision", KrDeviceInfoType::U3V, true, false},
                              {"plain USB", KrDeviceInfoType::USB, false, false}};

  for (const ActionCase& row : kRows)
    ExpectActions(kinds, row);
}

TEST(FinderKinds, Actions_OnKindsThatCannotBeSelected_ThereAreNone) {
  FinderKinds kinds;
  SetSelectable(kinds, false);

  for (const KrDeviceInfoType kind : kAllKinds)
    ExpectActions(kinds, {"not selectable", kind, false, false});
}

TEST(FinderKinds, Actions_OneKindSelectable_LeavesTheOthersAlone) {
  FinderKinds kinds;
  SetSelectable(kinds, false);
  kinds.tolvanProtocol.selectable = true;

  ExpectActions(kinds, {"older protocol", KrDeviceInfoType::TolvanProtocol, true, true});
  ExpectActions(kinds, {"GigE Vision", KrDeviceInfoType::GEV, false, false});
  ExpectActions(kinds, {"USB3 Vision", KrDeviceInfoType::U3V, false, false});
}
