#pragma once
// Whether something grows in a long run: the last third of its samples beside the middle one. The first third is the
// warm-up, in which what is kept for reuse comes to its size.

#include <cstddef>
#include <vector>

/// The samples of one figure, in the order in which they were taken.
class FigureSeries {
public:
  /// So many samples at least are judged.
  static constexpr std::size_t kLeastSamples = 6;

  struct Verdict {
    double middle = 0; ///< The median of the middle third.
    double last = 0;   ///< That of the last third.
    bool isFlat = false;
  };

  void Add(double aValue) { mValues.push_back(aValue); }
  std::size_t GetCount() const { return mValues.size(); }
  /// Flat where the last third's median is above the middle one's by no more than is allowed: a peak in either is no
  /// growth, and what is lost bit by bit shows as a third of all that was. Fewer than kLeastSamples are never flat.
  Verdict Judge(double aAllowed) const;

private:
  std::vector<double> mValues;
};
