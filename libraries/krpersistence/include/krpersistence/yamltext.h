#pragma once
// A YAML text as a tree of values with their places, whatever they mean. The text is never trusted: its size, nesting,
// number of values and their text are capped, anchored values count twice, aliases as often as they are used, and
// foreign exceptions end here.

#include "krbase/krexport.h"
#include "krpersistence/textproblems.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krpersistence {

enum class YamlKind { Null, Scalar, Sequence, Map };

/// One value.
struct YamlNode {
  YamlKind kind = YamlKind::Null;                      ///< What it is.
  TextPlace place;                                     ///< Where it begins.
  std::string text;                                    ///< Of a scalar: valid UTF-8 without zeros.
  std::vector<YamlNode> items;                         ///< Of a sequence, and the values of a map.
  std::vector<std::pair<std::string, TextPlace>> keys; ///< Of a map, one for each of its items, none twice.
  /// Of a map: further values of keys that are there more than once, and of which item each is another value.
  std::vector<YamlNode> doubles = {};
  std::vector<std::size_t> doubledItems = {}; ///< For each of doubles, the index of the item whose key it has.
  bool isCut = false; ///< The text could not be read to the end of this value: more may belong to it.
};

inline constexpr std::size_t kMostYamlBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMostYamlDepth = 16;
inline constexpr std::size_t kMostYamlNodes = 100000;
/// Of all texts together. A file without anchors cannot have as much.
inline constexpr std::size_t kMostYamlTextBytes = 4 * kMostYamlBytes;

/// Parses a text of one document; an empty one is Null. Any thread.
///
/// Wherever there is a problem the rest is read as far as that goes, so that it can be looked at, too. A key that is
/// there again is a problem, and keeps its first value; one that is no word is left out with its value; bytes that no
/// text may have are read as "_". Where the text cannot be read on what was open is cut, and the root in any case.
KR_EXPORT YamlNode ParseYaml(std::string_view aText, TextProblems& aProblems);

} // namespace krpersistence
