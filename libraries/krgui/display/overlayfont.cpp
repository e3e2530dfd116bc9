#include "display/overlayfont.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

constexpr int kGreatestPixelSize = 4096;

int LimitPixelSize(double aCharacterHeight) {
  return static_cast<int>(std::lround(std::clamp(aCharacterHeight, 1.0, static_cast<double>(kGreatestPixelSize))));
}

// The character height whose lines come closest to the height wanted; hinting makes the relation uneven, so it is
// measured.
int FitLineHeight(double aLineHeight) {
  constexpr int kProbe = 100;
  const double linePerCharacter = QFontMetricsF(MakeOverlayFont(kProbe)).height() / kProbe;
  int pixelSize = LimitPixelSize(aLineHeight / linePerCharacter);
  while (pixelSize > 1 && QFontMetricsF(MakeOverlayFont(pixelSize)).height() > aLineHeight + 0.5)
    --pixelSize;
  return pixelSize;
}

} // namespace

int FindOverlayPixelSize(int aSize, double aPixelRatio, double aDefaultLineHeight) {
  const double size = static_cast<double>(aSize) * aPixelRatio;
  if (aSize < 0)
    return LimitPixelSize(-size);
  return FitLineHeight(aSize > 0 ? size : aDefaultLineHeight);
}

QFont MakeOverlayFont(int aPixelSize) {
  QFont font(QStringLiteral("Tahoma"));
  font.setWeight(QFont::Medium);
  font.setPixelSize(aPixelSize);
  return font;
}

} // namespace krgui
