// The pixel under the cursor.

#include "displayimages.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

/// A display with an image of 100 x 100 pixels, of which each is drawn on one pixel of the client area.
struct CursorDisplay : OpenDisplay {
  explicit CursorDisplay(KrPixelType aType = KrPixel::Mono8) {
    EXPECT_TRUE(image.GetImage()->Alloc(100, 100, aType).IsOK());
    for (std::size_t i = 0; i < image.GetSize(); ++i)
      image.GetDataPointer()[i] = static_cast<std::uint8_t>(i % 251);
    Show(image);
    Paint();
  }
  KrBuffer image;
};

} // namespace

TEST(DisplayCursor, OverAPixel_GivesItsPlaceItsRawValueAndWhatIsShown) {
  CursorDisplay display(KrPixel::RGB8);
  display.content.SetCursor(PixelPoint{12, 34});

  const std::optional<KrDisplayPixel> pixel = display.content.GetCursorPixel();

  const std::uint8_t* source = display.image.GetDataPointer() + 3 * (34 * 100 + 12);
  ASSERT_TRUE(pixel.has_value());
  EXPECT_EQ(pixel->x, 12u);
  EXPECT_EQ(pixel->y, 34u);
  ASSERT_EQ(pixel->raw.sampleCount, 3);
  EXPECT_EQ(pixel->raw.samples[0], source[0]);
  EXPECT_EQ(pixel->raw.samples[1], source[1]);
  EXPECT_EQ(pixel->raw.samples[2], source[2]);
  EXPECT_EQ(pixel->red, source[0]);
  EXPECT_EQ(pixel->green, source[1]);
  EXPECT_EQ(pixel->blue, source[2]);
}

TEST(DisplayCursor, SettingsOfTheConversion_ChangeWhatIsShownAlone) {
  CursorDisplay display;
  EXPECT_TRUE(display.content.GetConverter().SetGamma(0.5).IsOK());
  display.Show(display.image);
  display.content.SetCursor(PixelPoint{16, 0});

  const std::optional<KrDisplayPixel> pixel = display.content.GetCursorPixel();

  ASSERT_TRUE(pixel.has_value());
  EXPECT_EQ(pixel->raw.samples[0], 16);
  EXPECT_EQ(pixel->green, 64);
}

TEST(DisplayCursor, ElsewhereOrWithoutAnImage_GivesNothing) {
  CursorDisplay display;
  EXPECT_FALSE(display.content.GetCursorPixel().has_value());

  display.content.SetCursor(PixelPoint{100, 5});
  EXPECT_FALSE(display.content.GetCursorPixel().has_value());

  display.content.SetCursor(PixelPoint{5, 5});
  EXPECT_TRUE(display.content.GetCursorPixel().has_value());
  display.content.SetCursor(std::nullopt);
  EXPECT_FALSE(display.content.GetCursorPixel().has_value());

  display.content.SetCursor(PixelPoint{5, 5});
  display.content.Clear();
  EXPECT_FALSE(display.content.GetCursorPixel().has_value());
}

TEST(DisplayCursor, ImageOfAnotherSizeNotPaintedYet_GivesNothing) {
  CursorDisplay display;
  display.content.SetCursor(PixelPoint{90, 90});

  display.Show(MakeImage(10, 10, KrPixel::Mono8, 1));

  EXPECT_FALSE(display.content.GetCursorPixel().has_value());
  display.Paint();
  EXPECT_TRUE(display.content.GetCursorPixel().has_value());
}

TEST(DisplayCursor, HeldBuffer_IsReadToo) {
  OpenDisplay display;
  auto shared = std::make_shared<KrBuffer>(MakeImage(100, 100, KrPixel::Mono8, 8));
  auto paint = DisplayContent::Paint::NotNeeded;
  ASSERT_TRUE(display.content.Display(std::shared_ptr<const KrBuffer>(shared), paint).IsOK());
  display.Paint();
  display.content.SetCursor(PixelPoint{5, 5});

  const std::optional<KrDisplayPixel> pixel = display.content.GetCursorPixel();

  ASSERT_TRUE(pixel.has_value());
  EXPECT_EQ(pixel->raw.samples[0], 8);
}

TEST(DisplayCursorLine, NotEnabled_IsNotDrawn) {
  CursorDisplay display;
  display.content.SetCursor(PixelPoint{5, 0});

  EXPECT_FALSE(display.content.IsCursorLineEnabled());
  EXPECT_EQ(display.Look().cursorText, KrString());
}

TEST(DisplayCursorLine, Enabled_SaysThePixelOfTheImageThatIsDrawn) {
  CursorDisplay display;
  display.content.SetCursorLineEnabled(true);
  display.content.SetCursor(PixelPoint{5, 0});

  EXPECT_TRUE(display.content.IsCursorLineEnabled());
  EXPECT_EQ(display.Look().cursorText, KrString("x 5  y 0  value 5"));
  display.Show(MakeImage(100, 100, KrPixel::Mono8, 200));
  EXPECT_EQ(display.target.GetLast().cursorText, KrString("x 5  y 0  value 200"));
  display.content.SetCursor(std::nullopt);
  EXPECT_EQ(display.Look().cursorText, KrString());
}
