#pragma once
// How the figures of the status bar read, what each means and which of them stay where there is no room for all. What
// they are drawn with is left to the bar.

#include "panels/shownfigures.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace krviewer {

/// The figures in the order in which they stand.
enum class FigureKind {
  Pixel,
  FrameRate,
  DataRate,
  Frames,
  Incomplete,
  MissingFrames,
  MissingPackets,
  ResentPackets,
  Discarded,
  Temperature,
};
inline constexpr std::size_t kFigures = 10;

/// What one figure is at the moment.
struct FigureText {
  std::string text;    ///< Empty where there is nothing to say.
  bool isLoss = false; ///< Whether it tells of something that was lost.
  int rank = 0;        ///< The least of those that there is no room for go; 0 stays longest.
};

/// Any thread.
class FigureTexts {
public:
  explicit FigureTexts(const ShownFigures& aFigures);

  const FigureText& Get(FigureKind aKind) const { return mTexts[static_cast<std::size_t>(aKind)]; }

  /// A text about as wide as the figure usually becomes, for which room is kept from the begin on.
  static std::string GetUsual(FigureKind aKind);
  /// What the figure means, and what can be done about it.
  static std::string GetMeaning(FigureKind aKind);

private:
  FigureText& At(FigureKind aKind) { return mTexts[static_cast<std::size_t>(aKind)]; }
  void SetLoss(FigureKind aKind, const char* aName, std::uint64_t aCount, int aRank);

  std::array<FigureText, kFigures> mTexts;
};

/// "x 120  y 33   raw 1023   shown 255"; colours have three values each.
std::string FormatPixel(const KrDisplayPixel& aPixel);

/// What is to be placed in a row.
struct FigurePlace {
  int width = 0; ///< 0 for what is not there at all.
  int rank = 0;
};

/// Which of them fit into a width, with a gap between each two: by their ranks, and none after the first for which
/// there is no room. Of equal ranks the first goes last.
std::vector<bool> FitFigures(std::span<const FigurePlace> aPlaces, int aGap, int aWidth);

} // namespace krviewer
