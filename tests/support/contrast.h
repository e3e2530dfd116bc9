#pragma once
// How well what is drawn can be read: the contrast of colours, as web pages count it.

#include <QColor>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace krgui {

inline double GetLuminance(const QColor& aColor) {
  const auto linear = [](double aPart) {
    return aPart <= 0.04045 ? aPart / 12.92 : std::pow((aPart + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(aColor.redF()) + 0.7152 * linear(aColor.greenF()) + 0.0722 * linear(aColor.blueF());
}

/// The largest contrast, from 1 to 21, of a pixel against the ground, which is that of the pixel near the corner.
inline double GetContrast(const QImage& aImage) {
  const double ground = GetLuminance(aImage.pixelColor(2, 2));
  double contrast = 1;
  for (int y = 0; y < aImage.height(); ++y) {
    for (int x = 0; x < aImage.width(); ++x) {
      const double luminance = GetLuminance(aImage.pixelColor(x, y));
      contrast = std::max(contrast, (std::max(ground, luminance) + 0.05) / (std::min(ground, luminance) + 0.05));
    }
  }
  return contrast;
}

} // namespace krgui
