#include "logic/display/framerenderer.h"

#include "foreignimage.h"
#include "krbase/krlogger.h"
#include "krbuffer/krbufferconverter.h"
#include "noise.h"
#include "vectortarget.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace krgui;

namespace {

constexpr std::uint32_t kUntouched = 0x00C0FFEE;
constexpr std::uint32_t kOpaque = 0xFF000000;

/// A canvas of its own memory, with some pixels between its rows.
struct Picture {
  Picture(int aWidth, int aHeight)
      : width(aWidth), height(aHeight), pixels(static_cast<std::size_t>((aWidth + kGap) * aHeight), kUntouched) {}
  Canvas GetCanvas() { return {{pixels.data(), static_cast<std::size_t>(width + kGap)}, width, height}; }
  std::uint32_t& At(int aX, int aY) { return pixels[static_cast<std::size_t>(aY * (width + kGap) + aX)]; }

  static constexpr int kGap = 3;
  int width, height;
  std::vector<std::uint32_t> pixels;
};

ForeignImage MakeNoiseImage(int aWidth, int aHeight, KrPixelType aType, std::size_t aBytesPerPixel) {
  const auto pixels = static_cast<std::size_t>(aWidth * aHeight);
  return {static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight), aType,
          MakeNoise(pixels * aBytesPerPixel, static_cast<std::uint32_t>(aWidth + 100 * aHeight))};
}

/// The whole image converted, then each pixel of the destination looked up by itself.
Picture DrawPlainly(int aWidth, int aHeight, const ViewArea& aView, const IKrImage& aImage) {
  KrBuffer converted;
  EXPECT_TRUE(KrBufferConverter(1).Convert(&aImage, &converted, true, false).IsOK());
  const auto* image = reinterpret_cast<const std::uint32_t*>(converted.GetDataPointer());
  const PixelRect& to = aView.destinationRect;
  PixelRect from = aView.GetCopyRect();
  Picture picture(aWidth, aHeight);
  for (int y = std::max(to.top, 0); y < std::min(to.bottom, aHeight); ++y)
    for (int x = std::max(to.left, 0); x < std::min(to.right, aWidth); ++x) {
      const auto column =
          static_cast<int>(from.left + (x - to.left + 0.5) * (from.right - from.left) / (to.right - to.left));
      const auto row =
          static_cast<int>(from.top + (y - to.top + 0.5) * (from.bottom - from.top) / (to.bottom - to.top));
      picture.At(x, y) =
          image[static_cast<std::size_t>(row) * aView.imageWidth + static_cast<std::size_t>(column)] | kOpaque;
    }
  return picture;
}

void ExpectDrawnAsPlainly(FrameRenderer& aRenderer, int aWidth, int aHeight, const ViewArea& aView,
                          const IKrImage& aImage) {
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(KrBufferConverter(1), aImage).IsOK());
  Picture picture(aWidth, aHeight);

  aRenderer.DrawImage(picture.GetCanvas(), aView, lines);

  ASSERT_EQ(picture.pixels, DrawPlainly(aWidth, aHeight, aView, aImage).pixels)
      << aView.imageWidth << " x " << aView.imageHeight << " in " << aWidth << " x " << aHeight;
}

/// A view as a user may have zoomed and scrolled it.
ViewArea MakeAnyView(std::mt19937& aRandom, int aClientWidth, int aClientHeight, int aWidth, int aHeight) {
  const auto roll = [&](int aFrom, int aTo) { return std::uniform_int_distribution<int>(aFrom, aTo)(aRandom); };
  const KrLogCapture log; // Rows beyond the image, by rounding, are corrected with a warning.
  ViewGeometry view;
  view.SetClient(aClientWidth, aClientHeight, 2);
  switch (roll(0, 2)) {
  case 0:
    view.ZoomOneToOne();
    break;
  case 1:
    view.ZoomIn(roll(1, 1000) / 100.0);
    break;
  default:
    view.ZoomFit();
  }
  for (int update = 0; update < 2; ++update) {
    view.Update(static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight));
    for (const ViewAxis axis : {ViewAxis::Horizontal, ViewAxis::Vertical}) {
      const ScrollBarModel& bar = view.GetBar(axis);
      view.Scroll(axis, ScrollCode::ThumbTrack, roll(0, bar.GetMaximum() - bar.GetPage()));
    }
  }
  return view.GetArea();
}

ViewArea MakeView(const PixelRect& aDestination, const PixelRect& aSource, const IKrImage& aImage) {
  ViewArea view;
  view.clientRect = view.viewRect = {0, 0, aDestination.right, aDestination.bottom};
  view.destinationRect = aDestination;
  view.sourceRect = aSource;
  view.imageWidth = aImage.GetWidth();
  view.imageHeight = aImage.GetHeight();
  return view;
}

