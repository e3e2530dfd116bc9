#pragma once
// A TIFF file as its library reads it back, for tests.

#include <gtest/gtest.h>

#include <tiffio.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

/// What a file holds, read when it is made.
class TiffFile {
public:
  explicit TiffFile(const std::string& aPath) {
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(aPath.c_str(), "r"), &TIFFClose);
    if (!tiff) {
      ADD_FAILURE() << aPath << " is no TIFF";
      return;
    }
    width = ReadNumber<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH);
    height = ReadNumber<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH);
    bitsPerSample = ReadNumber<std::uint16_t>(tiff.get(), TIFFTAG_BITSPERSAMPLE);
    samplesPerPixel = ReadNumber<std::uint16_t>(tiff.get(), TIFFTAG_SAMPLESPERPIXEL);
    sampleFormat = ReadNumber<std::uint16_t>(tiff.get(), TIFFTAG_SAMPLEFORMAT);
    photometric = ReadNumber<std::uint16_t>(tiff.get(), TIFFTAG_PHOTOMETRIC);
    description = ReadText(tiff.get(), TIFFTAG_IMAGEDESCRIPTION);
    software = ReadText(tiff.get(), TIFFTAG_SOFTWARE);
    const auto lineBytes = static_cast<std::size_t>(TIFFScanlineSize(tiff.get()));
    bytes.resize(lineBytes * height);
    for (std::uint32_t line = 0; line < height; ++line)
      EXPECT_EQ(TIFFReadScanline(tiff.get(), bytes.data() + line * lineBytes, line), 1) << "line " << line;
  }

  /// A sample as an unsigned number of its bits.
  std::uint64_t GetSample(std::uint32_t aX, std::uint32_t aY, std::uint32_t aComponent) const {
    const std::size_t index = (std::size_t{aY} * width + aX) * samplesPerPixel + aComponent;
    std::uint64_t sample = 0;
    std::memcpy(&sample, bytes.data() + index * (bitsPerSample / 8), bitsPerSample / 8);
    return sample;
  }

  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint16_t bitsPerSample = 0;
  std::uint16_t samplesPerPixel = 0;
  std::uint16_t sampleFormat = 0;
  std::uint16_t photometric = 0;
  std::string description;
  std::string software;
  std::vector<std::uint8_t> bytes;

private:
  template <typename Number>
  static Number ReadNumber(TIFF* aTiff, std::uint32_t aTag) {
    Number number = 0;
    EXPECT_EQ(TIFFGetFieldDefaulted(aTiff, aTag, &number), 1) << "tag " << aTag;
    return number;
  }
  static std::string ReadText(TIFF* aTiff, std::uint32_t aTag) {
    const char* text = nullptr;
    EXPECT_EQ(TIFFGetField(aTiff, aTag, &text), 1) << "tag " << aTag;
    return text ? text : "";
  }
};
