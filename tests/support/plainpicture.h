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

/// An image that is larger than its window, zoomed by a factor and scrolled to a position on each axis, where what is
/// left beside the scroll bars is filled.
struct ScrolledView {
  ScrolledView(QSize aClient, QSize aImage, double aFactor, int aBar)
      : hasHorizontalBar(int(aImage.width() * aFactor + 0.5) > aClient.width()),
        hasVerticalBar(int(aImage.height() * aFactor + 0.5) > aClient.height()), image(aImage), factor(aFactor),
        view(aClient.width() - (hasVerticalBar ? aBar : 0), aClient.height() - (hasHorizontalBar ? aBar : 0)) {}

  /// How far each bar scrolls, in zoomed pixels.
  int GetHorizontalExtent() const { return int(image.width() * factor - view.width()); }
  int GetVerticalExtent() const { return int(image.height() * factor - view.height() + 0.5); }
  /// What a bar moves by for a page.
  int GetHorizontalPage() const { return view.width() / 4; }
  int GetVerticalPage() const { return view.height() / 4; }
  /// Where the bars stand when they first appear.
  int GetHorizontalMiddle() const { return int(GetHorizontalExtent() * 0.5); }
  int GetVerticalMiddle() const { return GetVerticalExtent() / 2; }

  /// The part of the image that is seen, rows from the top. The vertical one is worked out from the bottom up.
  QRect FindSource(int aHorizontalPosition, int aVerticalPosition) const {
    const auto edge = [this](int aSize, int aView, double aOffset, int aSide) {
      return int((aSize * factor * 0.5 + aSide * aView * 0.5 + aOffset) / factor + 0.5);
    };
    const int right = int(aHorizontalPosition - GetHorizontalExtent() * 0.5);
    const int down = GetVerticalExtent() - GetVerticalExtent() / 2 - aVerticalPosition;
    const int left = std::max(edge(image.width(), view.width(), right, -1), 0);
    const int end = std::min(edge(image.width(), view.width(), right, 1), image.width());
    const int low = std::max(edge(image.height(), view.height(), down, -1), 0);
    const int high = std::min(edge(image.height(), view.height(), down, 1), image.height());
    return {QPoint(left, image.height() - high), QPoint(end - 1, image.height() - low - 1)};
  }

  bool hasHorizontalBar;
  bool hasVerticalBar;
  QSize image;
  double factor;
  QSize view;
};

/// The view beside the scroll bars with both bars there.
inline QImage ComputeScrolled(const ScrolledView& aView, const QImage& aImage, int aHorizontalPosition,
                              int aVerticalPosition) {
  const QRect source = aView.FindSource(aHorizontalPosition, aVerticalPosition);
  QImage picture(aView.view, QImage::Format_RGB32);
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x)
      picture.setPixel(x, y,
                       aImage.pixel(source.x() + int((x + 0.5) * source.width() / picture.width()),
                                    source.y() + int((y + 0.5) * source.height() / picture.height())));
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
