#include "labcameras.h"
#include "labfixture.h"
#include "testclocks.h"

#include "krbuffer/krbufferconverter.h"
#include "krdevice/krstream.h"
#include "pixeltypetable.h"
#include "simulation/framelayout.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <string_view>
#include <vector>

using namespace krtransport::cameraregister;

namespace {

// A colour or a difference of colours, without rounding.
struct Colour {
  double red;
  double green;
  double blue;
};

Colour GetRampColour(std::uint64_t aStep) {
  return {static_cast<double>(aStep % 256), static_cast<double>((aStep + 85) % 256),
          static_cast<double>((aStep + 170) % 256)};
}

// A component in fewer bits, shown as the nearest byte.
double Quantize(double aComponent, unsigned aBits) {
  if (aBits >= 8)
    return aComponent;
  const double largest = (1u << aBits) - 1;
  return std::round(std::floor(aComponent / (1u << (8 - aBits))) * 255.0 / largest);
}

struct SpaceFactors {
  double red;
  double blue;
  double lumaFloor;
  double lumaScale;
  double chromaScale;
};

SpaceFactors GetFactors(KrColorSpace aSpace) {
  if (aSpace == KrColorSpace::Full601)
    return {0.299, 0.114, 0.0, 1.0, 1.0};
  const double lumaScale = 219.0 / 255.0;
  const double chromaScale = 224.0 / 255.0;
  return aSpace == KrColorSpace::Video601 ? SpaceFactors{0.299, 0.114, 16.0, lumaScale, chromaScale}
                                          : SpaceFactors{0.2126, 0.0722, 16.0, lumaScale, chromaScale};
}

// The colour that luma of one pixel and chroma of another give, both rounded to bytes on their way.
Colour GetSubsampledColour(const Colour& aOwn, const Colour& aShared, const SpaceFactors& aFactors) {
  const auto getLuma = [&](const Colour& aColour) {
    return aFactors.red * aColour.red + (1 - aFactors.red - aFactors.blue) * aColour.green +
           aFactors.blue * aColour.blue;
  };
  const auto store = [](double aValue, double aFloor, double aScale) {
    return (std::round(aFloor + aValue * aScale) - aFloor) / aScale;
  };
  const double luma = store(getLuma(aOwn), aFactors.lumaFloor, aFactors.lumaScale);
  const double blueFactor = 2 * (1 - aFactors.blue);
  const double redFactor = 2 * (1 - aFactors.red);
  const double blueDifference = store((aShared.blue - getLuma(aShared)) / blueFactor, 128, aFactors.chromaScale);
  const double redDifference = store((aShared.red - getLuma(aShared)) / redFactor, 128, aFactors.chromaScale);
  const double red = luma + redFactor * redDifference;
  const double blue = luma + blueFactor * blueDifference;
  const double green = (luma - aFactors.red * red - aFactors.blue * blue) / (1 - aFactors.red - aFactors.blue);
  return {std::clamp(red, 0.0, 255.0), std::clamp(green, 0.0, 255.0), std::clamp(blue, 0.0, 255.0)};
}

unsigned GetChromaPixels(KrPixelLayout aLayout) {
  if (aLayout == KrPixelLayout::YUYV || aLayout == KrPixelLayout::UYVY)
    return 2;
  return aLayout == KrPixelLayout::UYYVYY || aLayout == KrPixelLayout::YYUYYV ? 4 : 1;
}

bool IsBayer(KrPixelLayout aLayout) {
  return aLayout >= KrPixelLayout::BayerGR && aLayout <= KrPixelLayout::BayerBG;
}

Colour GetExpected(const KrPixelTypeInfo& aInfo, std::uint32_t aX, std::uint64_t aStep) {
  const Colour own = GetRampColour(aStep);
  if (aInfo.layout == KrPixelLayout::Mono) {
    const double grey = Quantize(own.red, aInfo.bitsPerSample);
    return {grey, grey, grey};
  }
  if (aInfo.colorSpace != KrColorSpace::None)
    return GetSubsampledColour(own, GetRampColour(aStep - aX % GetChromaPixels(aInfo.layout)),
                               GetFactors(aInfo.colorSpace));
  if (aInfo.type == KrPixel::RGB565p || aInfo.type == KrPixel::BGR565p)
    return {Quantize(own.red, 5), Quantize(own.green, 6), Quantize(own.blue, 5)};
  const unsigned bits = aInfo.bitsPerSample;
  return {Quantize(own.red, bits), Quantize(own.green, bits), Quantize(own.blue, bits)};
}

// How far a shown byte may be from what is expected: by rounding, and where samples of few bits are interpolated by
// what one of them makes.
double GetTolerance(const KrPixelTypeInfo& aInfo) {
  if (IsBayer(aInfo.layout))
    return aInfo.bitsPerSample < 8 ? 255.0 / ((1u << aInfo.bitsPerSample) - 1) : 1.0;
  return aInfo.colorSpace != KrColorSpace::None ? 1.0 : 0.0;
}

// Interpolation of a ramp gives the ramp, but where a component begins anew.
bool IsSmooth(const Colour& aColour) {
  const auto isInside = [](double aComponent) { return aComponent >= 3 && aComponent <= 252; };
  return isInside(aColour.red) && isInside(aColour.green) && isInside(aColour.blue);
}

void ExpectShownAsRamp(const KrBuffer& aBuffer, const KrPixelTypeInfo& aInfo) {
  KrBuffer shown;
  KrBufferConverter converter(1);
  ASSERT_TRUE(converter.Convert(aBuffer.GetImage(), &shown, true, false).IsOK());
  const std::uint32_t width = aBuffer.GetImage()->GetWidth();
  const std::uint32_t height = aBuffer.GetImage()->GetHeight();
  const double tolerance = GetTolerance(aInfo);
  std::uint32_t compared = 0;
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      const std::uint64_t step = x + y + aBuffer.GetFrameID() + 256;
      const bool isBorder = x == 0 || y == 0 || x + 1 == width || y + 1 == height;
      if (IsBayer(aInfo.layout) && (isBorder || !IsSmooth(GetRampColour(step))))
        continue;
      const Colour expected = GetExpected(aInfo, x, step);
      const std::uint8_t* const pixel = shown.GetDataPointer() + (std::size_t{y} * width + x) * 4;
      ASSERT_NEAR(pixel[2], expected.red, tolerance) << x << ", " << y;
      ASSERT_NEAR(pixel[1], expected.green, tolerance) << x << ", " << y;
      ASSERT_NEAR(pixel[0], expected.blue, tolerance) << x << ", " << y;
      ASSERT_EQ(pixel[3], 255);
      ++compared;
    }
  }
  EXPECT_GT(compared, width * height / 2);
}

