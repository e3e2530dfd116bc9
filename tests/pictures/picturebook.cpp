#include "picturebook.h"

#include "legibility.h"

#include <QApplication>
#include <QImageWriter>
#include <QPixmap>
#include <QSet>

#include <algorithm>
#include <stdexcept>

namespace {

/// What grows with what it says is laid out in several.
constexpr int kTurns = 3;
constexpr int kMostPaletteColours = 256;
// The most that the writer compresses.
constexpr int kSmallestFile = 0;
// The coarsest steps of a colour's parts; what smooths letters has many colours that the eye does not part.
constexpr int kCoarsestStep = 32;

// With all parts of colours rounded to multiples of a step, but white.
QImage Round(const QImage& aImage, int aStep) {
  QImage rounded = aImage;
  const auto round = [aStep](int aPart) { return std::min((aPart + aStep / 2) / aStep * aStep, 255); };
  for (int y = 0; y < rounded.height(); ++y) {
    auto* const line = reinterpret_cast<QRgb*>(rounded.scanLine(y));
    std::transform(line, line + rounded.width(), line,
                   [&](QRgb aPixel) { return qRgb(round(qRed(aPixel)), round(qGreen(aPixel)), round(qBlue(aPixel))); });
  }
  return rounded;
}

// The number of colours, or one more than a palette holds.
int CountColours(const QImage& aImage) {
  QSet<QRgb> colours;
  for (int y = 0; y < aImage.height(); ++y) {
    for (int x = 0; x < aImage.width(); ++x) {
      colours.insert(aImage.pixel(x, y));
      if (colours.size() > kMostPaletteColours)
        return kMostPaletteColours + 1;
    }
  }
  return static_cast<int>(colours.size());
}

// With a palette, the finest that has all colours; unchanged where there are too many.
QImage MakeSmall(const QImage& aImage) {
  for (int step = 1; step <= kCoarsestStep; step *= 2) {
    const QImage rounded = Round(aImage, step);
    if (CountColours(rounded) <= kMostPaletteColours)
      return rounded.convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither | Qt::AvoidDither);
  }
  return aImage;
}

} // namespace

PictureBook::PictureBook(const QString& aFolder, const QString& aSuffix) : mFolder(aFolder), mSuffix(aSuffix) {
  if (!QDir().mkpath(aFolder))
    throw std::runtime_error("The folder " + aFolder.toStdString() + " cannot be made.");
}

void PictureBook::Save(QWidget& aWindow, const QString& aName) {
  for (int turn = 0; turn < kTurns; ++turn)
    QApplication::processEvents();
  const QImage picture = aWindow.grab().toImage();
  for (const QString& fault : FindIllegibleTexts(aWindow, picture))
    mFaults += aName + mSuffix + QStringLiteral(": ") + fault;
  Save(picture, aName);
}

void PictureBook::Save(const QImage& aPicture, const QString& aName) {
  const QImage image = aPicture.convertToFormat(QImage::Format_RGB32);
  if (CountColours(image) < 2)
    throw std::runtime_error("The picture " + aName.toStdString() + " shows nothing.");
  QImageWriter writer(mFolder.filePath(aName + mSuffix + ".png"), "png");
  writer.setQuality(kSmallestFile);
  if (!writer.write(MakeSmall(image)))
    throw std::runtime_error("Cannot write " + writer.fileName().toStdString() + ": " +
                             writer.errorString().toStdString());
  ++mCount;
}
