// What holds of the view geometry for any sizes, factors and positions, and its agreement with a plain transcription.

#include "logic/display/viewgeometry.h"

#include "krbase/krlogger.h"
#include "plainview.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

using namespace krgui;

namespace {

constexpr std::int32_t kBar = ViewGeometry::kBarThickness;

PixelRect ToRect(const plain::Rect& aRect) {
  return {aRect.left, aRect.top, aRect.right, aRect.bottom};
}

class Dice {
public:
  explicit Dice(unsigned aSeed) : mRandom(aSeed) {}
  int Roll(int aFrom, int aTo) { return std::uniform_int_distribution<int>(aFrom, aTo)(mRandom); }
  /// Small ones as often as large ones.
  int RollSize(int aGreatest) {
    return static_cast<int>(std::exp(std::uniform_real_distribution<>(0.0, std::log(aGreatest + 0.99))(mRandom)));
  }

private:
  std::mt19937 mRandom;
};

/// The geometry and its transcription, told the same.
struct Twins {
  ViewGeometry view;
  plain::View plainView;
  int imageWidth = 1;
  int imageHeight = 1;

  void SetClient(int aWidth, int aHeight) {
    view.SetClient(aWidth, aHeight, kBar);
    if (plainView.client.right != aWidth || plainView.client.bottom != aHeight)
      plainView.dirty = true;
    plainView.client = {0, 0, aWidth, aHeight};
  }

  void SetImage(int aWidth, int aHeight) {
    imageWidth = aWidth;
    imageHeight = aHeight;
    view.MarkDirty();
    plainView.dirty = true;
  }

  void Zoom(double aStep, bool aIsIn) {
    aIsIn ? view.ZoomIn(aStep) : view.ZoomOut(aStep);
    plainView.factor = aIsIn ? plainView.factor * aStep : plainView.factor / aStep;
    plainView.mode = 2;
  }

  void Scroll(ViewAxis aAxis, int aCode, int aThumb) {
    view.Scroll(aAxis, static_cast<ScrollCode>(aCode), aThumb);
    if (aAxis == ViewAxis::Horizontal)
      plain::View::Scroll(plainView.hBar, plainView.hMax, plainView.hPos, plainView.hRel, aCode, aThumb);
    else
      plain::View::Scroll(plainView.vBar, plainView.vMax, plainView.vPos, plainView.vRel, aCode, aThumb);
  }