class FormatsTest : public LabTest {
protected:
  FormatsTest() : LabTest(std::make_shared<JumpingClock>()) {}

  void SetUpCamera(const char* aMAC, KrPixelType aType, std::uint32_t aWidth, std::uint32_t aHeight) {
    mDevice.reset();
    ASSERT_TRUE(Open(aMAC, mDevice).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kPixelFormat, aType).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kWidth, aWidth).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kHeight, aHeight).IsOK());
    ASSERT_TRUE(WriteInteger(*mDevice, kAcquisitionMode, kSingleFrame).IsOK());
  }

  std::unique_ptr<KrDevice> mDevice;
};

struct SizeRow {
  std::uint32_t width;
  std::uint32_t height;
};

// The least, one that no group of pixels but the smallest divides, and one that has every step of the ramp.
constexpr SizeRow kSizes[] = {{kWidthMin, kHeightMin}, {76, 18}, {308, 22}};

} // namespace

TEST(LabFormats, AllCamerasTogether_OfferEveryFormatThatCanBeShownAndNoneTwiceOnOneCamera) {
  std::set<std::string_view> offered;
  for (const krtransport::LabGEVCamera& camera : ListLabCameras()) {
    std::set<KrPixelType> ofCamera;
    for (const KrPixelType type : camera.pixelFormats) {
      offered.insert(KrFindPixelType(type)->name);
      EXPECT_TRUE(ofCamera.insert(type).second) << KrFindPixelType(type)->name;
    }
  }

  std::set<std::string_view> shown;
  for (const KrPixelTypeInfo& info : krbuffer::kPixelTypes) {
    if (KrBufferConverter::IsConversionSupported(info.type, KrPixel::BGRa8))
      shown.insert(info.name);
  }

  EXPECT_EQ(offered, shown);
}

TEST_F(FormatsTest, EveryFormatOfEveryCamera_EverySize_ArrivesAsPaintedAndIsShownAsTheRamp) {
  int formats = 0;
  for (const krtransport::LabGEVCamera& camera : ListLabCameras()) {
    const bool isForEverybody = camera.foreignControl == krsystem::AccessType::Open;
    if (!isForEverybody || camera.macAddress == kForeignMAC || camera.ipAddress == "0.0.0.0")
      continue;
    for (const KrPixelType type : camera.pixelFormats) {
      const KrPixelTypeInfo info = *KrFindPixelType(type);
      ++formats;
      for (const SizeRow& size : kSizes) {
        SCOPED_TRACE(std::string(info.name) + " " + std::to_string(size.width));
        ASSERT_NO_FATAL_FAILURE(SetUpCamera(camera.macAddress.CStr(), type, size.width, size.height));
        KrStream stream(*mDevice, 2);
        ASSERT_TRUE(stream.Start().IsOK());
        KrBuffer* buffer = nullptr;

        ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

        ASSERT_EQ(buffer->GetStatus(), KrBufferStatus::Complete);
        EXPECT_EQ(buffer->GetImage()->GetPixelType(), type);
        std::vector<std::uint8_t> painted(buffer->GetImage()->GetImageSize());
        ASSERT_EQ(buffer->GetAcquiredSize(), painted.size());
        ASSERT_TRUE(krtransport::FillPattern(type, size.width, size.height, buffer->GetFrameID(), painted.data()));
        EXPECT_EQ(std::memcmp(buffer->GetDataPointer(), painted.data(), painted.size()), 0);
        // A float image is shown from its least to its greatest value.
        if (info.sampleKind != KrSampleKind::Float || size.width > 256) {
          ASSERT_NO_FATAL_FAILURE(ExpectShownAsRamp(*buffer, info));
        }
      }
    }
  }
  EXPECT_GE(formats, 135);
}

