#include "tiffframe.h"

#include "krbuffer/krbufferconverter.h"
#include "temporaryfolder.h"
#include "testframe.h"
#include "tifffile.h"

#include <gmock/gmock.h>

namespace krapps {
namespace {

using testing::HasSubstr;

class Tiff : public testing::Test {
protected:
  TiffFile Save(const KrBuffer& aFrame) {
    const KrResult result = WriteFrame(
        aFrame, {.fileName = mPath, .format = FrameFileFormat::TIFF, .deviceID = "02:4b:52", .software = "krtool 1"});
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return TiffFile(mPath);
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("frame.tif");
};

struct FormatRow {
  KrPixelType type;
  std::uint16_t bits;
  std::uint16_t samples;
  std::uint16_t sampleFormat = SAMPLEFORMAT_UINT;
};

class TiffOfFormat : public Tiff, public testing::WithParamInterface<FormatRow> {};

TEST_P(TiffOfFormat, HoldsEverySampleOfTheFrame) {
  const FormatRow& row = GetParam();
  const KrPixelTypeInfo info = KrFindPixelType(row.type).value();
  const bool isBlueFirst = info.layout == KrPixelLayout::BGR || info.layout == KrPixelLayout::BGRa;
  for (const std::uint32_t padding : {0U, 3U}) {
    KrBuffer frame;
    FillFrame(frame, row.type, padding);
    std::filesystem::remove(mPath);

    const TiffFile file = Save(frame);

    EXPECT_TRUE(KeepsEverySample(FrameFileFormat::TIFF, row.type));
    ASSERT_EQ(file.width, kTestWidth);
    ASSERT_EQ(file.height, kTestHeight);
    ASSERT_EQ(file.bitsPerSample, row.bits);
    ASSERT_EQ(file.samplesPerPixel, row.samples);
    EXPECT_EQ(file.sampleFormat, row.sampleFormat);
    EXPECT_EQ(file.photometric, row.samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    for (std::uint32_t y = 0; y < kTestHeight; ++y)
      for (std::uint32_t x = 0; x < kTestWidth; ++x)
        for (std::uint32_t component = 0; component < row.samples; ++component) {
          const std::uint32_t stored = isBlueFirst && component < 3 ? 2 - component : component;
          ASSERT_EQ(file.GetSample(x, y, component), MakeSample(x, y, stored, info.bitsPerSample))
              << x << " " << y << " " << component;
        }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TiffOfFormat,
    testing::Values(
        FormatRow{KrPixel::Mono8, 8, 1}, FormatRow{KrPixel::Mono8s, 8, 1, SAMPLEFORMAT_INT},
        FormatRow{KrPixel::Mono10, 16, 1}, FormatRow{KrPixel::Mono10p, 16, 1}, FormatRow{KrPixel::Mono10Packed, 16, 1},
        FormatRow{KrPixel::Mono12, 16, 1}, FormatRow{KrPixel::Mono12p, 16, 1}, FormatRow{KrPixel::Mono12Packed, 16, 1},
        FormatRow{KrPixel::Mono14p, 16, 1}, FormatRow{KrPixel::Mono16, 16, 1}, FormatRow{KrPixel::Mono32, 32, 1},
        FormatRow{KrPixel::BayerRG8, 8, 1}, FormatRow{KrPixel::BayerGB10p, 16, 1},
        FormatRow{KrPixel::BayerBG12Packed, 16, 1}, FormatRow{KrPixel::BayerGR16, 16, 1},
        FormatRow{KrPixel::RGB8, 8, 3}, FormatRow{KrPixel::BGR8, 8, 3}, FormatRow{KrPixel::RGB12p, 16, 3},
        FormatRow{KrPixel::BGR10p, 16, 3}, FormatRow{KrPixel::RGB16, 16, 3}, FormatRow{KrPixel::BGR16, 16, 3},
        FormatRow{KrPixel::RGBa8, 8, 4}, FormatRow{KrPixel::BGRa8, 8, 4}, FormatRow{KrPixel::BGRa12p, 16, 4},
        FormatRow{KrPixel::RGB8_Planar, 8, 3}, FormatRow{KrPixel::RGB16_Planar, 16, 3},
        FormatRow{KrPixel::Coord3D_C16, 16, 1}, FormatRow{KrPixel::Coord3D_A32f, 32, 1, SAMPLEFORMAT_IEEEFP},
        FormatRow{KrPixel::Confidence32f, 32, 1, SAMPLEFORMAT_IEEEFP},
        FormatRow{KrPixel::Data32f, 32, 1, SAMPLEFORMAT_IEEEFP}, FormatRow{KrPixel::Data16s, 16, 1, SAMPLEFORMAT_INT},
        FormatRow{KrPixel::Data32s, 32, 1, SAMPLEFORMAT_INT}),
    [](const auto& aInfo) { return std::string(KrFindPixelType(aInfo.param.type)->name); });

class TiffAsShown : public Tiff, public testing::WithParamInterface<FormatRow> {};

TEST_P(TiffAsShown, HoldsWhatTheWindowsShow) {
  KrBuffer frame;
  FillFrame(frame, GetParam().type);
  KrBuffer shown;
  ASSERT_TRUE(KrBufferConverter().Convert(frame.GetImage(), &shown, true, false).IsOK());

  const TiffFile file = Save(frame);

  EXPECT_FALSE(KeepsEverySample(FrameFileFormat::TIFF, GetParam().type));
  ASSERT_EQ(file.bitsPerSample, 8);
  ASSERT_EQ(file.samplesPerPixel, GetParam().samples);
  for (std::uint32_t y = 0; y < kTestHeight; ++y)
    for (std::uint32_t x = 0; x < kTestWidth; ++x)
      for (std::uint32_t component = 0; component < GetParam().samples; ++component)
        ASSERT_EQ(file.GetSample(x, y, component), shown.GetDataPointer()[(y * kTestWidth + x) * 4 + 2 - component]);
}

INSTANTIATE_TEST_SUITE_P(Formats, TiffAsShown,
                         testing::Values(FormatRow{KrPixel::Mono1p, 8, 1}, FormatRow{KrPixel::Mono2p, 8, 1},
                                         FormatRow{KrPixel::Mono4p, 8, 1}, FormatRow{KrPixel::RGB565p, 8, 3},
                                         FormatRow{KrPixel::YUV422_8, 8, 3}, FormatRow{KrPixel::YCbCr8, 8, 3}),
                         [](const auto& aInfo) { return std::string(KrFindPixelType(aInfo.param.type)->name); });

TEST_F(Tiff, Description_NamesFormatBitsOrderAndTimes) {
  KrBuffer frame;
  FillFrame(frame, KrPixel::BayerGB12p);

  const TiffFile file = Save(frame);

  EXPECT_EQ(file.software, "krtool 1");
  for (const char* line : {"pixel_format=BayerGB12p\n", "significant_bits=12\n", "bayer_order=GB\n", "frame_id=4711\n",
                           "timestamp_ns=123456789\n", "host_timestamp_ns=1700000000000000001\n",
                           "host_time=2023-11-14T22:13:20.000000001Z\n", "device_id=02:4b:52\n", "complete=yes\n"})
    EXPECT_THAT(file.description, HasSubstr(line));
}

TEST_F(Tiff, LargeImage_GoesIntoSeveralStripsWhole) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(1000, 701, KrPixel::Mono16).IsOK());
  for (std::size_t index = 0; index < frame.GetSize(); ++index)
    frame.GetDataPointer()[index] = static_cast<std::uint8_t>(index * 7 + index / 2000);

  const TiffFile file = Save(frame);

  ASSERT_EQ(file.bytes.size(), frame.GetSize());
  EXPECT_EQ(std::memcmp(file.bytes.data(), frame.GetDataPointer(), frame.GetSize()), 0);
}

} // namespace
} // namespace krapps