  /// One thing that a user, an application or a camera may do.
  void Act(Dice& aDice) {
    const ViewAxis axis = aDice.Roll(0, 1) ? ViewAxis::Horizontal : ViewAxis::Vertical;
    switch (aDice.Roll(0, 9)) {
    case 0:
      return SetClient(aDice.RollSize(3000), aDice.RollSize(3000));
    case 1:
      return SetImage(aDice.RollSize(9000), aDice.RollSize(9000));
    case 2:
      view.ZoomOneToOne();
      plainView.mode = 1;
      return;
    case 3:
      view.ZoomFit();
      plainView.mode = 0;
      return;
    case 4:
    case 5:
      if (plainView.factor < 200)
        Zoom(aDice.Roll(0, 1) ? 1.5 : 1.1, true);
      return;
    case 6:
      return Zoom(aDice.Roll(0, 1) ? 1.2 : 1.1, false);
    case 7:
      return Scroll(axis, aDice.Roll(0, 8), aDice.Roll(0, 5000));
    case 8: {
      const PixelPoint point{aDice.Roll(0, 3000), aDice.Roll(0, 3000)};
      view.CentreOn(point);
      return plainView.CentreOn(point.x, point.y);
    }
    default: {
      const int position = aDice.Roll(0, 2000);
      plain::Bar& bar = axis == ViewAxis::Horizontal ? plainView.hBar : plainView.vBar;
      const bool isInside = position <= bar.maximum;
      if (isInside)
        bar.position = position;
      EXPECT_EQ(view.SetBarPosition(axis, position), isInside);
    }
    }
  }
};

void ExpectBar(const ScrollBarModel& aBar, const plain::Bar& aPlain) {
  EXPECT_EQ(aBar.GetMaximum(), aPlain.maximum);
  EXPECT_EQ(aBar.GetPage(), aPlain.page);
  EXPECT_EQ(aBar.GetPosition(), aPlain.position);
}

void ExpectChange(const BarChange& aChange, bool aIsPlaced, const plain::Rect& aPlace, bool aIsHidden) {
  EXPECT_EQ(aChange.kind == BarChange::Kind::Hide, aIsHidden);
  EXPECT_EQ(aChange.kind == BarChange::Kind::Place, aIsPlaced);
  if (aIsPlaced) {
    EXPECT_EQ(aChange.rect, ToRect(aPlace));
  }
}

void ExpectSame(const Twins& aTwins, const BarChanges& aChanges, const std::vector<KrLogRecord>& aRecords) {
  const ViewArea& area = aTwins.view.GetArea();
  const plain::View& plainView = aTwins.plainView;
  EXPECT_EQ(static_cast<int>(aTwins.view.GetZoomMode()), plainView.mode);
  EXPECT_EQ(aTwins.view.GetFactor(), plainView.factor);
  EXPECT_EQ(area.clientRect, ToRect(plainView.client));
  EXPECT_EQ(area.viewRect, ToRect(plainView.view));
  EXPECT_EQ(area.destinationRect, ToRect(plainView.destination));
  EXPECT_EQ(area.sourceRect, ToRect(plainView.source));
  EXPECT_EQ(area.cornerRect, ToRect(plainView.corner));
  EXPECT_EQ(aTwins.view.GetScrollPosition(ViewAxis::Horizontal), plainView.hPos);
  EXPECT_EQ(aTwins.view.GetScrollPosition(ViewAxis::Vertical), plainView.vPos);
  ExpectBar(aTwins.view.GetBar(ViewAxis::Horizontal), plainView.hBar);
  ExpectBar(aTwins.view.GetBar(ViewAxis::Vertical), plainView.vBar);
  const auto isHidden = [&](int aMessage) { return std::ranges::count(plainView.posted, aMessage) == 1; };
  ExpectChange(aChanges.horizontal, plainView.hPlaced, plainView.hPlace, isHidden(0x1001));
  ExpectChange(aChanges.vertical, plainView.vPlaced, plainView.vPlace, isHidden(0x1002));
  std::vector<std::string> texts;
  for (const KrLogRecord& record : aRecords)
    texts.push_back(record.text.ToUtf8());
  EXPECT_EQ(texts, plainView.warnings);
}

/// Any view that a user can have reached, in any sizes.
ViewGeometry MakeAnyView(Dice& aDice, double aFactor) {
  ViewGeometry view;
  view.SetClient(aDice.RollSize(8000), aDice.RollSize(8000), kBar);
  view.ZoomIn(aFactor);
  return view;
}

void ExpectInside(const ViewArea& aArea) {
  const PixelRect& source = aArea.sourceRect;
  ASSERT_GE(source.left, 0);
  ASSERT_LE(source.left, source.right);
  ASSERT_LE(source.right, static_cast<int>(aArea.imageWidth));
  ASSERT_GE(source.top, 0);
  ASSERT_LE(source.top, source.bottom);
  ASSERT_LE(source.bottom, static_cast<int>(aArea.imageHeight));

  const PixelRect& destination = aArea.destinationRect;
  ASSERT_GE(destination.left, 0);
  ASSERT_GE(destination.top, 0);
  ASSERT_LE(destination.right, aArea.viewRect.right);
  ASSERT_LE(destination.bottom, aArea.viewRect.bottom);

  const PixelRect copy = aArea.GetCopyRect();
  ASSERT_EQ(copy.IsEmpty(), destination.IsEmpty());
  ASSERT_GE(copy.left, 0);
  ASSERT_LE(copy.right, static_cast<int>(aArea.imageWidth));
  ASSERT_GE(copy.top, 0);
  ASSERT_LE(copy.bottom, static_cast<int>(aArea.imageHeight));
}

bool AreBothScrolled(const ViewGeometry& aView, const BarChanges& aChanges) {
  return aView.GetZoomMode() == ZoomMode::Custom && aChanges.horizontal.kind != BarChange::Kind::Hide &&
         aChanges.vertical.kind != BarChange::Kind::Hide && !aView.GetArea().cornerRect.IsEmpty() &&
         aView.GetArea().viewRect.right < aView.GetArea().clientRect.right;
}

/// Zooms in and out again in any order, to where it began; false when the view was fit or lost a bar on the way.
bool ZoomThereAndBack(ViewGeometry& aView, Dice& aDice, std::uint32_t aWidth, std::uint32_t aHeight) {
  constexpr double kSteps[] = {1.1, 1.2, 1.5};
  std::vector<std::pair<double, bool>> zooms;
  for (int pairs = aDice.Roll(1, 12); pairs > 0; --pairs) {
    const double step = kSteps[aDice.Roll(0, 2)];
    zooms.insert(zooms.begin() + aDice.Roll(0, static_cast<int>(zooms.size())), {step, true});
    zooms.insert(zooms.begin() + aDice.Roll(0, static_cast<int>(zooms.size())), {step, false});
  }
  for (const auto& [step, isIn] : zooms) {
    isIn ? aView.ZoomIn(step) : aView.ZoomOut(step);
    if (const BarChanges changes = aView.Update(aWidth, aHeight); !AreBothScrolled(aView, changes))
      return false;
  }
  return true;
}

} // namespace

