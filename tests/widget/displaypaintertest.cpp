// How frames get from a display's content to its surface: how long they wait, and what a paint gets to paint.

#include "display/displaypainter.h"
#include "logic/display/displaycontent.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <vector>

namespace krgui {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Outcome = FrameTarget::Outcome;

/// Gives what another surface gives as long as it is told to, and remembers for how long it was to wait.
class ReluctantSurface : public DrawingSurface {
public:
  explicit ReluctantSurface(SurfaceKind aKind) : mKind(aKind) {}

  SurfaceKind GetKind() const override { return mKind; }
  std::optional<Target> Begin(std::int32_t aWidth, std::int32_t aHeight, std::chrono::milliseconds aLimit) override {
    limits.push_back(aLimit);
    return isWilling ? mSurface->Begin(aWidth, aHeight, aLimit) : std::nullopt;
  }
  bool Present(const PixelRect& aRect, std::uint64_t aContentTag) override {
    return mSurface->Present(aRect, aContentTag);
  }
  const QImage* GetPicture() const override {
    return mKind == SurfaceKind::Invalidation ? mSurface->GetPicture() : nullptr;
  }

  bool isWilling = true;
  std::vector<std::chrono::milliseconds> limits;

private:
  const SurfaceKind mKind;
  QWidget mWidget;
  const std::unique_ptr<DrawingSurface> mSurface = MakeDrawingSurface(mWidget, SurfaceKind::Invalidation);
};

/// A content that draws to a painter with such a surface.
struct PaintedContent {
  explicit PaintedContent(SurfaceKind aKind = SurfaceKind::Invalidation) : surface(aKind) {
    painter.SetSurface(&surface);
    content.SetTarget(&painter);
  }
  ~PaintedContent() { content.SetTarget(nullptr); }

  DisplayContent::Paint Show() {
    KrBuffer image;
    EXPECT_TRUE(image.GetImage()->Alloc(4, 4, KrPixel::Mono8).IsOK());
    auto paint = DisplayContent::Paint::NotNeeded;
    EXPECT_TRUE(content.Display(image.GetImage(), paint).IsOK());
    return paint;
  }
  Outcome Paint(std::int32_t aWidth, std::int32_t aHeight) { return content.PaintWindow(aWidth, aHeight, 18).outcome; }

  DisplayContent content;
  ReluctantSurface surface;
  DisplayPainter painter{content.GetStyle()};
};

Frame MakeFrame(Clock::time_point aCallBegin) {
  Frame frame;
  frame.view.clientRect = {0, 0, 10, 10};
  frame.callBegin = aCallBegin;
  return frame;
}

TEST(DisplayPainter, PaintOfAPicture_GivesItOnce) {
  PaintedContent display;
  display.Show();

  EXPECT_EQ(display.Paint(30, 20), Outcome::Shown);

  EXPECT_EQ(display.painter.TakePicture().size(), QSize(30, 20));
  EXPECT_TRUE(display.painter.TakePicture().isNull());
}

TEST(DisplayPainter, PaintWithoutMemory_GivesNoOlderPictureAndAsksForAnother) {
  PaintedContent display;
  display.Show();
  ASSERT_EQ(display.Paint(30, 20), Outcome::Shown);
  ASSERT_FALSE(display.painter.TakePicture().isNull());
  display.surface.isWilling = false;

  EXPECT_EQ(display.Paint(60, 40), Outcome::Dropped);

  EXPECT_TRUE(display.painter.TakePicture().isNull());
  display.surface.isWilling = true;
  EXPECT_EQ(display.Paint(60, 40), Outcome::Shown);
  EXPECT_EQ(display.painter.TakePicture().size(), QSize(60, 40));
}

TEST(DisplayPainter, FrameBetweenPaints_WaitsForTheNextOne) {
  PaintedContent display;
  display.Show();
  display.Paint(30, 20);

  EXPECT_EQ(display.Show(), DisplayContent::Paint::Needed);

  EXPECT_EQ(display.content.GetStatistics().shown, 1u);
  EXPECT_EQ(display.Paint(30, 20), Outcome::Shown);
  EXPECT_EQ(display.content.GetStatistics().shown, 2u);
}

TEST(DisplayPainter, PaintOfASurfaceThatShowsItself_LeavesNoPicture) {
  PaintedContent display(SurfaceKind::SharedDescriptor);
  display.Show();

  EXPECT_EQ(display.Paint(30, 20), Outcome::Shown);

  EXPECT_TRUE(display.painter.TakePicture().isNull());
}

TEST(DisplayPainter, ClientAreaAboveWhatTheScreenCanName_IsShownInPart) {
  PaintedContent display;
  display.Show();

  EXPECT_EQ(display.Paint(32768, 20), Outcome::Shown);

  EXPECT_EQ(display.painter.TakePicture().size(), QSize(32767, 20));
}

TEST(DisplayPainter, Frame_WaitsForWhatIsLeftOfItsLimit) {
  PaintedContent display(SurfaceKind::SharedDescriptor);
  FrameTarget::Times times;

  display.painter.Draw(MakeFrame(Clock::now() + 1h), times);
  display.painter.Paint(MakeFrame(Clock::now() + 1h), times);
  display.painter.Draw(MakeFrame(Clock::now() - 80ms), times);
  display.painter.Paint(MakeFrame(Clock::now() - 20ms), times);

  EXPECT_EQ(display.surface.limits, (std::vector<std::chrono::milliseconds>{80ms, 20ms, 0ms, 0ms}));
}

TEST(DisplayPainter, FrameOfACall_WaitsAsLongAsItsCall) {
  PaintedContent display(SurfaceKind::SharedDescriptor);
  const Clock::time_point begin = Clock::now();
  display.Show();
  display.Paint(30, 20);

  display.Show();

  const auto past = std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - begin);
  ASSERT_EQ(display.surface.limits.size(), 2u);
  EXPECT_LE(display.surface.limits[0], 20ms);
  EXPECT_GE(display.surface.limits[0], 19ms - past);
  EXPECT_LE(display.surface.limits[1], 80ms);
  EXPECT_GE(display.surface.limits[1], 79ms - past);
}

} // namespace

} // namespace krgui
