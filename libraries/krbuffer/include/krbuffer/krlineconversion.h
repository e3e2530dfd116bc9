#pragma once
// The conversion of one image to BGRa8 a line at a time, in any order: for those who need parts of it, as a display
// that scales while it converts. Which lines are wanted, and where they go, is left to the caller.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstdint>
#include <memory>

class KrBufferConverter;

/// Converts lines of one image with the settings that a converter had when the conversion was opened.
///
/// Thread: ConvertLine and FindLine in several threads at once; all else one at a time.
/// Ownership: borrows the image's bytes, nothing else of it, from Open or Rebind until Close; the converter is borrowed
/// for the call alone.
///
///     KrLineConversion lines;
///     if (lines.Open(converter, *image).IsOK())
///       lines.ConvertLine(0, firstLine.data());
class KR_EXPORT KrLineConversion {
public:
  KrLineConversion();
  ~KrLineConversion();
  /// Takes a conversion over; the other is then not open.
  KrLineConversion(KrLineConversion&& aOther) noexcept;
  /// The same; what this one had before is given up.
  KrLineConversion& operator=(KrLineConversion&& aOther) noexcept;
  KrLineConversion(const KrLineConversion&) = delete;
  KrLineConversion& operator=(const KrLineConversion&) = delete;

  /// Gets ready to convert an image with the converter's present settings. InvalidInput, NotSupported, BadData,
  /// SystemError and Failed as KrBufferConverter::Convert gives them; the conversion is then closed.
  KrResult Open(const KrBufferConverter& aConverter, const IKrImage& aSource);
  /// Goes on with the same image elsewhere in memory, with the settings as they are: a copy of its bytes with the same
  /// padding. InvalidInput for an image of another size, format or padding or with fewer bytes, or while closed;
  /// nothing is changed then.
  KrResult Rebind(const IKrImage& aCopy);
  /// Gives up the conversion; lines can no longer be converted.
  void Close();

  /// Whether lines can be converted.
  bool IsOpen() const;
  /// Width in pixels; 0 while closed.
  std::uint32_t GetWidth() const;
  /// Height in lines; 0 while closed.
  std::uint32_t GetHeight() const;

  /// Whether pixels may be other than opaque: where the image's format has an alpha of its own. False while closed.
  bool HasAlpha() const;

  /// Writes one line as GetWidth() pixels of BGRa8, bit for bit as KrBufferConverter::Convert writes it. aLine is less
  /// than GetHeight().
  void ConvertLine(std::uint32_t aLine, std::uint8_t* aDestination) const;
  /// The line as ConvertLine would write it, where it stands like that in the image's bytes, at any address: that of a
  /// BGRa8 image to which no setting applies. Null for all others.
  const std::uint8_t* FindLine(std::uint32_t aLine) const;

  /// Converts all lines into the destination's image, in as many threads as the converter has. The destination is made
  /// an image of BGRa8 in this size where it is none. InvalidInput while closed or for the image's own memory,
  /// SystemError where memory or threads cannot be had; the destination is then unchanged.
  KrResult ConvertAll(const KrBufferConverter& aConverter, KrBuffer& aDestination) const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};
