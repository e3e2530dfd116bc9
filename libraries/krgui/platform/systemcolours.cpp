#include "platform/systemcolours.h"

#include "platform/contrast.h"

#include <QColor>
#include <QPalette>

#include <algorithm>
#include <array>

namespace krgui {

namespace {

/// Where a system colour is in a palette.
struct SystemColourEntry {
  SystemColour colour;
  QPalette::ColorGroup group;
  QPalette::ColorRole role;
  int percent = 100; ///< The rest is the colour of dialogs.
};

// In the order of SystemColour. Dialogs are filled with Window, so that is what a button's face is: a flat button must
// not show on a dialog.
constexpr std::array kEntries = {
    SystemColourEntry{SystemColour::ButtonFace, QPalette::Active, QPalette::Window},
    SystemColourEntry{SystemColour::GradientActiveCaption, QPalette::Active, QPalette::Highlight, 30},
    SystemColourEntry{SystemColour::GrayText, QPalette::Disabled, QPalette::Text},
    SystemColourEntry{SystemColour::Highlight, QPalette::Active, QPalette::Highlight},
    SystemColourEntry{SystemColour::HighlightText, QPalette::Active, QPalette::HighlightedText},
    SystemColourEntry{SystemColour::HotLight, QPalette::Active, QPalette::Highlight},
    SystemColourEntry{SystemColour::Window, QPalette::Active, QPalette::Base},
    SystemColourEntry{SystemColour::WindowText, QPalette::Active, QPalette::Text},
};

constexpr bool IsInOrder() {
  for (std::size_t index = 0; index < kEntries.size(); ++index) {
    if (static_cast<std::size_t>(kEntries[index].colour) != index)
      return false;
  }
  return true;
}
static_assert(IsInOrder());

} // namespace

QColor GetSystemColour(const QPalette& aPalette, SystemColour aColour) {
  const SystemColourEntry& entry = kEntries[static_cast<std::size_t>(aColour)];
  const QColor colour = aPalette.color(entry.group, entry.role);
  if (aColour == SystemColour::HighlightText)
    return ChooseReadable(colour, aPalette.color(entry.group, QPalette::Highlight));
  if (entry.percent == 100)
    return colour;
  return BlendColours(colour, aPalette.color(QPalette::Active, QPalette::Window), entry.percent);
}

QColor BlendColours(const QColor& aFirst, const QColor& aSecond, int aPercent) {
  const int percent = std::clamp(aPercent, 0, 100);
  const auto blend = [percent](int aFirstPart, int aSecondPart) {
    return (aFirstPart * percent + aSecondPart * (100 - percent) + 50) / 100;
  };
  return {blend(aFirst.red(), aSecond.red()), blend(aFirst.green(), aSecond.green()),
          blend(aFirst.blue(), aSecond.blue())};
}

bool IsDarkPalette(const QPalette& aPalette) {
  return qGray(aPalette.color(QPalette::Active, QPalette::Window).rgb()) < 128;
}

} // namespace krgui
