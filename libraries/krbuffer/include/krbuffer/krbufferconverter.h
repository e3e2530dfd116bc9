#pragma once
// Conversion of images between pixel formats, in several threads where that pays.
// To BGRa8, the format of the windows, and to the format that holds the same samples unpacked, for those who compute
// with them; scaling and drawing are left to the display.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <memory>

/// Converts images.
///
/// Thread: Convert may run in several threads at once on one converter, each with a destination of its own.
/// Ownership: borrows source and destination for the time of the call.
///
///     KrBufferConverter converter;
///     KrBuffer shown;
///     KrResult result = converter.Convert(image, &shown, true, false);
class KR_EXPORT KrBufferConverter {
public:
  /// Number of threads used for one image: -1 is one for each core, 1 is the caller's thread alone; 0 and values below
  /// -1 count as -1, values above 64 as 64.
  explicit KrBufferConverter(int aThreadCount = -1);
  ~KrBufferConverter();
  KrBufferConverter(const KrBufferConverter&) = delete;
  KrBufferConverter& operator=(const KrBufferConverter&) = delete;

  /// The number of threads in use, at least 1.
  int GetThreadCount() const;

  /// True when Convert can read the first format and write the second: BGRa8, or the format that KrGetUnpackedPixelType
  /// gives for the first. Unpacked samples are bit for bit those of the source; where the source is packed or in
  /// planes, bits above the significant ones are 0, and a format that is unpacked already is copied without its
  /// padding.
  static bool IsConversionSupported(KrPixelType aSource, KrPixelType aDestination);

  /// Converts an image into the destination's image, whose pixel type says the format wanted (BGRa8 when it holds
  /// none). aAllocate lets the destination be allocated anew where its size does not fit; without it a misfit is
  /// InvalidInput. aBottomUp writes the lines in reverse order. InvalidInput for null, a source without pixels, a
  /// destination of another payload type than image, and a source that lies in the destination's memory. NotSupported
  /// for formats that IsConversionSupported refuses, BadData for a source whose data is smaller than its width, height,
  /// format and padding say, SystemError where memory or threads cannot be had, Failed where
  /// the source's class throws. The destination is then unchanged.
  KrResult Convert(const IKrImage* aSource, KrBuffer* aDestination, bool aAllocate, bool aBottomUp) const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};
