#pragma once
// Which source pixel goes to which place of a destination row, prepared for the vectors of the processor at hand, and
// the row operation that goes with it. Rows and their order are left to the scaler.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krgui {

/// The source pixel under the centre of a destination pixel: floor((index + 1/2) * source / destination), in whole
/// numbers. Sizes are above 0, the index is one of the destination's.
constexpr std::int32_t FindNearestSource(std::int32_t aIndex, std::int32_t aSourceSize, std::int32_t aDestinationSize) {
  return static_cast<std::int32_t>((2 * std::int64_t{aIndex} + 1) * aSourceSize / (2 * std::int64_t{aDestinationSize}));
}

/// Which columns of a source row go to which of a destination row.
struct ColumnMapping {
  std::int32_t sourceLeft = 0; ///< The part of the source row that is shown.
  std::int32_t sourceRight = 0;
  std::int32_t width = 0; ///< Of the whole destination.
  std::int32_t first = 0; ///< The part of the destination that is drawn: this column and those after it.
  std::int32_t count = 0;

  /// The source column of a drawn one.
  constexpr std::int32_t FindColumn(std::int32_t aDrawn) const {
    return sourceLeft + FindNearestSource(first + aDrawn, sourceRight - sourceLeft, width);
  }
  /// Whether each source column goes to one destination column.
  constexpr bool IsOneToOne() const { return sourceRight - sourceLeft == width; }
  friend constexpr bool operator==(const ColumnMapping&, const ColumnMapping&) = default;
};

/// The tables of one mapping. Each vector of destination pixels is picked from a few vectors of the source that follow
/// each other; where it would be many, each pixel is fetched alone.
struct ColumnPlan {
  /// Scales one row: see NearestScaler::ScaleRow.
  using RowOperation = void (*)(const ColumnPlan& aPlan, const std::uint32_t* aSource, std::uint32_t* aDestination,
                                std::uint32_t aSetBits);

  ColumnMapping mapping;
  RowOperation scaleRow = nullptr;
  /// For a row operation with vectors: where the source vectors of each destination vector begin, and how far from
  /// there each pixel is. The last destination vector ends with the row, so that it may begin inside the one before.
  /// Without vectors the offsets are the columns.
  std::vector<std::uint32_t> bases;
  std::vector<std::uint32_t> offsets;
};

/// A plan for a mapping of which neither the source's part nor what is drawn is empty, with the best row operation that
/// the processor has. Any thread.
ColumnPlan MakeColumnPlan(const ColumnMapping& aMapping);

} // namespace krgui
