#pragma once
// Which part of an image a graph needs, and a copy of that part that reads as the image does. When and from which frame
// it is taken is left to FrameSnapshots.

#include "krbuffer/krbuffer.h"

#include <cstdint>

namespace krviewer {

/// What a graph wants to see of an image.
struct CutoutRequest {
  enum class Kind {
    Sample, ///< Lines from all over the image, about kSamplePixels pixels.
    Line,   ///< One line, the one at index.
    Column, ///< One column, the one at index.
    Whole,  ///< All of it, up to kWholePixels; of a larger one as much as of a sample.
  };
  Kind kind = Kind::Sample;
  std::uint64_t index = 0; ///< Beyond the image it means the last line or column.

  friend bool operator==(const CutoutRequest&, const CutoutRequest&) = default;
};

/// Columns and pairs of lines of an image. It begins at an even line and at a column divisible by eight, so that the
/// colours of filters, groups of chroma and the bytes of packed pixels stay as they are.
struct Cutout {
  std::uint32_t firstColumn = 0;
  std::uint32_t columns = 0;
  std::uint32_t firstLine = 0;
  std::uint32_t lines = 0;
  std::uint32_t pairStep = 2; ///< Lines from the begin of one pair to that of the next; even.

  /// Where a line of the cutout lies in the image.
  std::uint32_t GetImageLine(std::uint32_t aLine) const { return firstLine + aLine / 2 * pairStep + aLine % 2; }

  /// Whether a line or column of an image of this size, as PlanCutout would take it, is in the cutout.
  bool Holds(const CutoutRequest& aRequest, std::uint32_t aWidth, std::uint32_t aHeight) const;

  friend bool operator==(const Cutout&, const Cutout&) = default;
};

/// The most pixels of a sample; two lines of an image may have more, of which the left part is taken.
inline constexpr std::uint32_t kSamplePixels = 1u << 19;
/// The most pixels of a line that are taken, and the most lines of a column.
inline constexpr std::uint32_t kProfilePixels = 1u << 16;

/// The most pixels of an image that is taken as a whole.
inline constexpr std::uint64_t kWholePixels = 1u << 25;

/// The part of an image of this size that a request means. Any thread.
Cutout PlanCutout(const CutoutRequest& aRequest, std::uint32_t aWidth, std::uint32_t aHeight);

/// Makes the copy an image of the cutout, in the image's own format and without padding; memory of the right size is
/// used again. NotSupported for formats of which it is not known how their pixels lie, BadData for an image with fewer
/// bytes than it says and for a cutout that is not within it, SystemError where memory is short.
/// Thread: any, while nobody writes to the image.
KrResult CopyCutout(const IKrImage& aImage, const Cutout& aCutout, KrBuffer& aCopy);

} // namespace krviewer
