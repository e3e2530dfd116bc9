#pragma once
// The form of the tables in which kernels state the formats that they read.

#include "krbuffer/krpixeltype.h"
#include "pixelreaders.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// What a reader needs to know of a format.
struct ReaderRow {
  KrPixelLayout layout;
  KrPixelPacking packing;
  std::uint8_t bitsPerSample;
  LineReader read;
  KrSampleKind sampleKind = KrSampleKind::Unsigned;
};

/// The reader of a format without luma and chroma, or null where the table has none.
template <std::size_t Rows>
LineReader FindReader(const std::array<ReaderRow, Rows>& aTable, const KrPixelTypeInfo& aFormat) {
  if (aFormat.colorSpace != KrColorSpace::None)
    return nullptr;
  const auto row = std::find_if(aTable.begin(), aTable.end(), [&aFormat](const ReaderRow& aRow) {
    return aRow.layout == aFormat.layout && aRow.packing == aFormat.packing &&
           aRow.bitsPerSample == aFormat.bitsPerSample && aRow.sampleKind == aFormat.sampleKind;
  });
  return row != aTable.end() ? row->read : nullptr;
}

} // namespace krbuffer