TEST(ViewGeometry_AnySequence, OfInput_GivesWhatThePlainRulesGive) {
  Dice dice(1);
  for (int run = 0; run < 400 && !HasFailure(); ++run) {
    Twins twins;
    twins.SetClient(dice.RollSize(3000), dice.RollSize(3000));
    twins.SetImage(dice.RollSize(9000), dice.RollSize(9000));
    for (int step = 0; step < 100 && !HasFailure(); ++step) {
      SCOPED_TRACE("run " + std::to_string(run) + ", step " + std::to_string(step));
      for (int actions = dice.Roll(1, 3); actions > 0; --actions)
        twins.Act(dice);
      const KrLogCapture log;

      const BarChanges changes = twins.view.Update(static_cast<std::uint32_t>(twins.imageWidth),
                                                   static_cast<std::uint32_t>(twins.imageHeight));

      twins.plainView.Update(twins.imageWidth, twins.imageHeight);
      ExpectSame(twins, changes, log.GetRecords());
    }
  }
}

TEST(ViewGeometry_AnySizesAndFactors, Update_KeepsTheSourceInTheImageAndTheDestinationInTheView) {
  Dice dice(2);
  const KrLogCapture log; // Positions outside the range are corrected with a warning.
  for (int run = 0; run < 20000 && !HasFailure(); ++run) {
    const double factor = std::pow(10.0, dice.Roll(-900, 900) / 100.0);
    const auto width = static_cast<std::uint32_t>(dice.RollSize(65535));
    const auto height = static_cast<std::uint32_t>(dice.RollSize(65535));
    ViewGeometry view = MakeAnyView(dice, factor);
    view.Update(width, height);
    view.Scroll(ViewAxis::Horizontal, static_cast<ScrollCode>(dice.Roll(0, 7)), dice.Roll(-1000, 100000));
    view.Scroll(ViewAxis::Vertical, static_cast<ScrollCode>(dice.Roll(0, 7)), dice.Roll(-1000, 100000));

    view.Update(width, height);

    SCOPED_TRACE("run " + std::to_string(run));
    ExpectInside(view.GetArea());
  }
}

TEST(ViewGeometry_AnyZooms, InAndOutAgain_ReturnToTheFactorAndThePosition) {
  Dice dice(3);
  const KrLogCapture log;
  int compared = 0;
  for (int run = 0; run < 20000; ++run) {
    const auto width = static_cast<std::uint32_t>(dice.Roll(100, 65535));
    const auto height = static_cast<std::uint32_t>(dice.Roll(100, 65535));
    ViewGeometry view;
    view.SetClient(dice.Roll(50, 3000), dice.Roll(50, 3000), kBar);
    view.ZoomIn(dice.Roll(10, 1000) / 100.0);
    if (const BarChanges changes = view.Update(width, height); !AreBothScrolled(view, changes))
      continue;
    for (const ViewAxis axis : {ViewAxis::Horizontal, ViewAxis::Vertical}) {
      const ScrollBarModel& bar = view.GetBar(axis);
      view.Scroll(axis, ScrollCode::ThumbTrack, dice.Roll(0, bar.GetMaximum() - bar.GetPage()));
    }
    view.Update(width, height);
    const ViewGeometry before = view;

    if (!ZoomThereAndBack(view, dice, width, height))
      continue;

    ++compared;
    ASSERT_NEAR(view.GetFactor() / before.GetFactor(), 1.0, 1e-12);
    for (const ViewAxis axis : {ViewAxis::Horizontal, ViewAxis::Vertical})
      ASSERT_LE(std::abs(view.GetScrollPosition(axis) - before.GetScrollPosition(axis)), 1);
  }
  EXPECT_GT(compared, 2000);
}

TEST(ViewGeometry_ExtremeSizesAndFactors, AnyInput_GivesRangesThatFitAndNoOverflow) {
  const KrLogCapture log;
  for (const double factor : {1e-300, 1e-9, 1.0, 1e9, 1e300})
    for (const std::uint32_t imageSize : {1u, 65535u})
      for (const int clientSize : {1, 17, 18, 19, 65535}) {
        SCOPED_TRACE(std::to_string(factor) + " times " + std::to_string(imageSize) + " in " +
                     std::to_string(clientSize));
        ViewGeometry view;
        view.SetClient(clientSize, clientSize, kBar);
        view.ZoomIn(factor);
        view.Update(imageSize, imageSize);
        for (const int thumb : {0, -2147483647 - 1, 2147483647}) {
          for (int code = 0; code <= 7; ++code) {
            view.Scroll(ViewAxis::Horizontal, static_cast<ScrollCode>(code), thumb);
            view.Scroll(ViewAxis::Vertical, static_cast<ScrollCode>(code), thumb);
            view.Update(imageSize, imageSize);
            ExpectInside(view.GetArea());
          }
          view.CentreOn({thumb, thumb});
          view.ZoomIn(1e9);
          view.Update(imageSize, imageSize);
          ExpectInside(view.GetArea());
        }

        const ScrollBarModel& bar = view.GetBar(ViewAxis::Horizontal);
        EXPECT_GE(bar.GetMaximum(), bar.GetPage());
        EXPECT_TRUE(std::isfinite(view.GetFactor()));
      }
}
