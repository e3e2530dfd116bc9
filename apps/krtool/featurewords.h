#pragma once
// The words for what features are, as tables of features and options of the command line have them.

#include "krgenicam/krgentypes.h"

#include <optional>
#include <string_view>

namespace krtool {

/// Integer, Enumeration, Boolean, String, Command, Float, Register or Other.
std::string_view GetTypeWord(KrGenType aType);
/// Beginner, Expert, Guru or Invisible.
std::string_view GetVisibilityWord(KrGenVisibility aVisibility);
/// NI, NA, WO, RO or RW.
std::string_view GetAccessWord(KrGenAccessMode aAccess);

/// The visibility of a word in any case, or nothing.
std::optional<KrGenVisibility> FindVisibility(std::string_view aWord);

/// Whether two texts are the same but for the case of ASCII letters.
bool IsSameWord(std::string_view aLeft, std::string_view aRight);

} // namespace krtool
