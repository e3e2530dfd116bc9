#pragma once
// Where on the screen a viewer's picture is, found by what changes there: the same for every viewer, whatever it has
// beside its picture. What the picture is like is left to others.

#include "display/displayscreen.h"

#include <optional>

namespace benchmarks {

/// In pixels of the screen.
struct ScreenArea {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool operator==(const ScreenArea&) const = default;
};

/// The part of an area of the screen in which a live picture is: its lines and columns change in most of their pixels,
/// those of figures beside it do not. Looks at the area several times; nothing where no such part is.
std::optional<ScreenArea> FindPicture(const DisplayScreen& aScreen, const ScreenArea& aWithin);

} // namespace benchmarks
