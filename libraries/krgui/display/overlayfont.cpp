#include "display/overlayfont.h"

#include <QFontMetricsF>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

QFont MakeFace(double aCharacterHeight) {
  QFont font(QStringLiteral("Tahoma"));
  font.setWeight(QFont::Medium);
  font.setPixelSize(std::clamp(static_cast<int>(std::lround(aCharacterHeight)), 1, 4096));
  return font;
}

// The character height whose lines come closest to the height wanted; hinting makes the relation uneven, so it is
// measured.
QFont FitLineHeight(double aLineHeight) {
  constexpr double kProbe = 100.0;
  const double linePerCharacter = QFontMetricsF(MakeFace(kProbe)).height() / kProbe;
  double characterHeight = std::max(aLineHeight / linePerCharacter, 1.0);
  while (characterHeight > 1.0 && QFontMetricsF(MakeFace(characterHeight)).height() > aLineHeight + 0.5)
    characterHeight -= 1.0;
  return MakeFace(characterHeight);
}

} // namespace

QFont MakeOverlayFont(int aSize, double aPixelRatio) {
  const double size = static_cast<double>(aSize) * aPixelRatio;
  if (aSize > 0)
    return FitLineHeight(size);
  if (aSize < 0)
    return MakeFace(-size);
  return FitLineHeight(QFontMetricsF(QGuiApplication::font()).height() * aPixelRatio);
}

} // namespace krgui
