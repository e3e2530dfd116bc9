#include "platform/contrast.h"

#include "platform/systemcolours.h"

#include <QPalette>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

constexpr int kPercentStep = 5;

double GetLinear(double aPart) {
  return aPart <= 0.04045 ? aPart / 12.92 : std::pow((aPart + 0.055) / 1.055, 2.4);
}

double GetLuminance(const QColor& aColour) {
  return 0.2126 * GetLinear(aColour.redF()) + 0.7152 * GetLinear(aColour.greenF()) +
         0.0722 * GetLinear(aColour.blueF());
}

QColor ChooseBlackOrWhite(const QColor& aGround) {
  return GetContrast(aGround, Qt::black) > GetContrast(aGround, Qt::white) ? Qt::black : Qt::white;
}

} // namespace

double GetContrast(const QColor& aFirst, const QColor& aSecond) {
  constexpr double kFlare = 0.05;
  const auto [darker, lighter] = std::minmax({GetLuminance(aFirst), GetLuminance(aSecond)});
  return (lighter + kFlare) / (darker + kFlare);
}

QColor MakeReadable(const QColor& aColour, const QColor& aGround) {
  const QColor towards = ChooseBlackOrWhite(aGround);
  QColor colour = aColour;
  for (int percent = 100; percent > 0 && GetContrast(colour, aGround) < kLeastContrast;) {
    percent -= kPercentStep;
    colour = BlendColours(aColour, towards, percent);
  }
  return colour;
}

QColor ChooseReadable(const QColor& aColour, const QColor& aGround) {
  return GetContrast(aColour, aGround) < kLeastContrast ? ChooseBlackOrWhite(aGround) : aColour;
}

void MakeSelectionsReadable(QPalette& aPalette) {
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
    aPalette.setColor(
        group, QPalette::HighlightedText,
        ChooseReadable(aPalette.color(group, QPalette::HighlightedText), aPalette.color(group, QPalette::Highlight)));
}

} // namespace krgui
