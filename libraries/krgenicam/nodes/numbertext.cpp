#include "nodes/numbertext.h"

#include <array>
#include <charconv>

namespace krgenicam {

std::string FormatNumber(const Number& aValue) {
  std::array<char, 40> text;
  const auto end = aValue.IsFloat() ? std::to_chars(text.data(), text.data() + text.size(), aValue.ToFloat()).ptr
                                    : std::to_chars(text.data(), text.data() + text.size(), aValue.ToInteger()).ptr;
  return std::string(text.data(), end);
}

} // namespace krgenicam
