#pragma once
// The raw values along a line or a column of a frame, for each of its colours, and how sharp they are. Which line it is
// and how it looks is left to the panel.

#include "krbase/krresult.h"
#include "panels/framesnapshots.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace krviewer {

struct ProfilePoint {
  std::uint32_t position = 0; ///< Column of the frame in a line, line of the frame in a column.
  double value = 0;
};

/// The values of one colour, in rising positions.
struct ProfileChannel {
  char component = 'Y'; ///< As KrPixelValue names it; alpha is left out.
  std::vector<ProfilePoint> points;
};

struct ValueRange {
  double low = 0;
  double high = 0;
};

/// Thread: one at a time.
class LineProfile {
public:
  /// Reads the line or column that the snapshot was asked for. What the snapshot says, and the errors of KrReadPixel;
  /// there are no channels then. InvalidInput for one that was asked for a sample.
  KrResult Read(const Snapshot& aSnapshot);

  const std::vector<ProfileChannel>& GetChannels() const { return mChannels; }
  /// The line or column that was read: the last one where the request is for one beyond the frame.
  std::uint32_t GetIndex() const { return mIndex; }
  /// Along which way the positions run: the width of a line, the height of a column.
  std::uint32_t GetLength() const { return mLength; }
  /// What the format can hold; nothing for floating-point formats.
  std::optional<ValueRange> GetFormatRange() const { return mFormatRange; }
  /// What occurs; nothing without finite values.
  std::optional<ValueRange> GetValueRange() const;
  /// The mean step between neighbours of one colour, in values a pixel: the greater, the sharper the same scene is.
  /// Colours and luma count, chroma does not; 0 without two values of a colour.
  double GetSharpness() const;

private:
  KrResult ReadPixels(const Snapshot& aSnapshot, bool aIsColumn);

  std::vector<ProfileChannel> mChannels;
  std::uint32_t mIndex = 0;
  std::uint32_t mLength = 0;
  std::optional<ValueRange> mFormatRange;
};

/// As few points as a plot needs: of each of aParts equal parts of the positions up to aLength the least and the
/// greatest value, in the order of their positions. All of them where there are no more than twice as many; what is no
/// number is left out.
std::vector<ProfilePoint> ReducePoints(const std::vector<ProfilePoint>& aPoints, std::uint32_t aLength,
                                       std::size_t aParts);

} // namespace krviewer
