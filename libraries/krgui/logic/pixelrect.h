#pragma once
// A rectangle in pixels, as all rules of the windows use it. Which space its pixels belong to is said by its name.

#include <cstdint>

namespace krgui {

/// Left and top are inside, right and bottom outside.
struct PixelRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  constexpr std::int32_t GetWidth() const { return right - left; }
  constexpr std::int32_t GetHeight() const { return bottom - top; }
  constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
  friend constexpr bool operator==(const PixelRect&, const PixelRect&) = default;
};

} // namespace krgui
