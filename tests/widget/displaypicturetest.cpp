// How the display window draws images, the background around them and nothing at all.

#include "displayfixture.h"

#include <thread>

TEST_F(KrDisplayWndTest, Empty_Window_ShowsTheBackgroundAlone) {
  Open(200, 100);

  const QImage picture = Grab();

  QImage expected(picture.size(), QImage::Format_RGB32);
  expected.fill(QColor(0x80, 0x80, 0x80));
  EXPECT_EQ(plainpicture::Compare(picture, expected), "");
}

TEST_F(KrDisplayWndTest, Empty_WindowWithOverlayText_DoesNotDrawIt) {
  Open(200, 100);
  mWindow.SetTextOverlay("text");
  EXPECT_TRUE(mWindow.SetBackgroundColor(10, 20, 30).IsOK());

  const QImage picture = Grab();

  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(10, 20, 30)), picture.width() * picture.height());
}

TEST_F(KrDisplayWndTest, Image_OfAnyShape_IsFittedCentredAndFramedInTheBackgroundColour) {
  Open(300, 200);
  EXPECT_TRUE(mWindow.SetBackgroundColor(200, 30, 60).IsOK());
  for (const auto& [width, height] : {std::pair{64, 48}, {48, 64}, {640, 480}, {480, 640}, {7, 200}, {1, 1}}) {
    const KrBuffer buffer = MakeNoise(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

    const QImage picture = Grab();

    EXPECT_EQ(picture.size(), QSize(300, 200) * GetRatio());
    EXPECT_EQ(
        plainpicture::Compare(picture, plainpicture::Compute(picture.size(), ToQImage(buffer), QColor(200, 30, 60))),
        "")
        << width << "x" << height;
  }
}

TEST_F(KrDisplayWndTest, Image_AfterAResize_IsFittedAnew) {
  Open(300, 200);
  const KrBuffer buffer = MakeNoise(64, 48);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  Grab();

  mWindow.SetPosition(50, 50, 420, 111);

  const QImage picture = Grab();
  EXPECT_EQ(picture.size(), QSize(420, 111) * GetRatio());
  EXPECT_EQ(
      plainpicture::Compare(picture, plainpicture::Compute(picture.size(), ToQImage(buffer), QColor(0x80, 0x80, 0x80))),
      "");
}

TEST_F(KrDisplayWndTest, Image_ShownBeforeOpening_IsThereWhenTheWindowOpens) {
  const KrBuffer buffer = MakeNoise(64, 48);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  Open(128, 96);

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Compare(picture, plainpicture::Compute(picture.size(), ToQImage(buffer), Qt::black)), "");
}

TEST_F(KrDisplayWndTest, AlphaOfAnImage_IsNoTransparency) {
  Open(100, 100);
  KrBuffer buffer;
  ASSERT_TRUE(buffer.GetImage()->Alloc(1, 1, KrPixel::BGRa8).IsOK());
  const std::uint8_t pixel[] = {10, 20, 200, 0};
  std::memcpy(buffer.GetDataPointer(), pixel, 4);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  const QImage picture = Grab();

  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(200, 20, 10)), picture.width() * picture.height());
}

TEST_F(KrDisplayWndTest, Clear_ShownImage_LeavesTheBackground) {
  Open(100, 100);
  mWindow.SetTextOverlay("text");
  ASSERT_TRUE(mWindow.Display(MakeGrey(10, 10, 1), false).IsOK());
  Grab();

  mWindow.Clear();

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0x80, 0x80, 0x80)), picture.width() * picture.height());
  EXPECT_EQ(mWindow.GetTextOverlay(), KrString());
  EXPECT_EQ(mWindow.GetInternalBuffer().GetSize(), 0u);
}

TEST_F(KrDisplayWndTest, Clear_FromAnotherThread_ReachesTheWindow) {
  Open(100, 90);
  ASSERT_TRUE(mWindow.Display(MakeGrey(10, 10, 1), false).IsOK());
  Grab();

  std::jthread([&] { mWindow.Clear(); }).join();

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0x80, 0x80, 0x80)), picture.width() * picture.height());
}

TEST_F(KrDisplayWndTest, Image_ShownWhileTheWindowIsClosed_IsThereWhenItOpensAgain) {
  Open(128, 90);
  ASSERT_TRUE(mWindow.Close().IsOK());
  const KrBuffer buffer = MakeNoise(64, 45);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  Open(128, 90);

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Compare(picture, plainpicture::Compute(picture.size(), ToQImage(buffer), Qt::black)), "");
}

TEST_F(KrDisplayWndTest, Clear_WhileTheWindowIsClosed_LeavesTheBackgroundWhenItOpensAgain) {
  ASSERT_TRUE(mWindow.Display(MakeGrey(10, 10, 1), false).IsOK());
  mWindow.Clear();

  Open(100, 90);

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0x80, 0x80, 0x80)), picture.width() * picture.height());
}

TEST_F(KrDisplayWndTest, Background_IsNeverErasedBeforeItIsDrawn) {
  Open(100, 90);

  const QWidget* view = mWindow.GetWidget()->findChild<QWidget*>("display");

  ASSERT_NE(view, nullptr);
  EXPECT_TRUE(view->testAttribute(Qt::WA_OpaquePaintEvent));
  EXPECT_TRUE(view->testAttribute(Qt::WA_NoSystemBackground));
  EXPECT_EQ(view->geometry(), mWindow.GetWidget()->rect());
}
