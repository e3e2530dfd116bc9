#include "browser/gridcolours.h"

#include "platform/systemcolours.h"

namespace krgui {

namespace {

constexpr QRgb kHasSelectorsTint = 0xFFCEDBEA;
constexpr QRgb kIsSelectorTint = 0xFF99B4D1;
constexpr QRgb kMatchTint = 0xFFFFFF00;
/// How much of a tint is left at most where the window is dark.
constexpr int kDarkTintPercent = 40;
constexpr int kPercentStep = 5;

/// The tint itself on a light window with dark text; else as much of it as leaves the text readable.
QColor MakeTint(QRgb aTint, const GridColours& aColours) {
  const bool isDark = GetContrast(aColours.window, Qt::black) < GetContrast(aColours.text, Qt::black);
  int percent = isDark ? kDarkTintPercent : 100;
  QColor tint = BlendColours(QColor(aTint), aColours.window, percent);
  while (percent > 0 && GetContrast(tint, aColours.text) < kLeastContrast) {
    percent -= kPercentStep;
    tint = BlendColours(QColor(aTint), aColours.window, percent);
  }
  return tint;
}

} // namespace

GridColours MakeGridColours(const QPalette& aPalette) {
  GridColours colours;
  colours.window = GetSystemColour(aPalette, SystemColour::Window);
  colours.text = GetSystemColour(aPalette, SystemColour::WindowText);
  colours.greyText = GetSystemColour(aPalette, SystemColour::GrayText);
  colours.face = GetSystemColour(aPalette, SystemColour::ButtonFace);
  colours.highlight = GetSystemColour(aPalette, SystemColour::Highlight);
  colours.highlightText = GetSystemColour(aPalette, SystemColour::HighlightText);
  colours.hasSelectors = MakeTint(kHasSelectorsTint, colours);
  colours.isSelector = MakeTint(kIsSelectorTint, colours);
  colours.match = MakeTint(kMatchTint, colours);
  return colours;
}

} // namespace krgui