struct FormatRow {
  const char* name;
  KrPixelType type;
  std::size_t bytesPerPixel; ///< Or more.
};
constexpr FormatRow kFormats[] = {{"BGRa8", KrPixel::BGRa8, 4},     {"RGBa8", KrPixel::RGBa8, 4},
                                  {"RGB8", KrPixel::RGB8, 3},       {"Mono8", KrPixel::Mono8, 1},
                                  {"Mono12p", KrPixel::Mono12p, 2}, {"BayerRG8", KrPixel::BayerRG8, 1}};

} // namespace

TEST(FrameRenderer_DrawImage, AnyViewOfAnyFormatOnEveryProcessor_EqualsAPlainComputation) {
  for (const std::int64_t target : GetVectorTargets()) {
    SCOPED_TRACE(VectorTargetChoice::GetName(target));
    const VectorTargetChoice choice(target);
    std::mt19937 random(4);
    std::uniform_int_distribution<int> size(1, 90);
    for (const FormatRow& format : kFormats) {
      SCOPED_TRACE(format.name);
      FrameRenderer renderer;
      for (int run = 0; run < 150 && !HasFatalFailure(); ++run) {
        const ForeignImage image = MakeNoiseImage(size(random), size(random), format.type, format.bytesPerPixel);
        const int width = size(random);
        const int height = size(random);
        const ViewArea view =
            MakeAnyView(random, width, height, static_cast<int>(image.width), static_cast<int>(image.height));

        ExpectDrawnAsPlainly(renderer, width, height, view, image);
      }
    }
  }
}

TEST(FrameRenderer_DrawImage, SpecialViews_EqualAPlainComputation) {
  struct Row {
    const char* name;
    int width, height; ///< Of the image.
    PixelRect destination, source;
  };
  for (const Row& row : {
           Row{"one pixel that fills the view", 1, 1, {0, 0, 70, 50}, {0, 0, 1, 1}},
           Row{"one pixel of many", 80, 60, {0, 0, 70, 50}, {33, 21, 34, 22}},
           Row{"less than a pixel", 80, 60, {0, 0, 70, 50}, {33, 21, 33, 21}},
           Row{"whole lines one to one", 70, 50, {0, 0, 70, 50}, {0, 0, 70, 50}},
           Row{"whole lines one to one, stretched down", 70, 20, {0, 0, 70, 50}, {0, 0, 70, 20}},
           Row{"parts of lines one to one", 90, 50, {0, 0, 70, 50}, {11, 0, 81, 50}},
           Row{"twice the size", 35, 25, {0, 0, 70, 50}, {0, 0, 35, 25}},
           Row{"a few source vectors for each destination vector", 250, 50, {0, 0, 70, 50}, {3, 0, 248, 50}},
           Row{"far apart pixels", 1000, 80, {0, 0, 70, 50}, {0, 0, 1000, 80}},
           Row{"beginning outside the canvas", 80, 60, {-13, -9, 57, 41}, {0, 0, 80, 60}},
           Row{"ending outside the canvas", 80, 60, {13, 9, 200, 100}, {0, 0, 80, 60}},
           Row{"one to one, ending outside the canvas", 100, 60, {0, 0, 100, 60}, {0, 0, 100, 60}},
           Row{"twice the size, cut to a line's width", 70, 50, {0, 0, 140, 50}, {0, 0, 70, 50}},
           Row{"outside the canvas", 80, 60, {70, 0, 140, 50}, {0, 0, 80, 60}},
           Row{"no destination", 80, 60, {20, 20, 20, 30}, {0, 0, 80, 60}},
       })
    for (const FormatRow& format : kFormats) {
      SCOPED_TRACE(std::string(row.name) + ", " + format.name);
      FrameRenderer renderer;
      const ForeignImage image = MakeNoiseImage(row.width, row.height, format.type, format.bytesPerPixel);

      ExpectDrawnAsPlainly(renderer, 70, 50, MakeView(row.destination, row.source, image), image);
    }
}

TEST(FrameRenderer_DrawImage, HugeZoom_EqualsAPlainComputation) {
  const ForeignImage image = MakeNoiseImage(65, 47, KrPixel::Mono8, 1);
  for (const double factor : {300.0, 1e5, 1e9, 1e12}) {
    SCOPED_TRACE(factor);
    ViewGeometry view;
    view.SetClient(90, 80, 18);
    view.ZoomIn(factor);
    view.Update(65, 47);
    FrameRenderer renderer;

    ExpectDrawnAsPlainly(renderer, 90, 80, view.GetArea(), image);
  }
}

TEST(FrameRenderer_DrawImage, Bgra8AtAnOddAddress_EqualsAPlainComputation) {
  ForeignImage image = MakeNoiseImage(40, 30, KrPixel::BGRa8, 4);
  std::vector<std::uint8_t> memory(image.bytes.size() + 1);
  std::ranges::copy(image.bytes, memory.begin() + 1);
  image.borrowed = memory.data() + 1;
  FrameRenderer renderer;

  ExpectDrawnAsPlainly(renderer, 70, 50, MakeView({0, 0, 70, 50}, {0, 0, 40, 30}, image), image);
}

