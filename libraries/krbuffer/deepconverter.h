#pragma once
// Conversion to BGRa8 of samples that are not bytes: they are read at their full depth and only then reduced, by their
// top 8 bits or by tables.

#include "deepreaders.h"
#include "lineconverter.h"
#include "pixelreaders.h"
#include "samplereader.h"
#include "tonetables.h"

#include <memory>

namespace krbuffer {

/// One component a pixel, always by a table: without one, readers of whole lines take such formats.
class DeepGreyConverter final : public LineConverter {
public:
  DeepGreyConverter(const LineSource& aSource, SampleReader aSamples, std::shared_ptr<const ToneTables> aTables);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  SampleReader mSamples;
  LineReader mBytes; ///< Of grey bytes, which the table makes.
  std::shared_ptr<const ToneTables> mTables;
};

/// Three components a pixel, or made into three. Without tables the samples have at least 8 bits.
class DeepColourConverter final : public LineConverter {
public:
  DeepColourConverter(const LineSource& aSource, SampleReader aSamples, DeepReader aReader, unsigned aBits,
                      std::shared_ptr<const ToneTables> aTables);
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const override;

private:
  void Store(const DeepPixel* aPixels, std::size_t aCount, std::uint8_t* aDestination) const;

  SampleReader mSamples;
  DeepReader mReader;
  unsigned mBits;
  std::shared_ptr<const ToneTables> mTables;
};

} // namespace krbuffer
