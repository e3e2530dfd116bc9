// How wide the panels beside a picture are in a page that becomes narrower and wider.

#include "page/sidewidth.h"

#include <gtest/gtest.h>

using krviewer::SideWidth;

namespace {

TEST(SideWidth, PanelsInAWiderPage_StayAsTheyAre) {
  SideWidth side;

  EXPECT_EQ(side.Fit(900, 1200, 1300), std::nullopt);
}

TEST(SideWidth, PanelsThatLeaveThePictureItsHalf_StayAsTheyAre) {
  SideWidth side;

  EXPECT_EQ(side.Fit(300, 1200, 640), std::nullopt);
}

TEST(SideWidth, PanelsThatWouldTakeMore_GiveWayAndComeBackAsThePageDoes) {
  SideWidth side;

  EXPECT_EQ(side.Fit(480, 1200, 640), 320);
  EXPECT_EQ(side.Fit(320, 640, 800), 400);
  EXPECT_EQ(side.Fit(400, 800, 1920), 480);
  EXPECT_EQ(side.Fit(480, 1920, 2000), std::nullopt);
}

TEST(SideWidth, ABoundaryThatTheUserMoved_StaysWhereItIs) {
  SideWidth side;
  ASSERT_EQ(side.Fit(480, 1200, 640), 320);

  EXPECT_EQ(side.Fit(200, 640, 1200), std::nullopt);
}

TEST(SideWidth, PanelsThatTheWindowSqueezedAtOnce_GetBackWhatTheyHad) {
  SideWidth side;
  side.NoteMove(480);

  EXPECT_EQ(side.Fit(130, 1200, 250), 125);
  side.NoteGiven(130); // Their least.

  EXPECT_EQ(side.Fit(130, 250, 1200), 480);
}

TEST(SideWidth, PanelsThatTheUserMadeNarrowerBefore_StaySo) {
  SideWidth side;
  side.NoteMove(480);
  side.NoteMove(200);

  EXPECT_EQ(side.Fit(200, 1200, 640), std::nullopt);
  EXPECT_EQ(side.Fit(200, 640, 1200), std::nullopt);
}

TEST(SideWidth, ABoundaryMovedInANarrowPage_StaysWhereItIs) {
  SideWidth side;
  ASSERT_EQ(side.Fit(480, 1200, 640), 320);
  side.NoteMove(320); // As it was given.
  side.NoteMove(250);
  side.NoteMove(320);

  EXPECT_EQ(side.Fit(320, 640, 1200), std::nullopt);
}

TEST(SideWidth, RestoredPanelsThatAreTooNarrow_BecomeUsefulWhereThereIsRoom) {
  SideWidth side;
  side.NoteRestored(90, 280);

  EXPECT_EQ(side.Fit(90, 400, 400), 200);
  EXPECT_EQ(side.Fit(200, 400, 1200), 280);
  EXPECT_EQ(side.Fit(280, 1200, 1300), std::nullopt);
}

TEST(SideWidth, RestoredPanelsThatAreWideEnough_StayAsTheyAre) {
  SideWidth side;
  side.NoteRestored(900, 280);

  EXPECT_EQ(side.Fit(900, 1200, 1200), std::nullopt);
}

TEST(SideWidth, AWidthThatTheWindowRounds_IsNoMoveOfTheUser) {
  SideWidth side;
  ASSERT_EQ(side.Fit(480, 1200, 640), 320);

  EXPECT_EQ(side.Fit(316, 640, 1200), 480);
}

} // namespace
