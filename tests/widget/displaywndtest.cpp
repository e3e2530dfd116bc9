#include "krgui/krdisplaywnd.h"

#include "display/overlayfont.h"
#include "displaypictures.h"
#include "krbase/krlogger.h"
#include "plainpicture.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <thread>

namespace {

KrBuffer MakeGrey(std::uint32_t aWidth, std::uint32_t aHeight, std::uint8_t aValue) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, KrPixel::Mono8).IsOK());
  std::memset(buffer.GetDataPointer(), aValue, buffer.GetSize());
  return buffer;
}

class KrDisplayWndTest : public testing::Test {
protected:
  void Open(int aWidth, int aHeight) {
    mWindow.SetPosition(50, 50, aWidth, aHeight);
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(mWindow.GetWidget()));
  }

  // The client area in device pixels, painted after all that was asked for.
  QImage Grab() {
    EXPECT_TRUE(mWindow.DoEvents().IsOK());
    QImage picture = mWindow.GetWidget()->grab().toImage();
    picture.setDevicePixelRatio(1.0);
    return picture.convertToFormat(QImage::Format_RGB32);
  }

  double GetRatio() const { return mWindow.GetWidget()->devicePixelRatioF(); }

  KrDisplayWnd mWindow;
};

} // namespace

TEST_F(KrDisplayWndTest, Display_PayloadThatIsNoImage_IsRefusedWithItsText) {
  const KrBuffer buffer(KrPayloadType::ChunkData);
  const KrLogCapture log;

  const KrResult result = mWindow.Display(buffer, false);

  EXPECT_EQ(result.GetCodeNumber(), 1281u);
  EXPECT_EQ(result.GetDescription(), KrString("aBuffer payload type not image"));
  ASSERT_EQ(log.GetRecords().size(), 1u);
  const KrLogRecord record = log.GetRecords().front();
  EXPECT_EQ(record.level, KrLogLevel::Error);
  EXPECT_EQ(record.channel, KrString("KrGUILib"));
  EXPECT_EQ(record.function, KrString("KrDisplayWnd::Display"));
  EXPECT_EQ(record.file, KrString("krdisplaywnd"));
  EXPECT_EQ(record.line, 85);
}

TEST_F(KrDisplayWndTest, Display_AnyFlag_DoesTheSame) {
  const KrBuffer buffer = MakeGrey(4, 4, 3);

  EXPECT_TRUE(mWindow.Display(buffer, true).IsOK());
  EXPECT_TRUE(mWindow.Display(buffer.GetImage(), false).IsOK());

  EXPECT_EQ(mWindow.GetInternalBuffer().GetDataPointer()[0], 3);
}

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

TEST_F(KrDisplayWndTest, Image_FromAnotherThread_ReachesTheWindow) {
  Open(100, 100);
  Grab();

  std::jthread([&] { EXPECT_TRUE(mWindow.Display(MakeGrey(10, 10, 0xE1), false).IsOK()); }).join();

  EXPECT_TRUE(QTest::qWaitFor([&] {
    const QImage picture = mWindow.GetWidget()->grab().toImage();
    return picture.pixelColor(50, 50) == QColor(0xE1, 0xE1, 0xE1);
  }));
}

TEST_F(KrDisplayWndTest, Image_WhoseSourceIsFreedAfterDisplay_StaysOnTheScreen) {
  Open(100, 100);
  {
    const KrBuffer buffer = MakeGrey(10, 10, 0x31);
    ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  }

  const QImage picture = Grab();

  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0x31, 0x31, 0x31)), picture.width() * picture.height());
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

TEST_F(KrDisplayWndTest, Image_WhoseClassThrows_IsAFailureWithItsText) {
  class ThrowingImage : public IKrImage {
  public:
    std::uint32_t GetWidth() const override { throw std::runtime_error("the sensor is gone"); }
    std::uint32_t GetHeight() const override { return 1; }
    KrPixelType GetPixelType() const override { return KrPixel::Mono8; }
    std::uint32_t GetPaddingX() const override { return 0; }
    std::uint32_t GetPaddingY() const override { return 0; }
    std::size_t GetImageSize() const override { return 1; }
    const std::uint8_t* GetDataPointer() const override { return nullptr; }
    std::uint8_t* GetDataPointer() override { return nullptr; }
    KrResult Alloc(std::uint32_t, std::uint32_t, KrPixelType, std::uint32_t, std::uint32_t) override {
      return KrResult::Code::NotOffered;
    }
  } image;

  const KrResult result = mWindow.Display(&image, false);

  EXPECT_EQ(result.GetCodeNumber(), 16384u);
  EXPECT_NE(result.GetDescription().ToUtf8().find("the sensor is gone"), std::string::npos);
  EXPECT_TRUE(mWindow.Display(MakeGrey(4, 4, 3), false).IsOK());
}

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

