#include "region/regiongesture.h"

#include <gtest/gtest.h>

using namespace krviewer;

namespace {

constexpr double kReach = 4;

RegionAxis MakeAxis(RegionSpan aPresent, std::int64_t aExtent) {
  RegionAxis axis;
  axis.present = aPresent;
  axis.offsetIncrement = 2;
  axis.lengthMin = 16;
  axis.lengthIncrement = 8;
  axis.extent = aExtent;
  return axis;
}

// A picture of 400 x 200 pixels of a camera, each half a pixel of the widget, 10 from its left and 20 from its top.
KrDisplayMapping MakeMapping() {
  KrDisplayMapping mapping;
  mapping.imageWidth = 400;
  mapping.imageHeight = 200;
  mapping.viewWidth = 220;
  mapping.viewHeight = 140;
  mapping.originX = 10;
  mapping.originY = 20;
  mapping.scaleX = 0.5;
  mapping.scaleY = 0.5;
  return mapping;
}

class RegionGestureTest : public testing::Test {
protected:
  void DragTo(double aFromX, double aFromY, double aToX, double aToY) {
    mGesture.Press(aFromX, aFromY, kReach);
    mGesture.Drag(aToX, aToY);
    mGesture.Release();
  }

  // The sensor has 1000 x 600 pixels; the region begins at 100, 40.
  RegionLimits mLimits{MakeAxis({100, 400}, 1000), MakeAxis({40, 200}, 600)};
  RegionGesture mGesture{mLimits, MakeMapping()};
};

} // namespace

TEST_F(RegionGestureTest, AtFirst_IsTheCamerasRegionAroundAllOfThePicture) {
  EXPECT_EQ(mGesture.GetRegion(), (Region{{100, 400}, {40, 200}}));
  EXPECT_EQ(mGesture.GetFrame(), (RegionFrame{10, 20, 210, 120}));
}

TEST_F(RegionGestureTest, DragOnThePicture_DrawsARegionThatCountsFromTheSensorsCorner) {
  DragTo(60, 45, 110, 85); // 100, 50 to 200, 130 of the picture.

  EXPECT_EQ(mGesture.GetRegion(), (Region{{200, 104}, {90, 80}})); // 100 long is nearest to 96 or 104.
}

TEST_F(RegionGestureTest, DragBackwards_DrawsTheSame) {
  DragTo(108, 85, 60, 45);

  EXPECT_EQ(mGesture.GetRegion(), (Region{{200, 96}, {90, 80}}));
}

TEST_F(RegionGestureTest, DragFromInsideADrawnRegion_MovesIt) {
  DragTo(60, 45, 108, 85);

  DragTo(80, 60, 90, 55);

  EXPECT_EQ(mGesture.GetRegion(), (Region{{220, 96}, {80, 80}}));
}

TEST_F(RegionGestureTest, DragFromOutsideADrawnRegion_DrawsAnother) {
  DragTo(60, 45, 108, 85);

  DragTo(150, 100, 166, 116);

  EXPECT_EQ(mGesture.GetRegion(), (Region{{380, 32}, {200, 32}}));
}

TEST_F(RegionGestureTest, DragOfAnEdge_LeavesTheOthers) {
  DragTo(60, 45, 108, 85);

  DragTo(108, 60, 128, 10); // The right edge.

  EXPECT_EQ(mGesture.GetRegion(), (Region{{200, 136}, {90, 80}}));
}

TEST_F(RegionGestureTest, DragOfACorner_MovesBothEdges) {
  DragTo(60, 45, 108, 85);

  DragTo(61, 46, 53, 42); // Upper left, by 16 and 8 pixels of the camera.

  EXPECT_EQ(mGesture.GetRegion(), (Region{{184, 112}, {82, 88}}));
}

TEST_F(RegionGestureTest, DragOfAnEdgeBeyondTheOther_TurnsTheRegionOver) {
  DragTo(60, 45, 108, 85);

  DragTo(60, 60, 140, 60); // The left edge goes to 360, beyond the right one at 296.

  EXPECT_EQ(mGesture.GetRegion().x, (RegionSpan{296, 64}));
}

TEST_F(RegionGestureTest, DragBeyondThePicture_ReachesAllOfTheSensor) {
  DragTo(210, 120, 2000, 2000); // The lower right corner.

  EXPECT_EQ(mGesture.GetRegion(), (Region{{100, 896}, {40, 560}})); // Of 900 what is on the increments.
}

TEST_F(RegionGestureTest, DragThatIsCancelled_LeavesWhatWasBefore) {
  DragTo(60, 45, 108, 85);
  const Region before = mGesture.GetRegion();

  mGesture.Press(80, 60, kReach);
  mGesture.Drag(90, 90);
  mGesture.CancelDrag();

  EXPECT_EQ(mGesture.GetRegion(), before);
  EXPECT_FALSE(mGesture.IsDragging());
}

TEST_F(RegionGestureTest, PictureZoomedDuringADrag_GoesOnFromTheSamePixel) {
  mGesture.Press(60, 45, kReach);
  KrDisplayMapping zoomed = MakeMapping();
  zoomed.scaleX = 1;
  zoomed.scaleY = 1;
  mGesture.SetMapping(zoomed);

  mGesture.Drag(206, 150); // 196, 130 of the picture.

  EXPECT_EQ(mGesture.GetRegion(), (Region{{200, 96}, {90, 80}}));
}

TEST_F(RegionGestureTest, Steps_MoveAndStretchByIncrements) {
  mGesture.Move(3, -2);
  EXPECT_EQ(mGesture.GetRegion(), (Region{{106, 400}, {36, 200}}));

  mGesture.Stretch(-2, 1);
  EXPECT_EQ(mGesture.GetRegion(), (Region{{106, 384}, {36, 208}}));
}

TEST_F(RegionGestureTest, TypedRegion_BecomesTheNearestValid) {
  mGesture.SetRegion({{333, 333}, {-5, 5000}});

  EXPECT_EQ(mGesture.GetRegion(), (Region{{334, 336}, {0, 600}}));
}

TEST_F(RegionGestureTest, Grip_IsOfTheEdgesNearby) {
  DragTo(60, 45, 108, 85); // 60, 45 to 108, 85 of the widget.
  using Kind = RegionGrip::Kind;

  EXPECT_EQ(mGesture.FindGrip(60, 45, kReach), (RegionGrip{Kind::Edges, -1, -1}));
  EXPECT_EQ(mGesture.FindGrip(111, 60, kReach), (RegionGrip{Kind::Edges, 1, 0}));
  EXPECT_EQ(mGesture.FindGrip(80, 88, kReach), (RegionGrip{Kind::Edges, 0, 1}));
  EXPECT_EQ(mGesture.FindGrip(80, 60, kReach), (RegionGrip{Kind::Inside, 0, 0}));
  EXPECT_EQ(mGesture.FindGrip(113, 60, kReach), RegionGrip());
  EXPECT_EQ(mGesture.FindGrip(60, 100, kReach), RegionGrip());
}