TEST(FrameRenderer_DrawImage, ImageOfAnotherSizeOrClosed_DrawsNothing) {
  const ForeignImage image = MakeNoiseImage(40, 30, KrPixel::Mono8, 1);
  ViewArea view = MakeView({0, 0, 70, 50}, {0, 0, 40, 30}, image);
  view.imageHeight = 31;
  FrameRenderer renderer;
  Picture picture(70, 50);
  KrLineConversion lines;

  renderer.DrawImage(picture.GetCanvas(), view, lines);
  ASSERT_TRUE(lines.Open(KrBufferConverter(1), image).IsOK());
  renderer.DrawImage(picture.GetCanvas(), view, lines);

  EXPECT_THAT(picture.pixels, testing::Each(kUntouched));
}

TEST(FrameRenderer_DrawImage, PixelsUnderPoints_AreThoseThatFindImagePixelSays) {
  // Each pixel says where it is.
  ForeignImage image(60, 50, KrPixel::BGRa8, std::vector<std::uint8_t>(60 * 50 * 4));
  for (int y = 0; y < 50; ++y)
    for (int x = 0; x < 60; ++x) {
      image.bytes[static_cast<std::size_t>(4 * (60 * y + x))] = static_cast<std::uint8_t>(x);
      image.bytes[static_cast<std::size_t>(4 * (60 * y + x) + 1)] = static_cast<std::uint8_t>(y);
    }
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(KrBufferConverter(1), image).IsOK());
  std::mt19937 random(6);
  std::uniform_int_distribution<int> size(1, 90);
  FrameRenderer renderer;
  for (int run = 0; run < 200; ++run) {
    Picture picture(size(random), size(random));
    const ViewArea view = MakeAnyView(random, picture.width, picture.height, 60, 50);

    renderer.DrawImage(picture.GetCanvas(), view, lines);

    for (int y = 0; y < picture.height; ++y)
      for (int x = 0; x < picture.width; ++x) {
        const std::optional<PixelPoint> pixel = FindImagePixel(view, {x, y});
        const std::uint32_t expected =
            pixel ? kOpaque | static_cast<std::uint32_t>(pixel->x) | static_cast<std::uint32_t>(pixel->y) << 8
                  : kUntouched;
        ASSERT_EQ(picture.At(x, y), expected) << "run " << run << " at " << x << "," << y;
      }
  }
}

TEST(FrameRenderer_DrawImage, ThumbAtTheEnds_ShowsTheFirstRowOnTopAndTheLastAtTheBottom) {
  ForeignImage image(4, 200, KrPixel::Mono8, std::vector<std::uint8_t>(4 * 200));
  for (std::size_t i = 0; i < image.bytes.size(); ++i)
    image.bytes[i] = static_cast<std::uint8_t>(i / 4);
  KrLineConversion lines;
  ASSERT_TRUE(lines.Open(KrBufferConverter(1), image).IsOK());
  ViewGeometry view;
  view.SetClient(40, 60, 18);
  view.ZoomOneToOne();
  view.Update(4, 200);
  FrameRenderer renderer;
  Picture picture(40, 60);
  const int column = view.GetArea().destinationRect.left;

  view.Scroll(ViewAxis::Vertical, ScrollCode::ThumbTrack, 0);
  view.Update(4, 200);
  renderer.DrawImage(picture.GetCanvas(), view.GetArea(), lines);
  EXPECT_EQ(picture.At(column, 0), kOpaque);
  EXPECT_EQ(picture.At(column, 59), kOpaque | 0x010101 * 59);

  view.Scroll(ViewAxis::Vertical, ScrollCode::Most, 0);
  view.Update(4, 200);
  renderer.DrawImage(picture.GetCanvas(), view.GetArea(), lines);
  EXPECT_EQ(picture.At(column, 0), kOpaque | 0x010101 * 140);
  EXPECT_EQ(picture.At(column, 59), kOpaque | 0x010101 * 199);
}

TEST(FrameRenderer_Fill, PartlyOutside_IsCutToTheCanvas) {
  Picture picture(4, 3);

  FrameRenderer::Fill(picture.GetCanvas(), {-2, 1, 2, 9}, 0xFF112233);
  FrameRenderer::Fill(picture.GetCanvas(), {3, 0, 3, 3}, 0xFF445566);
  FrameRenderer::Fill(picture.GetCanvas(), {5, 0, 9, 3}, 0xFF445566);

  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(picture.At(x, y), y >= 1 && x < 2 ? 0xFF112233 : kUntouched);
  EXPECT_EQ(std::ranges::count(picture.pixels, 0xFF112233), 4);
}

TEST(FrameRenderer_DrawBands, NarrowImage_FillsLeftAndRightOfIt) {
  ViewGeometry view;
  view.SetClient(30, 10, 18);
  view.Update(5, 5);
  Picture picture(30, 10);

  FrameRenderer::DrawBands(picture.GetCanvas(), view.GetArea(), 0xFF808080);

  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 30; ++x)
      EXPECT_EQ(picture.At(x, y), x < 10 || x >= 20 ? 0xFF808080 : kUntouched);
}