TEST_F(KrDisplayWndTest, Overlay_WindowsLineEnds_DrawAsPlainOnes) {
  Open(300, 100);
  const KrBuffer buffer = MakeGrey(100, 100, 0);
  mWindow.SetTextOverlay("one\r\ntwo");
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());
  const QImage windows = Grab();

  mWindow.SetTextOverlay("one\ntwo");
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  EXPECT_EQ(plainpicture::Compare(Grab(), windows), "");
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

  mWindow.SetTextOverlayColor(255, 0, 255);
  EXPECT_TRUE(mWindow.SetTextOverlaySize(40).IsOK());
  ASSERT_TRUE(mWindow.Display(buffer, false).IsOK());

  const QImage picture = Grab();
  EXPECT_GT(plainpicture::FindDifference(picture, plain).height(), small.height() * 3 / 2);
  EXPECT_GT(plainpicture::Count(picture, picture.rect(), QColor(255, 0, 255)), 0);
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(0, 255, 0)), 0);
}

TEST_F(KrDisplayWndTest, Converter_OfTheWindow_IsOneAndTheSame) {
  EXPECT_EQ(&mWindow.GetConverter(), &mWindow.GetConverter());
  EXPECT_GE(mWindow.GetConverter().GetThreadCount(), 1);
}

TEST_F(KrDisplayWndTest, Closing_WhileFramesArriveAtFullRate_IsSafe) {
  const KrBuffer buffer = MakeGrey(64, 64, 5);
  std::jthread camera([&](std::stop_token aStop) {
    while (!aStop.stop_requested())
      EXPECT_TRUE(mWindow.Display(buffer, false).IsOK());
  });

  for (int i = 0; i < 10; ++i) {
    Open(120, 80);
    EXPECT_TRUE(mWindow.DoEvents().IsOK() || mWindow.GetHandle() != 0);
    EXPECT_TRUE(mWindow.Close().IsOK());
  }

  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

TEST(MakeOverlayFont, SizeAboveZero_IsTheHeightOfALine) {
  for (int size : {8, 12, 20, 33, 64})
    EXPECT_NEAR(QFontMetricsF(krgui::MakeOverlayFont(size, 1.0)).height(), size, 1.5) << size;
}

TEST(MakeOverlayFont, SizeBelowZero_IsTheHeightOfTheCharacters) {
  for (int size : {8, 12, 20, 33, 64})
    EXPECT_EQ(krgui::MakeOverlayFont(-size, 1.0).pixelSize(), size);
}

TEST(MakeOverlayFont, SizeZero_IsTheApplicationsHeight) {
  const double expected = QFontMetricsF(QGuiApplication::font()).height();

  EXPECT_NEAR(QFontMetricsF(krgui::MakeOverlayFont(0, 1.0)).height(), expected, 1.5);
}

TEST(MakeOverlayFont, PixelRatio_MultipliesTheSize) {
  EXPECT_EQ(krgui::MakeOverlayFont(-10, 2.0).pixelSize(), 20);
}

TEST(MakeOverlayFont, Face_IsTheOneNamedWithMediumWeightThoughTheSystemMayLackIt) {
  const QFont font = krgui::MakeOverlayFont(20, 1.0);

  EXPECT_EQ(font.family(), QStringLiteral("Tahoma"));
  EXPECT_EQ(font.weight(), QFont::Medium);
  EXPECT_FALSE(font.italic() || font.underline() || font.strikeOut());
}

TEST(MakeOverlayFont, FaceThatTheSystemLacks_IsSubstitutedByOneWithTheSameHeight) {
  const QFont font = krgui::MakeOverlayFont(20, 1.0);

  EXPECT_FALSE(QFontInfo(font).family().isEmpty());
  EXPECT_GT(QFontMetricsF(font).horizontalAdvance("frames"), 20);
}

TEST(MakeOverlayFont, ExtremeSizes_GiveAFont) {
  for (int size : {1, -1, 100000, -100000, std::numeric_limits<int>::min()})
    EXPECT_GE(krgui::MakeOverlayFont(size, 1.0).pixelSize(), 1) << size;
}
