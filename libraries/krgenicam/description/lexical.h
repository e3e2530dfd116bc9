#pragma once
// The values of a description's elements, read from their texts. Lenient where cameras are known to stray from the
// schema: blanks around, 0x or none before hexadecimal numbers, signs, words in any case.

#include "krbase/trim.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace krgenicam {

/// A whole number, decimal or 0x…, of 64 bits with or without sign (0xFFFFFFFFFFFFFFFF is -1); nothing for any other
/// text. A number with a point or exponent is taken where it is whole. Leading zeros mean nothing.
std::optional<std::int64_t> ParseInteger(std::string_view aText);
/// A floating-point number in any usual form, whole and hexadecimal ones among them, INF, -INF and NaN.
std::optional<double> ParseFloat(std::string_view aText);
/// A hexadecimal number without 0x, as EventID and ChunkID have it; 0x is taken, too.
std::optional<std::uint64_t> ParseHex(std::string_view aText);
/// Yes and No; true, false, 1 and 0, too.
std::optional<bool> ParseYesNo(std::string_view aText);
/// The index in a table of words, in any case; nothing for a word that is not in it.
template <typename Words>
std::optional<std::size_t> FindWord(const Words& aWords, std::string_view aText);

/// Whether two texts are equal but for the case of their ASCII letters.
bool EqualsIgnoringCase(std::string_view aLeft, std::string_view aRight);
using krbase::Trim;
/// A text of a description, or for it, as messages have it: in quotation marks, the end of a long one left out.
std::string Quote(std::string_view aText);
/// A node's name as messages have it: in quotation marks.
std::string QuoteName(std::string_view aName);

template <typename Words>
std::optional<std::size_t> FindWord(const Words& aWords, std::string_view aText) {
  for (std::size_t i = 0; i < std::size(aWords); ++i) {
    if (EqualsIgnoringCase(aWords[i], aText))
      return i;
  }
  return std::nullopt;
}

} // namespace krgenicam
