#pragma once
// What a configuration file holds, and how much of it there may be. How it looks in the file is left to the parser and
// the text that is written.

#include "krpersistence/krpropertylist.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace krpersistence {

/// Property lists, each under a name that occurs once.
using Configuration = std::vector<std::pair<KrString, KrPropertyList>>;

/// The limits of a file, far beyond what any window saves: whoever hands us more hands us something else.
inline constexpr std::size_t kMostFileBytes = 16 * 1024 * 1024;
inline constexpr std::size_t kMostLists = 1000;
inline constexpr std::size_t kMostProperties = 10'000;     ///< In one list.
inline constexpr std::size_t kMostTextBytes = 1024 * 1024; ///< Of one name or value.
/// The characters '<' of a file; more than known elements come to within kMostFileBytes.
inline constexpr std::size_t kMostMarkup = 1'000'000;

/// A file with another major version cannot be read; a greater minor version adds only what may be ignored.
inline constexpr unsigned kMajorVersion = 1;
inline constexpr unsigned kMinorVersion = 0;

/// The list of a name, or the end. For const and other configurations.
template <typename Lists>
auto FindList(Lists& aLists, const KrString& aName) {
  return std::find_if(aLists.begin(), aLists.end(), [&aName](const auto& aList) { return aList.first == aName; });
}

} // namespace krpersistence
