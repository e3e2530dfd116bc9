#include "panels/graphcolours.h"

#include <algorithm>
#include <array>

namespace krviewer {

namespace {

struct ComponentColour {
  char component;
  QColor onLight;
  QColor onDark;
};

constexpr std::array kComponents = {
    ComponentColour{'R', QColor(0xC6, 0x28, 0x28), QColor(0xFF, 0x6E, 0x6E)},
    ComponentColour{'G', QColor(0x1B, 0x7A, 0x2B), QColor(0x5C, 0xD6, 0x6E)},
    ComponentColour{'B', QColor(0x1F, 0x4F, 0xD1), QColor(0x7A, 0xA8, 0xFF)},
    ComponentColour{'U', QColor(0x1F, 0x4F, 0xD1), QColor(0x7A, 0xA8, 0xFF)},
    ComponentColour{'V', QColor(0xC6, 0x28, 0x28), QColor(0xFF, 0x6E, 0x6E)},
};
constexpr QColor kWarningOnLight(0xB0, 0x3A, 0x00);
constexpr QColor kWarningOnDark(0xFF, 0xA0, 0x4D);
constexpr int kGridAlpha = 48;
constexpr int kMiddleGrey = 128;

} // namespace

bool HasDarkGround(const QPalette& aPalette) {
  return qGray(aPalette.color(QPalette::Active, QPalette::Base).rgb()) < kMiddleGrey;
}

QColor GetComponentColour(const QPalette& aPalette, char aComponent) {
  const auto* const found = std::ranges::find(kComponents, aComponent, &ComponentColour::component);
  if (found == kComponents.end())
    return aPalette.color(QPalette::Active, QPalette::Text);
  return HasDarkGround(aPalette) ? found->onDark : found->onLight;
}

QColor GetWarningColour(const QPalette& aPalette) {
  return HasDarkGround(aPalette) ? kWarningOnDark : kWarningOnLight;
}

QColor GetGridColour(const QPalette& aPalette) {
  QColor colour = aPalette.color(QPalette::Active, QPalette::Text);
  colour.setAlpha(kGridAlpha);
  return colour;
}

} // namespace krviewer
