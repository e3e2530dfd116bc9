// The converted image that the display lends to the application.

#include "displayimages.h"
#include "everyformat.h"
#include "exactimage.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

std::vector<std::uint8_t> GetBytes(const KrBuffer& aBuffer) {
  return {aBuffer.GetDataPointer(), aBuffer.GetDataPointer() + aBuffer.GetSize()};
}

bool CanBeShown(const KrPixelTypeInfo& aFormat) {
  return KrBufferConverter::IsConversionSupported(aFormat.type, DisplayContent::kDisplayPixelType);
}

/// Settings that no format is left alone by.
void ChangeSettings(KrBufferConverter& aConverter) {
  EXPECT_TRUE(aConverter.SetGamma(0.5).IsOK());
  EXPECT_TRUE(aConverter.SetWhiteBalance({2, 0.5, 3}).IsOK());
  EXPECT_TRUE(aConverter.SetSampleWindow({-20, 700}).IsOK());
}

} // namespace

class InternalBufferOfFormat : public testing::TestWithParam<FormatCase> {};

INSTANTIATE_TEST_SUITE_P(EveryFormat, InternalBufferOfFormat, testing::ValuesIn(SelectFormats(CanBeShown)),
                         testing::PrintToStringParamName());

TEST_P(InternalBufferOfFormat, WholeImage_IsAsConvertMakesIt) {
  OpenDisplay display;
  for (const bool hasSettings : {false, true}) {
    SCOPED_TRACE(hasSettings);
    if (hasSettings)
      ChangeSettings(display.content.GetConverter());
    const ExactImage exact(GetParam().format, 37, 9, 3, 2);
    KrBuffer expected;
    ASSERT_TRUE(display.content.GetConverter().Convert(&exact.image, &expected, true, false).IsOK());

    display.Show(&exact.image);

    EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), GetBytes(expected));
    EXPECT_EQ(display.Look().pixels, GetBytes(expected));
  }
}

TEST_P(InternalBufferOfFormat, SettingsChangedAfterDisplay_AreTakenByTheNextImageAlone) {
  OpenDisplay display;
  KrBufferConverter& converter = display.content.GetConverter();
  const ExactImage exact(GetParam().format, 37, 9);
  KrBuffer before;
  ASSERT_TRUE(converter.Convert(&exact.image, &before, true, false).IsOK());
  display.Show(&exact.image);

  ChangeSettings(converter);

  EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), GetBytes(before));
  KrBuffer after;
  ASSERT_TRUE(converter.Convert(&exact.image, &after, true, false).IsOK());
  display.Show(&exact.image);
  EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), GetBytes(after));
}

TEST(InternalBuffer, NoImage_IsAnEmptyImage) {
  DisplayContent content;

  EXPECT_EQ(content.GetInternalBuffer().GetSize(), 0u);
  EXPECT_EQ(content.GetInternalBuffer().GetPayloadType(), KrPayloadType::Image);
}

TEST(InternalBuffer, NextImage_ChangesItByTheNextCallAlone) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  const KrBuffer& buffer = display.content.GetInternalBuffer();

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));

  EXPECT_EQ(GetBytes(buffer), MakeGreyPixels(4, 4, 1));
  EXPECT_EQ(&display.content.GetInternalBuffer(), &buffer);
  EXPECT_EQ(GetBytes(buffer), MakeGreyPixels(4, 4, 2));
}

TEST(InternalBuffer, SameImage_IsNotConvertedAgain) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  display.content.GetInternalBuffer().GetDataPointer()[0] = 99;

  EXPECT_EQ(display.content.GetInternalBuffer().GetDataPointer()[0], 99);
}

TEST(InternalBuffer, ImagesOfOneSize_UseTheSameMemory) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  const std::uint8_t* const memory = display.content.GetInternalBuffer().GetDataPointer();

  display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));

  EXPECT_EQ(display.content.GetInternalBuffer().GetDataPointer(), memory);
}

TEST(InternalBuffer, Clear_EmptiesIt) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  const KrBuffer& buffer = display.content.GetInternalBuffer();

  display.content.Clear();

  EXPECT_EQ(buffer.GetSize(), 0u);
}

TEST(InternalBuffer, UsedOtherwiseByTheApplication_IsMadeRightAgain) {
  std::vector<std::uint8_t> own(4 * 4 * 4, 77);
  struct Use {
    const char* name;
    std::function<void(KrBuffer&)> apply;
  };
  const std::vector<Use> uses = {
      {"another payload", [](KrBuffer& aBuffer) { aBuffer.SetPayloadType(KrPayloadType::File); }},
      {"another format",
       [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.GetImage()->Alloc(640, 480, KrPixel::Mono8).IsOK()); }},
      {"padding", [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.GetImage()->Alloc(4, 4, KrPixel::BGRa8, 12).IsOK()); }},
      {"another size", [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.GetImage()->Alloc(5, 4, KrPixel::BGRa8).IsOK()); }},
      {"bytes without a description", [](KrBuffer& aBuffer) { EXPECT_TRUE(aBuffer.Alloc(10).IsOK()); }},
      {"freed", [](KrBuffer& aBuffer) { aBuffer.Free(); }},
      {"moved away", [](KrBuffer& aBuffer) { const KrBuffer taken = std::move(aBuffer); }},
      {"memory of its own",
       [&own](KrBuffer& aBuffer) {
         EXPECT_TRUE(aBuffer.Attach(own.data(), own.size()).IsOK());
         EXPECT_TRUE(aBuffer.DescribeImage(4, 4, KrPixel::BGRa8).IsOK());
       }},
  };
  for (const Use& use : uses) {
    SCOPED_TRACE(use.name);
    OpenDisplay display;
    display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));

    use.apply(display.content.GetInternalBuffer());

    EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 1));
    ASSERT_NE(display.content.GetInternalBuffer().GetImage(), nullptr);
    EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), MakeGreyPixels(4, 4, 1));
    use.apply(display.content.GetInternalBuffer());
    display.Show(MakeImage(4, 4, KrPixel::Mono8, 2));
    EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), MakeGreyPixels(4, 4, 2));
  }
  EXPECT_EQ(own, std::vector<std::uint8_t>(4 * 4 * 4, 77));
}

TEST(InternalBuffer, GivenToDisplay_IsShownAndStaysAsItIs) {
  OpenDisplay display;
  display.Show(MakeImage(4, 4, KrPixel::Mono8, 1));
  const KrBuffer& buffer = display.content.GetInternalBuffer();

  display.Show(buffer);

  EXPECT_EQ(display.Look().pixels, MakeGreyPixels(4, 4, 1));
  EXPECT_EQ(GetBytes(display.content.GetInternalBuffer()), MakeGreyPixels(4, 4, 1));
}
