#pragma once
// Conversion to the format that holds the same samples in bytes or words of their own. The samples are not changed;
// what they look like is the other converters' business.

#include "lineconverter.h"
#include "samplereader.h"

#include <cstddef>
#include <memory>

namespace krbuffer {

/// Bytes as they are, without what follows a line.
class LineCopier final : public LineConverter {
public:
  LineCopier(const LineSource& aSource, std::size_t aLineBytes) : LineConverter(aSource), mLineBytes(aLineBytes) {}
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  std::size_t mLineBytes;
};

/// Packed samples, each into 16 bits, least significant byte first; the bits above the significant ones become 0.
class Unpacker final : public LineConverter {
public:
  Unpacker(const LineSource& aSource, SampleReader aReader, std::size_t aSamplesPerPixel)
      : LineConverter(aSource), mReader(aReader), mSamplesPerLine(aSource.width * aSamplesPerPixel) {}
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  SampleReader mReader;
  std::size_t mSamplesPerLine;
};

/// Three planes into pixels of three components, each in 8 or 16 bits.
class PlaneMerger final : public LineConverter {
public:
  PlaneMerger(const LineSource& aSource, SampleReader aReader, std::size_t aBytesPerSample)
      : LineConverter(aSource), mReader(aReader), mBytesPerSample(aBytesPerSample) {}
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  SampleReader mReader;
  std::size_t mBytesPerSample;
};

/// True when the second format holds the samples of the first one unpacked. Any thread.
bool CanUnpack(KrPixelType aSource, KrPixelType aDestination);

/// The converter for such formats; null for others. Any thread.
std::unique_ptr<LineConverter> MakeUnpacker(const LineSource& aSource, KrPixelType aSourceType,
                                            KrPixelType aDestinationType);

} // namespace krbuffer
