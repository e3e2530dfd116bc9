#pragma once
// Images to display, and what became of them: made at random, as a picture, and as the screen has them.

#include "krbuffer/krbuffer.h"

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QScreen>

#include <gtest/gtest.h>

#include <random>

/// A grey image of random pixels, so that a sample taken one pixel off shows.
inline KrBuffer MakeNoise(std::uint32_t aWidth, std::uint32_t aHeight) {
  KrBuffer buffer;
  EXPECT_TRUE(buffer.GetImage()->Alloc(aWidth, aHeight, KrPixel::Mono8).IsOK());
  std::mt19937 random(aWidth * 31 + aHeight);
  for (std::size_t i = 0; i < buffer.GetSize(); ++i)
    buffer.GetDataPointer()[i] = static_cast<std::uint8_t>(random());
  return buffer;
}

/// A Mono8 image as a picture.
inline QImage ToQImage(const IKrImage& aMono8) {
  return QImage(aMono8.GetDataPointer(), static_cast<int>(aMono8.GetWidth()), static_cast<int>(aMono8.GetHeight()),
                static_cast<qsizetype>(aMono8.GetWidth()), QImage::Format_Grayscale8)
      .convertToFormat(QImage::Format_RGB32);
}
inline QImage ToQImage(const KrBuffer& aMono8) {
  return ToQImage(*aMono8.GetImage());
}

/// What of a picture is white, as a rectangle in its pixels.
inline QRect FindWhite(const QImage& aPicture) {
  QRect white;
  for (int y = 0; y < aPicture.height(); ++y)
    for (int x = 0; x < aPicture.width(); ++x)
      if (aPicture.pixelColor(x, y) == QColor(Qt::white))
        white |= QRect(x, y, 1, 1);
  return white;
}

/// A part of the root window, as it is on the screen.
inline QImage GrabScreen(const QRect& aRect) {
  return QGuiApplication::primaryScreen()
      ->grabWindow(0, aRect.x(), aRect.y(), aRect.width(), aRect.height())
      .toImage()
      .convertToFormat(QImage::Format_RGB32);
}
