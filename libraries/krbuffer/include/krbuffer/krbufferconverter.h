#pragma once
// Conversion of images between pixel formats, in several threads where that pays.
// To BGRa8, the format of the windows, and to the format that holds the same samples unpacked, for those who compute
// with them; scaling and drawing are left to the display.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"
#include "krbuffer/krconversionsettings.h"

#include <memory>
#include <optional>

class KrLineConversion;

/// Converts images.
///
/// Grey comes from mono formats, single colour planes, coordinates, confidences and data of up to 16 bits: signed ones
/// go from black at their least value to white at their greatest. Of floating-point images the finite minimum becomes
/// black and the finite maximum white (an image of one value is black); what is no number and negative infinity are
/// black, positive infinity is white. Bayer formats are interpolated bilinearly at their full depth, mirrored at the
/// edges. Samples of more than 8 bits are shown by their top 8 bits, of fewer by the nearest byte. YCbCr without a
/// number and the YUV formats use all of 0 to 255 with the factors of ITU-R BT.601; 601 and 709 mean these factors with
/// luma from 16 to 235 and chroma from 16 to 240; results are rounded to the nearest (halves up) and clamped.
///
/// Every line begins on a byte and has the bytes of its width, rounded up. Chroma of subsampled formats is the same for
/// all pixels of its group. Where the width is no multiple of the group, the last group is cut off with the line; when
/// any of its chroma is, it takes the chroma of the group before it, or none (128) when it is the only one.
///
/// Thread: Convert may run in several threads at once on one converter, each with a destination of its own; settings
/// may be changed and asked for in any thread meanwhile. Each Convert works with the settings of its begin.
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
  /// format and padding say, SystemError where memory or threads cannot be had, Failed where the
  /// source's class throws. The destination is then unchanged.
  KrResult Convert(const IKrImage* aSource, KrBuffer* aDestination, bool aAllocate, bool aBottomUp) const;

  /// Settings of conversions to BGRa8, in effect from the next Convert on. Values outside their range, and what is no
  /// number, give InvalidInput and change nothing. A channel for which all is at its default looks as without settings.

  /// Multiplies red, green and blue, each by a factor from 0 to 16 (1 by default), before gamma; more than white is
  /// white. Colour formats alone.
  KrResult SetWhiteBalance(const KrWhiteBalance& aFactors);
  /// The factors in use.
  KrWhiteBalance GetWhiteBalance() const;

  /// Raises every component but alpha, as a number from 0 to 1, to this power, from 0.1 to 10 (1 by default).
  KrResult SetGamma(double aExponent);
  /// The gamma in use.
  double GetGamma() const;

  /// Shows the samples of a window from black to white, in units of the format's own samples (of a floating-point
  /// format its values). Both ends are finite, low is below high. Formats of up to 8 bits a sample are shown whole.
  KrResult SetSampleWindow(const KrSampleWindow& aWindow);
  /// Shows all samples again.
  void ResetSampleWindow();
  /// The window, or nothing while all samples are shown.
  std::optional<KrSampleWindow> GetSampleWindow() const;

private:
  friend class KrLineConversion;
  struct Body;
  std::unique_ptr<Body> mBody;
};
