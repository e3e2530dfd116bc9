#pragma once
// What a display window should look like, worked out pixel by pixel with nothing of the library's: the reference that
// screenshots are compared with.

#include <QColor>
#include <QImage>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <string>

namespace plainpicture {

/// Where an image fitted into a client area lies: as large as fits, centred.
inline QRect FitRect(QSize aClient, QSize aImage) {
  const double factor =
      1.0 / std::max(double(aImage.width()) / aClient.width(), double(aImage.height()) / aClient.height());
  const auto edge = [&](int aView, int aSize, double aSide) {
    return int(aView * 0.5 + aSide * aSize * factor * 0.5 + 0.5);
  };
  const int left = edge(aClient.width(), aImage.width(), -1);
  const int top = edge(aClient.height(), aImage.height(), -1);
  return {left, top, edge(aClient.width(), aImage.width(), 1) - left, edge(aClient.height(), aImage.height(), 1) - top};
}

/// The client area with the image in it, each pixel taken from the source pixel under its centre.
inline QImage Compute(QSize aClient, const QImage& aImage, QColor aBackground) {
  QImage picture(aClient, QImage::Format_RGB32);
  picture.fill(aBackground);
  const QRect rect = FitRect(aClient, aImage.size());
  for (int y = 0; y < rect.height(); ++y)
    for (int x = 0; x < rect.width(); ++x) {
      const int sourceX = int((x + 0.5) * aImage.width() / rect.width());
      const int sourceY = int((y + 0.5) * aImage.height() / rect.height());
      picture.setPixel(rect.x() + x, rect.y() + y, aImage.pixel(sourceX, sourceY));
    }
  return picture;
}

/// What differs between two pictures outside a rectangle; empty when nothing does.
inline std::string Compare(const QImage& aActual, const QImage& aExpected, QRect aExcept = {}) {
  if (aActual.size() != aExpected.size())
    return "sizes " + std::to_string(aActual.width()) + "x" + std::to_string(aActual.height()) + " and " +
           std::to_string(aExpected.width()) + "x" + std::to_string(aExpected.height());
  int count = 0;
  std::string first;
  for (int y = 0; y < aActual.height(); ++y)
    for (int x = 0; x < aActual.width(); ++x) {
      const QRgb actual = aActual.pixel(x, y) & 0xFFFFFF;
      const QRgb expected = aExpected.pixel(x, y) & 0xFFFFFF;
      if (actual == expected || aExcept.contains(x, y))
        continue;
      if (count++ == 0)
        first = "at " + std::to_string(x) + "," + std::to_string(y) + " " + QColor(actual).name().toStdString() +
                " instead of " + QColor(expected).name().toStdString();
    }
  return count == 0 ? "" : std::to_string(count) + " pixels differ, the first " + first;
}

/// The smallest rectangle around the pixels that differ.
inline QRect FindDifference(const QImage& aActual, const QImage& aExpected) {
  QRect found;
  for (int y = 0; y < aActual.height(); ++y)
    for (int x = 0; x < aActual.width(); ++x)
      if ((aActual.pixel(x, y) & 0xFFFFFF) != (aExpected.pixel(x, y) & 0xFFFFFF))
        found |= QRect(x, y, 1, 1);
  return found;
}

/// The number of pixels of exactly this colour inside a rectangle.
inline int Count(const QImage& aPicture, QRect aRect, QColor aColor) {
  int count = 0;
  for (int y = aRect.top(); y <= aRect.bottom(); ++y)
    for (int x = aRect.left(); x <= aRect.right(); ++x)
      count += aPicture.valid(x, y) && (aPicture.pixel(x, y) & 0xFFFFFF) == (aColor.rgb() & 0xFFFFFF);
  return count;
}

} // namespace plainpicture
