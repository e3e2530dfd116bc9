// The way between a display's widget and its image, compared with what is seen there.

#include "displayfixture.h"
#include "displaypictures.h"

namespace {

constexpr std::uint32_t kImageWidth = 200;
constexpr std::uint32_t kImageHeight = 100;
constexpr std::uint32_t kMarkX = 103;
constexpr std::uint32_t kMarkY = 41;

class DisplayMappingTest : public KrDisplayWndTest {
protected:
  // A black image with one white pixel.
  void ShowMark() {
    KrBuffer image = MakeGrey(kImageWidth, kImageHeight, 0);
    image.GetDataPointer()[kMarkY * kImageWidth + kMarkX] = 255;
    ASSERT_TRUE(mWindow.Display(image, false).IsOK());
  }
  // Where the way leads from the pixel's edges, to the nearest device pixel.
  void ExpectMarkWhereItIsSeen() {
    const QRect seen = FindWhite(Grab());
    const std::optional<KrDisplayMapping> mapping = mWindow.GetMapping();
    ASSERT_FALSE(seen.isEmpty());
    ASSERT_TRUE(mapping.has_value());
    const double ratio = GetRatio();
    EXPECT_NEAR(mapping->ToWidgetX(kMarkX) * ratio, seen.left(), 0.5001);
    EXPECT_NEAR(mapping->ToWidgetX(kMarkX + 1) * ratio, seen.left() + seen.width(), 0.5001);
    EXPECT_NEAR(mapping->ToWidgetY(kMarkY) * ratio, seen.top(), 0.5001);
    EXPECT_NEAR(mapping->ToWidgetY(kMarkY + 1) * ratio, seen.top() + seen.height(), 0.5001);
  }
};

} // namespace

TEST_F(DisplayMappingTest, FittedImage_IsFoundWhereItIsSeen) {
  Open(650, 301);
  ShowMark();

  ExpectMarkWhereItIsSeen();
}

TEST_F(DisplayMappingTest, ImageOneToOne_IsFoundWhereItIsSeen) {
  Open(300, 300);
  ShowMark();
  Grab();
  mWindow.Zoom1_1();

  ExpectMarkWhereItIsSeen();
}

TEST_F(DisplayMappingTest, EnlargedAndScrolledImage_IsFoundWhereItIsSeen) {
  Open(233, 177);
  ShowMark();
  Grab();
  for (int step = 0; step < 4; ++step)
    mWindow.ZoomIn();
  Grab(); // The bars come with it.
  GetHorizontalBar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
  GetVerticalBar().triggerAction(QAbstractSlider::SliderSingleStepSub);

  ExpectMarkWhereItIsSeen();
  const std::optional<KrDisplayMapping> mapping = mWindow.GetMapping();
  EXPECT_LT(mapping->ToImageX(0), kMarkX);
  EXPECT_LT(mapping->viewWidth, GetView().width());
}

TEST_F(DisplayMappingTest, WindowWithoutAnImage_HasNone) {
  Open(300, 200);
  Grab();
  EXPECT_FALSE(mWindow.GetMapping().has_value());
  ShowMark();
  Grab();
  EXPECT_TRUE(mWindow.GetMapping().has_value());

  mWindow.Clear();
  Grab();

  EXPECT_FALSE(mWindow.GetMapping().has_value());
}

TEST_F(DisplayMappingTest, WindowThatIsNotOpen_HasNone) {
  ShowMark();
  EXPECT_FALSE(mWindow.GetMapping().has_value());

  Open(300, 200);
  Grab();
  EXPECT_TRUE(mWindow.GetMapping().has_value());

  ASSERT_TRUE(mWindow.Close().IsOK());
  EXPECT_FALSE(mWindow.GetMapping().has_value());
}
