// What the display window takes, from which threads, and what it refuses.

#include "displayfixture.h"

#include "krbase/krlogger.h"
#include "windowwait.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

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

TEST_F(KrDisplayWndTest, Image_FromAnotherThread_ReachesTheWindow) {
  Open(100, 100);
  Grab();

  std::jthread([&] { EXPECT_TRUE(mWindow.Display(MakeGrey(10, 10, 0xE1), false).IsOK()); }).join();

  EXPECT_TRUE(krtest::AwaitCondition([&] {
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

TEST_F(KrDisplayWndTest, Converter_OfTheWindow_IsOneAndTheSame) {
  EXPECT_EQ(&mWindow.GetConverter(), &mWindow.GetConverter());
  EXPECT_GE(mWindow.GetConverter().GetThreadCount(), 1);
}

TEST_F(KrDisplayWndTest, Images_AtFullRateWhileTheWindowCloses_AreSafe) {
  const KrBuffer buffer = MakeGrey(64, 64, 5);
  std::jthread camera([&](std::stop_token aStop) {
    while (!aStop.stop_requested())
      EXPECT_TRUE(mWindow.Display(buffer, false).IsOK());
  });

  for (int i = 0; i < 10; ++i) {
    Open(120, 80);
    // Frames may come faster than they are shown, so that there is always one more.
    EXPECT_THAT(mWindow.DoEvents().GetCode(), testing::AnyOf(KrResult::Code::OK, KrResult::Code::TimeLimitExceeded));
    EXPECT_TRUE(mWindow.Close().IsOK());
  }

  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

TEST_F(KrDisplayWndTest, HeldBuffer_OfAnImage_IsShownAndHeldUntilAnotherComes) {
  Open(100, 90);
  auto first = std::make_shared<const KrBuffer>(MakeGrey(100, 90, 41));
  const std::weak_ptr<const KrBuffer> held = first;

  EXPECT_TRUE(mWindow.DisplayHeld(std::exchange(first, nullptr), false).IsOK());

  EXPECT_FALSE(held.expired());
  EXPECT_EQ(Grab().pixelColor(50, 50), QColor(41, 41, 41));
  EXPECT_TRUE(mWindow.DisplayHeld(std::make_shared<const KrBuffer>(MakeGrey(100, 90, 42)), false).IsOK());
  EXPECT_TRUE(held.expired());
  EXPECT_EQ(Grab().pixelColor(50, 50), QColor(42, 42, 42));
}

TEST_F(KrDisplayWndTest, NullImage_WrittenAsSuch_IsRefusedAndCounted) {
  const KrResult result = mWindow.Display(nullptr, false);

  EXPECT_EQ(result.GetCodeNumber(), 1281u);
  EXPECT_FALSE(result.GetDescription().IsEmpty());
  EXPECT_EQ(mWindow.GetStatistics().received, 1u);
  EXPECT_EQ(mWindow.GetStatistics().refused, 1u);
}

TEST_F(KrDisplayWndTest, HeldBuffer_NullOrWithoutImage_IsRefusedAndCounted) {
  const KrResult null = mWindow.DisplayHeld(nullptr, false);
  const KrResult chunks = mWindow.DisplayHeld(std::make_shared<const KrBuffer>(KrPayloadType::ChunkData), false);

  EXPECT_EQ(null.GetCodeNumber(), 1281u);
  EXPECT_FALSE(null.GetDescription().IsEmpty());
  EXPECT_EQ(chunks.GetCodeNumber(), 1281u);
  EXPECT_EQ(chunks.GetDescription(), KrString("aBuffer payload type not image"));
  EXPECT_EQ(mWindow.GetStatistics().received, 2u);
  EXPECT_EQ(mWindow.GetStatistics().refused, 2u);
}

TEST_F(KrDisplayWndTest, NullImage_IsRefusedAndCounted) {
  EXPECT_EQ(mWindow.Display(static_cast<const IKrImage*>(nullptr), false).GetCodeNumber(), 1281u);

  EXPECT_EQ(mWindow.GetStatistics().refused, 1u);
}
