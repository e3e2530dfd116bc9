#include "browser/gridcolours.h"

#include "platform/systemcolours.h"

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

constexpr QRgb kHasSelectorsTint = 0xFFCEDBEA;
constexpr QRgb kIsSelectorTint = 0xFF99B4D1;
constexpr QRgb kMatchTint = 0xFFFFFF00;
/// How much of a tint is left at most where the window is dark.
constexpr int kDarkTintPercent = 40;
constexpr int kPercentStep = 5;

double GetLinear(double aPart) {
  return aPart <= 0.04045 ? aPart / 12.92 : std::pow((aPart + 0.055) / 1.055, 2.4);
}

double GetLuminance(const QColor& aColour) {
  return 0.2126 * GetLinear(aColour.redF()) + 0.7152 * GetLinear(aColour.greenF()) +
         0.0722 * GetLinear(aColour.blueF());
}

/// The tint itself on a light window with dark text; else as much of it as leaves the text readable.
QColor MakeTint(QRgb aTint, const GridColours& aColours) {
  const bool isDark = GetLuminance(aColours.window) < GetLuminance(aColours.text);
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

double GetContrast(const QColor& aFirst, const QColor& aSecond) {
  constexpr double kFlare = 0.05;
  const auto [darker, lighter] = std::minmax({GetLuminance(aFirst), GetLuminance(aSecond)});
  return (lighter + kFlare) / (darker + kFlare);
}

QColor MakeReadable(const QColor& aColour, const QColor& aGround) {
  const bool isBlackBetter = GetContrast(aGround, Qt::black) > GetContrast(aGround, Qt::white);
  const QColor towards = isBlackBetter ? Qt::black : Qt::white;
  QColor colour = aColour;
  for (int percent = 100; percent > 0 && GetContrast(colour, aGround) < kLeastContrast;) {
    percent -= kPercentStep;
    colour = BlendColours(aColour, towards, percent);
  }
  return colour;
}

} // namespace krgui
