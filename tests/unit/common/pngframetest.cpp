#include "pngframe.h"

#include "krbuffer/krbufferconverter.h"
#include "pngfile.h"
#include "temporaryfolder.h"
#include "testframe.h"

namespace krapps {
namespace {

struct FormatRow {
  KrPixelType type;
  bool hasColour;
};

class PngOfFormat : public testing::TestWithParam<FormatRow> {
protected:
  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("frame.png");
};

TEST_P(PngOfFormat, HoldsWhatTheWindowsShow) {
  KrBuffer frame;
  FillFrame(frame, GetParam().type, 5);
  KrBuffer shown;
  ASSERT_TRUE(KrBufferConverter().Convert(frame.GetImage(), &shown, true, false).IsOK());

  const KrResult result = WriteFrame(frame, {.fileName = mPath, .format = FrameFileFormat::PNG});

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  const PngFile file(mPath);
  ASSERT_EQ(file.width, kTestWidth);
  ASSERT_EQ(file.height, kTestHeight);
  EXPECT_EQ(file.hasColour, GetParam().hasColour);
  EXPECT_FALSE(file.hasAlpha);
  const std::size_t samples = GetParam().hasColour ? 3 : 1;
  ASSERT_EQ(file.bytes.size(), samples * kTestWidth * kTestHeight);
  for (std::size_t index = 0; index < file.bytes.size(); ++index)
    ASSERT_EQ(file.bytes[index], shown.GetDataPointer()[index / samples * 4 + 2 - index % samples]) << index;
}

INSTANTIATE_TEST_SUITE_P(Formats, PngOfFormat,
                         testing::Values(FormatRow{KrPixel::Mono8, false}, FormatRow{KrPixel::Mono12p, false},
                                         FormatRow{KrPixel::Mono16, false}, FormatRow{KrPixel::Mono1p, false},
                                         FormatRow{KrPixel::Coord3D_A32f, false}, FormatRow{KrPixel::BayerRG8, true},
                                         FormatRow{KrPixel::BayerBG12Packed, true}, FormatRow{KrPixel::RGB8, true},
                                         FormatRow{KrPixel::BGRa8, true}, FormatRow{KrPixel::RGB16_Planar, true},
                                         FormatRow{KrPixel::YUV422_8, true}),
                         [](const auto& aInfo) { return std::string(KrFindPixelType(aInfo.param.type)->name); });

} // namespace
} // namespace krapps
