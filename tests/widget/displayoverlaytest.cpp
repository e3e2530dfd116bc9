// The text over the image.

#include "displayfixture.h"

#include <cmath>

TEST_F(KrDisplayWndTest, Overlay_NothingSet_HasTheDefaults) {
  unsigned char red = 1, green = 1, blue = 1;

  mWindow.GetTextOverlayColor(red, green, blue);

  EXPECT_EQ(red, 0);
  EXPECT_EQ(green, 255);
  EXPECT_EQ(blue, 0);
  EXPECT_EQ(mWindow.GetTextOverlaySize(), 20);
  EXPECT_EQ(mWindow.GetTextOverlayOffsetX(), 10);
  EXPECT_EQ(mWindow.GetTextOverlayOffsetY(), 10);
  EXPECT_EQ(mWindow.GetTextOverlay(), KrString());
}

TEST_F(KrDisplayWndTest, Overlay_Text_StandsAtTheImagesCornerAndChangesNothingElse) {
  Open(300, 100);
  mWindow.SetTextOverlay("HHH\nHHH");
  mWindow.SetTextOverlayOffsetX(12);
  mWindow.SetTextOverlayOffsetY(5);
  const KrBuffer buffer = MakeGrey(100, 100, 0);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  const QImage picture = Grab();

  const QImage plain = plainpicture::Compute(picture.size(), ToQImage(buffer), QColor(0x80, 0x80, 0x80));
  const double ratio = GetRatio();
  const QRect text = plainpicture::FindDifference(picture, plain);
  // The image begins at 100; two lines of 20 begin 5 below its top. A letter has some space around it.
  EXPECT_GE(text.left(), 112 * ratio);
  EXPECT_LE(text.left(), 116 * ratio);
  EXPECT_GE(text.top(), 5 * ratio);
  EXPECT_LE(text.top(), 12 * ratio);
  EXPECT_GE(text.bottom(), 35 * ratio);
  EXPECT_LE(text.bottom(), 45 * ratio);
  EXPECT_GT(plainpicture::Count(picture, text, QColor(0, 255, 0)), 20);
  const int middle = static_cast<int>((5 + 20) * ratio);
  EXPECT_GT(
      plainpicture::Count(picture, {text.left(), text.top(), text.width(), middle - text.top()}, QColor(0, 255, 0)), 0);
  EXPECT_GT(
      plainpicture::Count(picture, {text.left(), middle, text.width(), text.bottom() - middle}, QColor(0, 255, 0)), 0);
}

TEST_F(KrDisplayWndTest, Overlay_InAnApplicationFromRightToLeft_StandsWhereItDoes) {
  Open(300, 100);
  mWindow.SetTextOverlay("HHH\nH");
  const KrBuffer buffer = MakeGrey(100, 100, 0);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  const QImage expected = Grab();

  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  const bool isShown = mWindow.Display(buffer, false).IsOK();
  const QImage picture = Grab();
  QGuiApplication::setLayoutDirection(Qt::LayoutDirectionAuto);

  EXPECT_TRUE(isShown);
  EXPECT_EQ(plainpicture::Compare(picture, expected), "");
}

TEST_F(KrDisplayWndTest, Overlay_OverAScrolledImage_StaysAtTheWindowsCorner) {
  Open(300, 200);
  ASSERT_TRUE(mWindow.Display(MakeGrey(1000, 800, 0), false).IsOK());
  mWindow.Zoom1_1();
  const int bar = static_cast<int>(std::lround(18 * GetRatio()));
  const auto grabImage = [&] {
    Grab(); // Places the bars.
    const QImage picture = Grab();
    return picture.copy(0, 0, picture.width() - bar, picture.height() - bar);
  };
  const QImage plain = grabImage();
  mWindow.SetTextOverlay("HHH");
  mWindow.SetTextOverlayOffsetX(12);
  mWindow.SetTextOverlayOffsetY(5);
  ASSERT_TRUE(mWindow.Display(MakeGrey(1000, 800, 0), false).IsOK());
  ASSERT_GT(mWindow.GetHScrollPos(), 0);
  ASSERT_GT(mWindow.GetVScrollPos(), 0);

  const QImage centred = grabImage();

  const QRect text = plainpicture::FindDifference(centred, plain);
  EXPECT_GE(text.left(), 12 * GetRatio());
  EXPECT_LE(text.left(), 16 * GetRatio());
  EXPECT_GE(text.top(), 5 * GetRatio());
  EXPECT_LE(text.top(), 12 * GetRatio());
  for (const Qt::Key key : {Qt::Key_Home, Qt::Key_End}) {
    QTest::keyClick(&GetHorizontalBar(), key);
    QTest::keyClick(&GetVerticalBar(), key);
    EXPECT_EQ(plainpicture::Compare(grabImage(), centred), "") << key;
  }
}

TEST_F(KrDisplayWndTest, Overlay_LineEndsOfOtherSystems_DrawAsPlainOnes) {
  Open(300, 100);
  const KrBuffer buffer = MakeGrey(100, 100, 0);
  mWindow.SetTextOverlay("one\n\ntwo");
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  const QImage plain = Grab();
  for (const char* text : {"one\r\n\r\ntwo", "one\r\rtwo", "one\n\rtwo", "one\r\n\ntwo"}) {
    mWindow.SetTextOverlay(text);
    ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

    EXPECT_EQ(plainpicture::Compare(Grab(), plain), "") << QByteArray(text).toPercentEncoding().toStdString();
  }
}

