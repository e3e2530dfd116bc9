// What turns of the wheel and commands mean, without a window.

#include "logic/display/viewcommand.h"
#include "logic/display/wheelsteps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace krgui {

namespace {

ViewGeometry MakeScrolledView() {
  ViewGeometry view;
  view.SetClient(400, 300, 18);
  view.ZoomOneToOne();
  view.Update(1000, 800);
  return view;
}

} // namespace

TEST(WheelSteps, Turns_OfAnySize_AddUpToWholeSteps) {
  const struct {
    const char* name;
    std::vector<std::int32_t> turns;
    std::vector<std::int32_t> steps;
  } rows[] = {
      {"whole steps", {120, -120, 240}, {1, -1, 2}},
      {"halves", {60, 60, 60, 60}, {0, 1, 0, 1}},
      {"what is beyond a step counts for the next", {50, 100, 90}, {0, 1, 1}},
      {"turning back takes away first", {100, -100, -119, -1}, {0, 0, 0, -1}},
      {"a step and a part the other way", {-150, 30, 120}, {-1, 0, 1}},
      {"nothing", {0, 0}, {0, 0}},
  };
  for (const auto& row : rows) {
    WheelSteps wheel;
    for (std::size_t i = 0; i < row.turns.size(); ++i)
      EXPECT_EQ(wheel.Add(row.turns[i]), row.steps[i]) << row.name << ", turn " << i;
  }
}

TEST(WheelSteps, ExtremeTurns_DoNotOverflow) {
  constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
  WheelSteps wheel;

  EXPECT_EQ(wheel.Add(kGreatest), kGreatest / 120);
  EXPECT_GT(wheel.Add(kGreatest), 0);
  EXPECT_LT(wheel.Add(std::numeric_limits<std::int32_t>::min()), 0);
}

TEST(ViewCommand, EachID_DoesWhatItsNameSays) {
  const struct {
    const char* name;
    int id;
    ZoomMode mode;
    double factor;
  } rows[] = {
      {"zoom 1:1", 32777, ZoomMode::OneToOne, 1.0},
      {"zoom out", 32779, ZoomMode::Custom, 1.0 / 1.5},
      {"zoom in", 32780, ZoomMode::Custom, 1.5},
      {"zoom fit", 32781, ZoomMode::Fit, 0.375},
  };
  for (const auto& row : rows) {
    ViewGeometry view = MakeScrolledView();

    EXPECT_TRUE(PerformViewCommand(view, row.id, {})) << row.name;

    view.Update(1000, 800);
    EXPECT_EQ(view.GetZoomMode(), row.mode) << row.name;
    EXPECT_DOUBLE_EQ(view.GetFactor(), row.factor) << row.name;
  }
}

TEST(ViewCommand, CentreHere_TakesTheContextPoint) {
  ViewGeometry view = MakeScrolledView();
  const std::int32_t horizontal = view.GetScrollPosition(ViewAxis::Horizontal);
  const std::int32_t vertical = view.GetScrollPosition(ViewAxis::Vertical);

  EXPECT_TRUE(PerformViewCommand(view, 32778, {250, 100}));

  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Horizontal), horizontal + 50);
  EXPECT_EQ(view.GetScrollPosition(ViewAxis::Vertical), vertical - 50);
}

TEST(ViewCommand, IDThatIsNone_ChangesNothing) {
  ViewGeometry view = MakeScrolledView();

  EXPECT_FALSE(PerformViewCommand(view, 32776, {250, 100}));

  EXPECT_EQ(view.GetZoomMode(), ZoomMode::OneToOne);
}

TEST(ZoomBySteps, AnyCount_ZoomsSoOften) {
  for (const int count : {0, 1, 2, -1, -3}) {
    ViewGeometry view = MakeScrolledView();

    ZoomBySteps(view, kWheelZoomStep, count);

    EXPECT_NEAR(view.GetFactor(), std::pow(1.1, count), 1e-12) << count;
    EXPECT_EQ(view.GetZoomMode(), count == 0 ? ZoomMode::OneToOne : ZoomMode::Custom) << count;
  }
}

} // namespace krgui