TEST_F(FormatsTest, OffsetsAndReverseX_ShowInThePicture) {
  ASSERT_NO_FATAL_FAILURE(SetUpCamera(kMonoMAC, KrPixel::Mono12p, 128, 32));
  ASSERT_TRUE(WriteInteger(*mDevice, kOffsetX, 100).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kOffsetY, 30).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kReverseX, 1).IsOK());
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;

  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  const std::uint8_t* const bytes = buffer->GetDataPointer();
  const std::uint64_t firstStep = (100 + 127 + 30 + buffer->GetFrameID()) % 256;
  EXPECT_EQ(bytes[0] + 256u * (bytes[1] & 0xFu), firstStep * 4095 / 255);
  EXPECT_EQ((bytes[1] >> 4) + 16u * bytes[2], (firstStep - 1) % 256 * 4095 / 255);
}

TEST_F(FormatsTest, SizeAndOffset_TogetherBeyondTheSensor_AreRefused) {
  ASSERT_NO_FATAL_FAILURE(SetUpCamera(kMonoMAC, KrPixel::Mono8, 640, 480));

  EXPECT_TRUE(WriteInteger(*mDevice, kOffsetX, 644) == KrResult::Code::ProtocolError);
  EXPECT_TRUE(WriteInteger(*mDevice, kOffsetX, 640).IsOK());
  EXPECT_TRUE(WriteInteger(*mDevice, kWidth, 644) == KrResult::Code::ProtocolError);
  EXPECT_TRUE(WriteInteger(*mDevice, kOffsetY, 482) == KrResult::Code::ProtocolError);
  EXPECT_TRUE(WriteInteger(*mDevice, kWidth, 636).IsOK());
}

TEST_F(FormatsTest, Chunks_WhenActive_FollowTheImageWithTheirValues) {
  ASSERT_NO_FATAL_FAILURE(SetUpCamera(kMonoMAC, KrPixel::Mono10p, 68, 18));
  ASSERT_TRUE(WriteFloat(*mDevice, kExposureTime, 2500.0).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kChunkModeActive, 1).IsOK());
  for (std::uint32_t chunk = 0; chunk < kChunkCount; ++chunk)
    ASSERT_TRUE(WriteInteger(*mDevice, kChunkEnable + chunk * kChunkStride, 1).IsOK());
  std::uint32_t payload = 0;
  ASSERT_TRUE(ReadInteger(*mDevice, kPayloadSize, payload).IsOK());
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;

  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  // 68 pixels of 10 bits are 85 bytes; the image's chunk is filled up to a multiple of 4.
  EXPECT_EQ(payload, 1532u + 8 + 3 * 16);
  EXPECT_EQ(buffer->GetAcquiredSize(), payload);
  ASSERT_EQ(buffer->GetChunkCount(), 4u);
  EXPECT_EQ(buffer->GetChunk(0)->offset, 0u);
  EXPECT_EQ(buffer->GetImage()->GetImageSize(), 85u * 18u);
  const auto read = [&](std::uint32_t aIndex) {
    std::uint64_t value = 0;
    const std::uint8_t* const data = buffer->GetChunkData(*buffer->GetChunk(aIndex));
    for (std::size_t i = 0; i < 8; ++i)
      value = value << 8 | data[i];
    return value;
  };
  EXPECT_EQ(read(1), buffer->GetFrameID());
  EXPECT_EQ(krtransport::DecodeFloat(buffer->GetChunkData(*buffer->GetChunk(2))), 2500.0);
  EXPECT_EQ(read(3), buffer->GetTimestampNs());
}

TEST_F(FormatsTest, Chunks_DisabledOnes_AreLeftOut) {
  ASSERT_NO_FATAL_FAILURE(SetUpCamera(kMonoMAC, KrPixel::Mono8, 64, 16));
  ASSERT_TRUE(WriteInteger(*mDevice, kChunkModeActive, 1).IsOK());
  ASSERT_TRUE(WriteInteger(*mDevice, kChunkEnable + kChunkTimestamp * kChunkStride, 1).IsOK());
  KrStream stream(*mDevice, 2);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;

  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  EXPECT_EQ(buffer->GetSize(), 64u * 16u + 8 + 16);
  ASSERT_EQ(buffer->GetChunkCount(), 2u);
  EXPECT_EQ(buffer->GetChunk(1)->id, krtransport::kFirstChunkID + kChunkTimestamp);
}