TEST_F(KrDisplayWndTest, Overlay_AtEveryOffset_IsTheSamePixelsElsewhere) {
  Open(300, 100);
  const KrBuffer buffer = MakeGrey(300, 100, 0);
  mWindow.SetTextOverlay("Wag");
  const auto draw = [&](unsigned int aOffset) {
    mWindow.SetTextOverlayOffsetX(aOffset);
    mWindow.SetTextOverlayOffsetY(aOffset);
    EXPECT_TRUE(mWindow.Display(buffer, false).IsOK());
    return Grab();
  };
  const int origin = static_cast<int>(std::lround(4 * GetRatio()));
  const QImage first = draw(4);
  for (unsigned int offset : {5u, 6u, 7u, 10u}) {
    const int shift = static_cast<int>(std::lround(offset * GetRatio())) - origin;

    const QImage shifted = draw(offset);

    EXPECT_EQ(plainpicture::Compare(shifted.copy(shift, shift, 200, 60), first.copy(0, 0, 200, 60)), "") << offset;
  }
}

TEST_F(KrDisplayWndTest, Overlay_AmpersandsAndTags_ArePlainText) {
  Open(300, 100);
  const KrBuffer buffer = MakeGrey(300, 100, 0);
  const auto widthOf = [&](const char* aText) {
    mWindow.SetTextOverlay(aText);
    EXPECT_TRUE(mWindow.Display(buffer, false).IsOK());
    const QImage picture = Grab();
    return plainpicture::FindDifference(picture, plainpicture::Compute(picture.size(), ToQImage(buffer), Qt::black))
        .width();
  };

  EXPECT_GT(widthOf("A&B"), widthOf("AB"));
  EXPECT_GT(widthOf("<b>A</b>"), widthOf("A"));
}

TEST_F(KrDisplayWndTest, Overlay_SetAfterTheImage_IsDrawnFromTheNextImageOn) {
  Open(100, 100);
  const KrBuffer buffer = MakeGrey(100, 100, 0);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  mWindow.SetTextOverlay("HHH");
  const QImage before = Grab();

  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  const QImage after = Grab();
  EXPECT_EQ(plainpicture::Count(before, before.rect(), QColor(0, 255, 0)), 0);
  EXPECT_GT(plainpicture::Count(after, after.rect(), QColor(0, 255, 0)), 0);
}

TEST_F(KrDisplayWndTest, Overlay_OffsetBeyondTheWindow_DrawsNothing) {
  Open(100, 100);
  mWindow.SetTextOverlay("HHH");
  mWindow.SetTextOverlayOffsetX(4000000000u);
  ASSERT_TRUE(mWindow.Display(MakeGrey(100, 100, 0), false).IsOK());

  const QImage picture = Grab();

  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), Qt::black), picture.width() * picture.height());
}

TEST_F(KrDisplayWndTest, Overlay_Settings_ReadBackAndOutliveTheWindow) {
  mWindow.SetTextOverlayColor(1, 2, 3);
  EXPECT_TRUE(mWindow.SetTextOverlaySize(-7).IsOK());
  mWindow.SetTextOverlayOffsetX(21);
  mWindow.SetTextOverlayOffsetY(22);
  mWindow.SetTextOverlay("kept");

  Open(100, 100);
  EXPECT_TRUE(mWindow.Close().IsOK());

  unsigned char red = 0, green = 0, blue = 0;
  mWindow.GetTextOverlayColor(red, green, blue);
  EXPECT_EQ(red, 1);
  EXPECT_EQ(green, 2);
  EXPECT_EQ(blue, 3);
  EXPECT_EQ(mWindow.GetTextOverlaySize(), -7);
  EXPECT_EQ(mWindow.GetTextOverlayOffsetX(), 21);
  EXPECT_EQ(mWindow.GetTextOverlayOffsetY(), 22);
  EXPECT_EQ(mWindow.GetTextOverlay(), KrString("kept"));
}

TEST_F(KrDisplayWndTest, Overlay_ColourAndSizeChanged_ShowAtTheNextDrawing) {
  Open(200, 100);
  mWindow.SetTextOverlay("HHH");
  const KrBuffer buffer = MakeGrey(200, 100, 0);
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  const QImage plain = plainpicture::Compute(Grab().size(), ToQImage(buffer), Qt::black);
  const QRect small = plainpicture::FindDifference(Grab(), plain);

  mWindow.SetTextOverlayColor(255, 128, 0);
  EXPECT_TRUE(mWindow.SetTextOverlaySize(40).IsOK());
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  const QImage picture = Grab();
  EXPECT_GT(plainpicture::FindDifference(picture, plain).height(), small.height() * 3 / 2);
  EXPECT_GT(plainpicture::Count(picture, picture.rect(), QColor(255, 128, 0)), 0);
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0, 255, 0)), 0);
}
