#pragma once
// What turns the lines of one image into lines of another format: the interface, and the choice by formats. Whether the
// lines are there in memory is checked by the caller.

#include "krbuffer/krpixeltype.h"
#include "linesource.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace krbuffer {

class ToneStore;

/// Converts the lines of one image, whose conversion it was made for.
///
/// Thread: ConvertLine may run in several threads at once; it touches nothing but its own destination, so that lines
/// may be converted in any order.
/// Ownership: borrows the image's bytes.
class LineConverter {
public:
  explicit LineConverter(const LineSource& aSource) : mSource(aSource) {}
  virtual ~LineConverter() = default;

  /// Writes one line; must not throw.
  virtual void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination, StoreKind aStores) const = 0;
  /// The line as ConvertLine writes it where it stands like that in the source; null where it has to be converted.
  virtual const std::uint8_t* FindLine(std::uint32_t) const { return nullptr; }

  /// Writes the lines from aFirst on that come before aEnd, each so many bytes after the one before it, or before it
  /// where that is negative: for converters that make use of what they read for a line's neighbours.
  virtual void ConvertLines(std::uint32_t aFirst, std::uint32_t aEnd, std::uint8_t* aDestination,
                            std::ptrdiff_t aStrideBytes, StoreKind aStores) const;

  const LineSource& GetSource() const { return mSource; }
  /// Goes on with the same image elsewhere in memory; not beside ConvertLine.
  void Rebind(const std::uint8_t* aData) { mSource.data = aData; }

protected:
  LineSource mSource;
};

/// True when MakeLineConverter gives a converter for the formats. Any thread.
bool CanConvertLines(KrPixelType aSource, KrPixelType aDestination);

/// A converter for the image, with the settings of this moment, which concern conversions to BGRa8 alone; null for
/// formats that CanConvertLines refuses. Any thread.
std::unique_ptr<LineConverter> MakeLineConverter(const LineSource& aSource, KrPixelType aSourceType,
                                                 KrPixelType aDestinationType, ToneStore& aTones);

} // namespace krbuffer
